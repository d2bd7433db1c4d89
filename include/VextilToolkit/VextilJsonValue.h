#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QByteArray>
#include <QString>

#include <utility>
#include <variant>
#include <vector>

/// A JSON value made of strings, arrays and objects whose members keep the order they were
/// added in; upload metadata must reach the backend with its keys in a fixed order.
class VEXTIL_EXPORT VextilJsonValue {
public:
    using Array = std::vector<VextilJsonValue>;
    using Member = std::pair<QString, VextilJsonValue>;
    using Object = std::vector<Member>;

    /// A string value (the empty string by default).
    VextilJsonValue(QString string = {}) : m_value(std::move(string)) {}
    /// An array value.
    VextilJsonValue(Array array) : m_value(std::move(array)) {}
    /// An object value, members in the given order.
    VextilJsonValue(Object object) : m_value(std::move(object)) {}

    bool isString() const { return std::holds_alternative<QString>(m_value); }
    bool isArray() const { return std::holds_alternative<Array>(m_value); }
    bool isObject() const { return std::holds_alternative<Object>(m_value); }
    /// The string, or an empty string for other kinds.
    QString toString() const;
    /// The elements, or none for other kinds.
    const Array &toArray() const;
    /// The members, or none for other kinds.
    const Object &toObject() const;
    /// The first member named key of an object; an empty string when there is none.
    VextilJsonValue value(const QString &key) const;

    /// UTF-8 JSON, pretty-printed: one member or element per line, two blanks of indentation
    /// per level, " : " between key and value, LF line ends, nothing after the last bracket.
    QByteArray toPrettyJson() const;

    friend bool operator==(const VextilJsonValue &, const VextilJsonValue &) = default;

private:
    void write(QByteArray &out, int depth) const;
    std::variant<QString, Array, Object> m_value;
};
