#pragma once

#include <QString>

#include <cstdint>

namespace zorel::app::presentation {

// How figures are written, in the window and in the terminal alike. A value that is not finite is an em dash.

/// Whole seconds, cut off: "1h05m", "2m03s" or "42s". A negative duration is written in seconds.
QString durationText(double seconds);
/// Four decimals.
QString lossText(double loss);
/// e raised to the loss, one decimal; an em dash unless the loss lies between 0 and 20.
QString perplexityText(double loss);
/// Two decimals and an exponent.
QString learningRateText(double rate);
/// Three decimals.
QString gradNormText(double norm);
/// No decimals.
QString throughputText(double perSecond);
/// With a comma between groups of three digits, in every locale.
QString groupedText(std::int64_t number);

} // namespace zorel::app::presentation
