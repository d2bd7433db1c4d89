#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// GoogleTest prints Qt strings as text in failure messages, not as bytes.
inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }

inline void PrintTo(const QStringList &texts, std::ostream *out)
{
    *out << '{';
    for (qsizetype i = 0; i < texts.size(); ++i) {
        *out << (i ? ", " : "");
        PrintTo(texts[i], out);
    }
    *out << '}';
}
