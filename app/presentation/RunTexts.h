#pragma once

#include <QString>

namespace zorel::app::presentation {

// What is said about an archived run, in the window and in the terminal alike.

/// The title of the family with this raw value; an unknown one as it stands.
QString familyTitle(const QString &rawValue);
/// The title of the capability with this raw value; an unknown one as it stands.
QString capabilityTitle(const QString &rawValue);

} // namespace zorel::app::presentation
