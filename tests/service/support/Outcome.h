#pragma once

#include "service/core/CaldraError.h"

#include <QFuture>
#include <QtTest/QtTest>

#include <optional>

namespace caldra::tests {

/// Waits for a call and returns its error; empty when it succeeded.
template <class T>
std::optional<CaldraError> errorOf(QFuture<T> future)
{
    try {
        future.waitForFinished();
    } catch (const CaldraError &error) {
        return error;
    }
    return std::nullopt;
}

/// Waits for a call and returns what it returned. A call that fails throws, which fails the test.
template <class T>
T resultOf(QFuture<T> future)
{
    future.waitForFinished();
    if (future.resultCount() == 0) {
        throw std::runtime_error("the call was cancelled");
    }
    return future.result();
}

/// The payload in the envelope of every good answer.
inline QByteArray enveloped(const QByteArray &payload)
{
    return R"({"data":)" + payload + '}';
}

} // namespace caldra::tests
