#pragma once

#include <QString>

#include <cstdint>

namespace zorel::ui::dashboard {

/// How a log line is drawn. A line of several kinds is of the gravest.
enum class LogLineKind : std::uint8_t { ordinary, step, warning, error };

LogLineKind logLineKind(const QString &line);

} // namespace zorel::ui::dashboard
