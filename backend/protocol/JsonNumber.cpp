#include "backend/protocol/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace zorel::backend::protocol {

namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Takes the leading digits off `text`.
std::string_view takeDigits(std::string_view &text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    const std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    return digits;
}

bool takeOneOf(std::string_view &text, std::string_view characters)
{
    if (text.empty() || characters.find(text.front()) == std::string_view::npos) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

struct NumberParts
{
    bool negative = false;
    std::string_view whole;
    std::string_view fraction;
    bool negativeExponent = false;
    std::string_view exponent;
};

std::optional<NumberParts> numberParts(std::string_view token)
{
    NumberParts parts;
    parts.negative = takeOneOf(token, "-");
    parts.whole = takeDigits(token);
    if (parts.whole.empty() || (parts.whole.size() > 1 && parts.whole.front() == '0')) {
        return std::nullopt;
    }
    if (takeOneOf(token, ".")) {
        parts.fraction = takeDigits(token);
        if (parts.fraction.empty()) {
            return std::nullopt;
        }
    }
    if (takeOneOf(token, "eE")) {
        parts.negativeExponent = !token.empty() && token.front() == '-';
        takeOneOf(token, "+-");
        parts.exponent = takeDigits(token);
        if (parts.exponent.empty()) {
            return std::nullopt;
        }
    }
    return token.empty() ? std::optional(parts) : std::nullopt;
}

/// The exponent, or one so large that no number of digits in memory can balance it; always far enough from
/// the ends of 64 bits to go on counting.
std::int64_t exponentOf(const NumberParts &parts)
{
    constexpr std::int64_t unbalanced = INT64_MAX / 2;
    std::int64_t magnitude = 0;
    const auto [end, error] =
        std::from_chars(parts.exponent.data(), parts.exponent.data() + parts.exponent.size(), magnitude);
    magnitude = error == std::errc::result_out_of_range ? unbalanced : std::min(magnitude, unbalanced);
    return parts.negativeExponent ? -magnitude : magnitude;
}

} // namespace

bool isJsonNumber(std::string_view token)
{
    return numberParts(token).has_value();
}

std::optional<std::int64_t> wholeNumber(std::string_view token)
{
    const std::optional<NumberParts> parts = numberParts(token);
    if (!parts) {
        return std::nullopt;
    }

    std::string digits;
    digits.append(parts->whole).append(parts->fraction);
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty()) {
        return 0;
    }
    std::int64_t power = exponentOf(*parts) - static_cast<std::int64_t>(parts->fraction.size());
    while (digits.back() == '0') {
        digits.pop_back();
        ++power;
    }
    constexpr std::int64_t mostDigits = 19; // of a 64-bit integer
    if (power < 0 || power > mostDigits || static_cast<std::int64_t>(digits.size()) + power > mostDigits) {
        return std::nullopt;
    }
    digits.append(static_cast<std::size_t>(power), '0');
    if (parts->negative) {
        digits.insert(digits.begin(), '-');
    }

    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

} // namespace zorel::backend::protocol
