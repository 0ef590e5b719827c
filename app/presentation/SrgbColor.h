#pragma once

namespace zorel::app::presentation {

/// An opaque colour; each part from 0 to 1.
struct SrgbColor
{
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const SrgbColor &) const = default;
};

} // namespace zorel::app::presentation
