#pragma once

#include "library/ArchivedModelRecord.h"

#include <QString>

namespace zorel::ui::library {

// How a run is written in the library's screens. Dates are in the user's locale and time zone.

/// "MyModel v1.0.0".
QString nameAndVersion(const zorel::library::ArchivedModelRecord &run);
/// Empty when the run has no date.
QString shortDateText(const zorel::library::ArchivedModelRecord &run);
QString longDateText(const zorel::library::ArchivedModelRecord &run);
/// Three decimals, for rows.
QString rowLossText(const zorel::library::ArchivedModelRecord &run);

} // namespace zorel::ui::library
