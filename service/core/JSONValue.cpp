#include "service/core/JSONValue.h"

#include "service/core/DecodingError.h"
#include "service/core/EncodingError.h"
#include "service/core/JSONNode.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

constexpr int deepestNesting = 1000;

QString textOf(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

} // namespace

JSONValue::JSONValue(bool value)
    : m_value(value)
{}

JSONValue::JSONValue(int value)
    : m_value(qint64(value))
{}

JSONValue::JSONValue(qint64 value)
    : m_value(value)
{}

JSONValue::JSONValue(double value)
    : m_value(value)
{}

JSONValue::JSONValue(QString value)
    : m_value(std::move(value))
{}

JSONValue::JSONValue(Array value)
    : m_value(std::move(value))
{}

JSONValue::JSONValue(Object value)
    : m_value(std::move(value))
{}

JSONValue JSONValue::fromJSON(const QByteArray &text)
{
    const JSONDocument document(text);
    return decoded(document.root(), {});
}

JSONValue JSONValue::decoded(const JSONNode &node, const DecodingPath &path)
{
    switch (node.kind()) {
    case JSONNode::Kind::null:
        return {};
    case JSONNode::Kind::boolean:
        return node.boolean();
    case JSONNode::Kind::integer:
    case JSONNode::Kind::number:
        if (const auto integer = node.integer()) {
            return *integer;
        }
        return node.number();
    case JSONNode::Kind::text:
        return textOf(node.text());
    case JSONNode::Kind::array: {
        Array array;
        array.reserve(node.elementCount());
        node.forEachElement([&](const JSONNode &element) {
            array.push_back(decoded(element, {&path, {}, qsizetype(array.size())}));
        });
        return array;
    }
    case JSONNode::Kind::object: {
        Object object;
        node.forEachMember([&](std::string_view key, const JSONNode &member) {
            object.insert_or_assign(textOf(key), decoded(member, {&path, key}));
        });
        return object;
    }
    }
    failDecoding(path, u"Unsupported JSON value"_s);
}

QJsonValue JSONValue::encoded(int depth) const
{
    if (depth > deepestNesting) {
        throw EncodingError("The value is nested too deeply for JSON.");
    }
    switch (kind()) {
    case Kind::null:
        return QJsonValue::Null;
    case Kind::boolean:
        return *boolean();
    case Kind::integer:
        return *integer();
    case Kind::number:
        if (!std::isfinite(*number())) {
            throw EncodingError("JSON has no number that is not finite.");
        }
        return *number();
    case Kind::string:
        return *string();
    case Kind::array: {
        QJsonArray result;
        for (const JSONValue &element : *array()) {
            result.append(element.encoded(depth + 1));
        }
        return result;
    }
    case Kind::object: {
        QJsonObject result;
        for (const auto &[key, member] : *object()) {
            result.insert(key, member.encoded(depth + 1));
        }
        return result;
    }
    }
    return {};
}

QByteArray JSONValue::toJSON() const
{
    // Qt's writer takes arrays and objects only, so the value travels inside an array of one.
    const QByteArray wrapped = QJsonDocument(QJsonArray{encoded()}).toJson(QJsonDocument::Compact);
    return wrapped.mid(1, wrapped.size() - 2);
}

} // namespace caldra
