#pragma once

#include <QString>

namespace zorel::terminal {

QString helpText();
QString versionText();

} // namespace zorel::terminal
