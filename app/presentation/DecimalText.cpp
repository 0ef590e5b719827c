#include "app/presentation/DecimalText.h"

#include <array>
#include <charconv>

namespace zorel::app::presentation {

namespace {

QString decimalText(double value, std::chars_format format, int decimals)
{
    // The largest number has 309 digits before the point.
    std::array<char, 512> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value, format, decimals);
    return error == std::errc() ? QString::fromLatin1(text.data(), end - text.data()) : QString();
}

} // namespace

QString fixedText(double value, int decimals)
{
    return decimalText(value, std::chars_format::fixed, decimals);
}

QString scientificText(double value, int decimals)
{
    return decimalText(value, std::chars_format::scientific, decimals);
}

} // namespace zorel::app::presentation
