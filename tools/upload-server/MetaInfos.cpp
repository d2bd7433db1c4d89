#include "MetaInfos.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

bool MetaInfos::isSafeName(const QString &name)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_][A-Za-z0-9_.-]{0,99}$"));
    return plain.match(name).hasMatch();
}

QStringList MetaInfos::namedFiles(const std::string &metaInfos, QString &problem)
{
    const QJsonDocument meta = QJsonDocument::fromJson(QByteArray::fromStdString(metaInfos));
    if (!meta.isObject() || !meta.object().value(QStringLiteral("files")).isArray()) {
        problem = QStringLiteral("META_INFOS is not a JSON object with a \"files\" array");
        return {};
    }
    QStringList names;
    for (const QJsonValue &entry : meta.object().value(QStringLiteral("files")).toArray()) {
        const QString name = entry.toObject().value(QStringLiteral("name")).toString();
        if (!isSafeName(name)) {
            problem = QStringLiteral("META_INFOS names a file without a plain name");
            return {};
        }
        names.append(name);
    }
    return names;
}
