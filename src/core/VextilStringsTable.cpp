#include "core/VextilStringsTable.h"

#include <QFile>
#include <QtGlobal>

#include <optional>

namespace {

// A cursor over the table text that skips blanks and comments between tokens.
class Reader {
public:
    explicit Reader(const QString &text) : m_text(text) {}

    bool atEnd()
    {
        skipBlanks();
        return m_pos >= m_text.size();
    }

    bool expect(QChar c)
    {
        skipBlanks();
        if (m_pos < m_text.size() && m_text[m_pos] == c) {
            ++m_pos;
            return true;
        }
        return false;
    }

    std::optional<QString> quoted()
    {
        if (!expect(u'"'))
            return std::nullopt;
        QString out;
        while (m_pos < m_text.size()) {
            const QChar c = m_text[m_pos++];
            if (c == u'"')
                return out;
            if (c != u'\\') {
                out.append(c);
                continue;
            }
            if (m_pos >= m_text.size())
                break;
            const QChar e = m_text[m_pos++];
            if (e == u'n') out.append(u'\n');
            else if (e == u't') out.append(u'\t');
            else if (e == u'r') out.append(u'\r');
            else if (e == u'U' || e == u'u') out.append(unicode());
            else out.append(e);  // \" \\ and anything else stand for themselves
        }
        return std::nullopt;  // unterminated
    }

private:
    QChar unicode()
    {
        const QString hex = m_text.mid(m_pos, 4);
        m_pos += hex.size();
        return QChar(char16_t(hex.toUShort(nullptr, 16)));
    }

    void skipBlanks()
    {
        while (m_pos < m_text.size()) {
            if (m_text[m_pos].isSpace()) {
                ++m_pos;
            } else if (m_text.mid(m_pos, 2) == u"/*") {
                const qsizetype end = m_text.indexOf(u"*/", m_pos + 2);
                m_pos = end < 0 ? m_text.size() : end + 2;
            } else if (m_text.mid(m_pos, 2) == u"//") {
                const qsizetype end = m_text.indexOf(u'\n', m_pos);
                m_pos = end < 0 ? m_text.size() : end + 1;
            } else {
                return;
            }
        }
    }

    const QString &m_text;
    qsizetype m_pos = 0;
};

}  // namespace

VextilStringsTable VextilStringsTable::read(const QString &path)
{
    QFile file(path);
    VextilStringsTable table = file.open(QIODevice::ReadOnly) ? parse(QString::fromUtf8(file.readAll()))
                                                               : VextilStringsTable();
    table.m_path = path;
    return table;
}

VextilStringsTable VextilStringsTable::parse(const QString &text)
{
    VextilStringsTable table;
    Reader reader(text);
    while (!reader.atEnd()) {
        const auto key = reader.quoted();
        if (!key || !reader.expect(u'='))
            break;
        const auto value = reader.quoted();
        if (!value || !reader.expect(u';'))
            break;
        table.m_entries.insert(*key, *value);
    }
    return table;
}

QString VextilStringsTable::require(const QString &key) const
{
    if (!m_entries.contains(key))
        qFatal("VextilToolkit: the error-text table %s has no entry \"%s\"", qPrintable(m_path), qPrintable(key));
    return m_entries.value(key);
}
