#pragma once

#include <QHash>
#include <QString>

/// A text table in the "key" = "value"; format of platform string files, with /* */ and //
/// comments and backslash escapes.
class VextilStringsTable {
public:
    /// Reads a table from a file or resource; an unreadable or malformed file gives an empty table.
    static VextilStringsTable read(const QString &path);
    /// Parses table text; stops at the first malformed entry, keeping what came before.
    static VextilStringsTable parse(const QString &text);

    /// The text for key, or a null string when it is absent.
    QString value(const QString &key) const { return m_entries.value(key); }
    /// The text for key; a missing key ends the process, since every caller relies on it.
    QString require(const QString &key) const;
    /// Number of entries.
    qsizetype size() const { return m_entries.size(); }

private:
    QString m_path;
    QHash<QString, QString> m_entries;
};
