#pragma once

#include "service/core/JSONValue.h"
#include "service/core/RecordFields.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace caldra {

namespace detail {

QJsonValue encodeNumber(double value);
QString encodeText(std::string_view text);

} // namespace detail

template <Record T>
QJsonObject encodeRecord(const T &record);

template <class T>
QJsonValue encodeValue(const T &value)
{
    if constexpr (std::is_same_v<T, QString> || std::is_same_v<T, bool> || std::is_same_v<T, qint64>) {
        return value;
    } else if constexpr (std::is_same_v<T, double>) {
        return detail::encodeNumber(value);
    } else if constexpr (std::is_same_v<T, JSONValue>) {
        return value.encoded();
    } else if constexpr (WireEnumeration<T>) {
        return detail::encodeText(wireText(value));
    } else if constexpr (isListField<T>) {
        QJsonArray array;
        for (const auto &element : value) {
            {
                array.append(encodeValue(element));
            }
        }
        return array;
    } else if constexpr (isTextMapField<T>) {
        QJsonObject object;
        for (const auto &[key, member] : value) {
            {
                object.insert(key, encodeValue(member));
            }
        }
        return object;
    } else if constexpr (Record<T>) {
        return encodeRecord(value);
    } else {
        static_assert(isUnsupportedField<T>, "no JSON form is known for a field of this type");
    }
}

/// An optional field without a value is left out. Throws EncodingError as JSONValue::toJSON does.
template <Record T>
QJsonObject encodeRecord(const T &record)
{
    QJsonObject object;
    const auto encodeField = [&]<class Entry>(const Entry &entry) {
        const auto &value = record.*entry.member;
        const QString key = detail::encodeText(entry.name);
        if constexpr (!isOptionalField<typename Entry::ValueType>) {
            {
                object.insert(key, encodeValue(value));
            }
        } else if (value) {
            {
                object.insert(key, encodeValue(*value));
            }
        }
    };
    std::apply([&](const auto &...entry) { (encodeField(entry), ...); }, T::fields);
    return object;
}

template <Record T>
QByteArray encodeJSON(const T &record)
{
    return QJsonDocument(encodeRecord(record)).toJson(QJsonDocument::Compact);
}

} // namespace caldra
