#pragma once

#include "updater/UpdateError.h"

#include <QTest>

#include <optional>

namespace zorel::updater {

/// For the messages of failed comparisons.
inline char *toString(const std::optional<UpdateError> &error)
{
    return QTest::toString(error ? error->message() : QStringLiteral("no error"));
}

} // namespace zorel::updater

namespace zorel::tests {

/// The error that `action` ends with; nothing when it succeeds.
template <class Action>
std::optional<updater::UpdateError> errorOf(Action action)
{
    try {
        action();
    } catch (const updater::UpdateError &error) {
        return error;
    }
    return std::nullopt;
}

inline std::optional<updater::UpdateError> extractionFailed(const QString &text)
{
    return updater::UpdateError(updater::UpdateError::ExtractionFailed{text});
}

inline std::optional<updater::UpdateError> cancelled()
{
    return updater::UpdateError(updater::UpdateError::Cancelled{});
}

} // namespace zorel::tests
