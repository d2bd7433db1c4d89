#include <VextilToolkit/VextilJsonValue.h>

namespace {

void indent(QByteArray &out, int depth) { out.append(QByteArray(2 * depth, ' ')); }

// Escapes as the platform's serialiser does, forward slashes included.
void writeString(QByteArray &out, const QString &text)
{
    out.append('"');
    for (const char c : text.toUtf8()) {
        switch (c) {
        case '"': out.append("\\\""); break;
        case '\\': out.append("\\\\"); break;
        case '/': out.append("\\/"); break;
        case '\b': out.append("\\b"); break;
        case '\f': out.append("\\f"); break;
        case '\n': out.append("\\n"); break;
        case '\r': out.append("\\r"); break;
        case '\t': out.append("\\t"); break;
        default:
            if (static_cast<unsigned char>(c) < 0x20)
                out.append(QByteArray("\\u00") + QByteArray::number(static_cast<unsigned char>(c), 16).rightJustified(2, '0'));
            else
                out.append(c);
        }
    }
    out.append('"');
}

// Opens a container, writes each item on its own line, and closes it on a line of its own. An
// empty container keeps the blank line between its brackets, as the platform writes it.
template <typename Items, typename WriteItem>
void writeContainer(QByteArray &out, int depth, char open, char close, const Items &items, WriteItem writeItem)
{
    out.append(open).append('\n');
    bool first = true;
    for (const auto &item : items) {
        if (!first)
            out.append(",\n");
        first = false;
        indent(out, depth + 1);
        writeItem(item);
    }
    out.append('\n');
    indent(out, depth);
    out.append(close);
}

}  // namespace

QString VextilJsonValue::toString() const
{
    const auto *string = std::get_if<QString>(&m_value);
    return string ? *string : QString();
}

const VextilJsonValue::Array &VextilJsonValue::toArray() const
{
    static const Array none;
    const auto *array = std::get_if<Array>(&m_value);
    return array ? *array : none;
}

const VextilJsonValue::Object &VextilJsonValue::toObject() const
{
    static const Object none;
    const auto *object = std::get_if<Object>(&m_value);
    return object ? *object : none;
}

VextilJsonValue VextilJsonValue::value(const QString &key) const
{
    for (const Member &member : toObject())
        if (member.first == key)
            return member.second;
    return {};
}

QByteArray VextilJsonValue::toPrettyJson() const
{
    QByteArray out;
    write(out, 0);
    return out;
}

void VextilJsonValue::write(QByteArray &out, int depth) const
{
    if (const auto *string = std::get_if<QString>(&m_value)) {
        writeString(out, *string);
    } else if (const auto *array = std::get_if<Array>(&m_value)) {
        writeContainer(out, depth, '[', ']', *array, [&](const VextilJsonValue &v) { v.write(out, depth + 1); });
    } else {
        writeContainer(out, depth, '{', '}', std::get<Object>(m_value), [&](const Member &m) {
            writeString(out, m.first);
            out.append(" : ");
            m.second.write(out, depth + 1);
        });
    }
}
