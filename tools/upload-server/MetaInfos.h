#pragma once

#include <QString>
#include <QStringList>

#include <string>

// The reference server's reading of what a client sent: the META_INFOS field and file names.
class MetaInfos {
public:
    // The names listed in META_INFOS ({"files": [{"name": …}, …]}), or why it is unusable.
    static QStringList namedFiles(const std::string &metaInfos, QString &problem);
    // File names come from the client: plain names only, never a path.
    static bool isSafeName(const QString &name);
};
