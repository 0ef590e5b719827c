#pragma once

#include <simdjson.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

// What the parser that builds a whole tree says about a text, to hold the streaming readers against.

namespace zorel::fuzz {

inline void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

/// A text with other bytes behind it, which must not matter.
class PaddedText
{
public:
    PaddedText(std::string_view text, char after)
        : m_buffer(std::string(text) + std::string(simdjson::SIMDJSON_PADDING, after))
    {}
    std::string_view text() const { return {m_buffer.data(), m_buffer.size() - simdjson::SIMDJSON_PADDING}; }
    std::size_t readable() const { return m_buffer.size(); }

private:
    std::string m_buffer;
};

enum class Verdict { isObject, isNone, cannotTell };

/// `object` is valid until the next call.
inline Verdict parseObject(std::string_view text, simdjson::dom::object &object)
{
    static simdjson::dom::parser parser;
    // Some releases skip a byte order mark.
    if (text.starts_with("\xef\xbb\xbf")) {
        return Verdict::isNone;
    }
    simdjson::dom::element element;
    const simdjson::error_code error = parser.parse(text.data(), text.size()).get(element);
    // It gives up at numbers that the readers tolerate, and at another depth.
    if (error == simdjson::NUMBER_ERROR || error == simdjson::DEPTH_ERROR) {
        return Verdict::cannotTell;
    }
    if (error != simdjson::SUCCESS || element.get(object) != simdjson::SUCCESS) {
        return Verdict::isNone;
    }
    return Verdict::isObject;
}

/// The value of the last key of this name.
inline std::optional<simdjson::dom::element> lastValue(simdjson::dom::object object, std::string_view key)
{
    std::optional<simdjson::dom::element> value;
    for (const simdjson::dom::key_value_pair field : object) {
        if (field.key == key) {
            value = field.value;
        }
    }
    return value;
}

/// A whole number, however it is written.
inline std::optional<std::int64_t> wholeValue(simdjson::dom::element value)
{
    std::int64_t number = 0;
    double real = 0;
    if (value.get_int64().get(number) == simdjson::SUCCESS) {
        return number;
    }
    constexpr double exactBelow = 9007199254740992.0;
    if (value.is_double() && value.get_double().get(real) == simdjson::SUCCESS &&
        std::abs(real) < exactBelow && std::trunc(real) == real) {
        return static_cast<std::int64_t>(real);
    }
    return std::nullopt;
}

/// Whether the tree's double cannot say which whole number was written, or whether one was.
inline bool isUnclear(simdjson::dom::element value)
{
    constexpr double exactBelow = 9007199254740992.0;
    double real = 0;
    return value.is_double() && value.get_double().get(real) == simdjson::SUCCESS &&
           (std::abs(real) >= exactBelow || std::trunc(real) == real);
}

} // namespace zorel::fuzz
