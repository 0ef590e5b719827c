#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <variant>
#include <vector>

class QJsonValue;

namespace caldra {

class JSONNode;
struct DecodingPath;

/// Any JSON value, for the places where the services leave the shape open.
///
/// A number that is whole and fits into 64 bits is an integer, however it is written: 5.0 reads as 5.
class JSONValue
{
public:
    using Array = std::vector<JSONValue>;
    using Object = std::map<QString, JSONValue>;

    enum class Kind { null, boolean, integer, number, string, array, object };

    JSONValue() = default; ///< null
    JSONValue(std::nullptr_t) {}
    JSONValue(bool value);
    JSONValue(int value);
    JSONValue(qint64 value);
    JSONValue(double value);
    JSONValue(QString value);
    JSONValue(Array value);
    JSONValue(Object value);
    // A pointer would otherwise become a boolean.
    JSONValue(const void *) = delete;

    Kind kind() const { return Kind(m_value.index()); }
    bool isNull() const { return kind() == Kind::null; }
    /// Null unless the value is of that kind.
    const bool *boolean() const { return std::get_if<bool>(&m_value); }
    const qint64 *integer() const { return std::get_if<qint64>(&m_value); }
    const double *number() const { return std::get_if<double>(&m_value); }
    const QString *string() const { return std::get_if<QString>(&m_value); }
    const Array *array() const { return std::get_if<Array>(&m_value); }
    const Object *object() const { return std::get_if<Object>(&m_value); }

    /// Throws DecodingError when `text` is no JSON, or holds a number that no floating point can carry.
    static JSONValue fromJSON(const QByteArray &text);
    /// Compact, keys sorted. Throws EncodingError when a number is not finite or the nesting passes 1000
    /// levels.
    QByteArray toJSON() const;

    static JSONValue decoded(const JSONNode &node, const DecodingPath &path);
    QJsonValue encoded(int depth = 0) const;

    bool operator==(const JSONValue &) const = default;

private:
    std::variant<std::monostate, bool, qint64, double, QString, Array, Object> m_value;
};

} // namespace caldra
