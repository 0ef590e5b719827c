#pragma once

#include "service/core/DecodingError.h"
#include "service/core/JSONNode.h"
#include "service/core/JSONValue.h"
#include "service/core/RecordFields.h"

#include <QString>

#include <array>
#include <utility>

namespace caldra {

template <class T>
void decodeValue(const JSONNode &node, T &value, const DecodingPath &path);

namespace detail {

void requireKind(const JSONNode &node, JSONNode::Kind kind, const DecodingPath &path);
bool decodeBoolean(const JSONNode &node, const DecodingPath &path);
qint64 decodeInteger(const JSONNode &node, const DecodingPath &path);
double decodeNumber(const JSONNode &node, const DecodingPath &path);
QString decodeText(const JSONNode &node, const DecodingPath &path);
[[noreturn]] void failUnknownText(const JSONNode &node, const DecodingPath &path);
[[noreturn]] void failMissing(std::string_view name, const DecodingPath &path);

template <WireEnumeration Enumeration>
void decodeEnumeration(const JSONNode &node, Enumeration &value, const DecodingPath &path)
{
    requireKind(node, JSONNode::Kind::text, path);
    for (const auto &entry : wireTexts(Enumeration{})) {
        if (entry.text == node.text()) {
            value = entry.value;
            return;
        }
    }
    failUnknownText(node, path);
}

template <class T>
void decodeList(const JSONNode &node, std::vector<T> &value, const DecodingPath &path)
{
    requireKind(node, JSONNode::Kind::array, path);
    value.clear();
    value.reserve(node.elementCount());
    node.forEachElement([&](const JSONNode &element) {
        const DecodingPath here{&path, {}, qsizetype(value.size())};
        decodeValue(element, value.emplace_back(), here);
    });
}

template <class T>
void decodeTextMap(const JSONNode &node, std::map<QString, T> &value, const DecodingPath &path)
{
    requireKind(node, JSONNode::Kind::object, path);
    value.clear();
    node.forEachMember([&](std::string_view key, const JSONNode &member) {
        T decoded{};
        decodeValue(member, decoded, {&path, key});
        value.insert_or_assign(QString::fromUtf8(key.data(), qsizetype(key.size())), std::move(decoded));
    });
}

template <Record T, std::size_t... index>
void decodeRecord(const JSONNode &node, T &value, const DecodingPath &path, std::index_sequence<index...>)
{
    requireKind(node, JSONNode::Kind::object, path);
    std::array<bool, sizeof...(index) + 1> found{};
    node.forEachMember([&](std::string_view key, const JSONNode &member) {
        const auto decodeIf = [&](const auto &entry, bool &isFound) {
            if (entry.name != key) {
                {
                    return false;
                }
            }
            decodeValue(member, value.*entry.member, {&path, key});
            isFound = true;
            return true;
        };
        (void)(decodeIf(std::get<index>(T::fields), found[index]) || ...);
    });
    const auto require = [&]<class Entry>(const Entry &entry, bool isFound) {
        if constexpr (!isOptionalField<typename Entry::ValueType>) {
            if (!isFound) {
                {
                    failMissing(entry.name, path);
                }
            }
        }
    };
    (require(std::get<index>(T::fields), found[index]), ...);
}

} // namespace detail

/// Fills `value` from `node`. Throws DecodingError, which names the field.
///
/// An optional field may be absent or null; every other one must be there. Unknown keys are ignored, and of a
/// key that stands twice the last one counts.
template <class T>
void decodeValue(const JSONNode &node, T &value, const DecodingPath &path)
{
    if constexpr (std::is_same_v<T, QString>) {
        value = detail::decodeText(node, path);
    } else if constexpr (std::is_same_v<T, bool>) {
        value = detail::decodeBoolean(node, path);
    } else if constexpr (std::is_same_v<T, qint64>) {
        value = detail::decodeInteger(node, path);
    } else if constexpr (std::is_same_v<T, double>) {
        value = detail::decodeNumber(node, path);
    } else if constexpr (std::is_same_v<T, JSONValue>) {
        value = JSONValue::decoded(node, path);
    } else if constexpr (WireEnumeration<T>) {
        detail::decodeEnumeration(node, value, path);
    } else if constexpr (isOptionalField<T>) {
        if (node.kind() == JSONNode::Kind::null) {
            {
                value.reset();
            }
        } else {
            {
                decodeValue(node, value.emplace(), path);
            }
        }
    } else if constexpr (isListField<T>) {
        detail::decodeList(node, value, path);
    } else if constexpr (isTextMapField<T>) {
        detail::decodeTextMap(node, value, path);
    } else if constexpr (Record<T>) {
        using Fields = std::remove_cvref_t<decltype(T::fields)>;
        // A record without fields asks nothing of what stands in its place.
        if constexpr (std::tuple_size_v < Fields >> 0) {
            {
                detail::decodeRecord(node, value, path,
                                     std::make_index_sequence<std::tuple_size_v<Fields>>());
            }
        }
    } else {
        static_assert(isUnsupportedField<T>, "no JSON form is known for a field of this type");
    }
}

/// Throws DecodingError.
template <class T>
T decodeJSON(const QByteArray &text)
{
    const JSONDocument document(text);
    T value{};
    decodeValue(document.root(), value, {});
    return value;
}

} // namespace caldra
