#pragma once

#include <QString>

#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

namespace caldra {

/// One field of a record: its key in JSON and the member that holds it.
template <class Record, class Value>
struct Field
{
    using ValueType = Value;

    std::string_view name;
    Value Record::*member;
};

template <class Record, class Value>
constexpr Field<Record, Value> field(std::string_view name, Value Record::*member)
{
    return {name, member};
}

/// One value of an enumeration and the text that stands for it in JSON and in queries.
template <class Enumeration>
struct WireText
{
    Enumeration value;
    std::string_view text;
};

template <class Enumeration>
WireText(Enumeration, std::string_view) -> WireText<Enumeration>;

/// A struct that lists its fields once: `static constexpr auto fields = std::tuple{field("id", &T::id),
/// ...}`. The encoder and the decoder need nothing else.
template <class T>
concept Record = std::is_class_v<T> && requires
{
    std::tuple_size<std::remove_cvref_t<decltype(T::fields)>>::value;
};

/// An enumeration with a function `wireTexts(E)` beside it that returns an array of WireText<E>.
template <class T>
concept WireEnumeration = std::is_enum_v<T> && requires(T value)
{
    wireTexts(value);
};

template <class T>
inline constexpr bool isOptionalField = false;
template <class T>
inline constexpr bool isOptionalField<std::optional<T>> = true;
template <class T>
inline constexpr bool isListField = false;
template <class T>
inline constexpr bool isListField<std::vector<T>> = true;
template <class T>
inline constexpr bool isTextMapField = false;
template <class T>
inline constexpr bool isTextMapField<std::map<QString, T>> = true;
template <class T>
inline constexpr bool isUnsupportedField = false;

template <WireEnumeration Enumeration>
constexpr std::string_view wireText(Enumeration value)
{
    for (const auto &entry : wireTexts(value)) {
        if (entry.value == value) {
            {
                return entry.text;
            }
        }
    }
    return {};
}

} // namespace caldra
