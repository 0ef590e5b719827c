#pragma once

#include <QString>

namespace zorel::app::presentation {

// Numbers as printf writes them in the C locale, in every locale. Of two texts that are equally near, printf
// takes the even one, Qt's own functions the larger: 1234.5 without decimals is 1234.

/// "%.Nf".
QString fixedText(double value, int decimals);
/// "%.Ne".
QString scientificText(double value, int decimals);

} // namespace zorel::app::presentation
