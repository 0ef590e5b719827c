#pragma once

#include <QDateTime>
#include <QString>

#include <chrono>
#include <optional>
#include <string_view>

namespace zorel::library {

/// A moment, to the microsecond.
using ArchiveDate = std::chrono::sys_time<std::chrono::microseconds>;

/// Reads "2025-03-14T09:26:53Z": four digits of the year, the "T", the seconds and the zone ("Z" or "+01:00")
/// are required; the seconds may have a fraction of any number of digits, of which six count. Nothing for
/// any other text and for a day that does not exist.
std::optional<ArchiveDate> parseArchiveDate(std::string_view text);

/// The text that parseArchiveDate reads, in UTC; milliseconds, or microseconds where there are any.
QString toIsoText(ArchiveDate date);

/// In UTC, to the millisecond.
QDateTime toDateTime(ArchiveDate date);

} // namespace zorel::library
