#pragma once

#include "service/core/APIError.h"
#include "service/core/DecodingError.h"
#include "service/core/TransportError.h"

#include <QByteArray>
#include <QString>

#include <exception>
#include <variant>

class QDebug;

namespace caldra {

/// How every call of the library fails.
///
/// A QFuture of the library carries it; `result()` throws it. No text of it holds the API key.
class CaldraError : public std::exception
{
public:
    enum class Case { invalidURL, transport, api, decoding, unexpectedStatus };

    struct InvalidURL
    {
        QString path;
    };
    struct UnexpectedStatus
    {
        int status = -1; ///< -1: the answer was no HTTP
        QByteArray body; ///< as it came
    };
    /// In the order of Case.
    using Payload = std::variant<InvalidURL, TransportError, APIError, DecodingError, UnexpectedStatus>;

    CaldraError(Payload payload);

    Case errorCase() const { return Case(m_payload.index()); }
    const Payload &payload() const { return m_payload; }
    /// Null unless that is the case.
    const InvalidURL *invalidURL() const { return std::get_if<InvalidURL>(&m_payload); }
    const TransportError *transport() const { return std::get_if<TransportError>(&m_payload); }
    const APIError *api() const { return std::get_if<APIError>(&m_payload); }
    const DecodingError *decoding() const { return std::get_if<DecodingError>(&m_payload); }
    const UnexpectedStatus *unexpectedStatus() const { return std::get_if<UnexpectedStatus>(&m_payload); }

    QString description() const;
    const char *what() const noexcept override { return m_what.constData(); }

    /// The same error without any occurrence of `secret` in its texts; the raw body stays as it came.
    CaldraError withoutSecret(const QString &secret) const;

private:
    Payload m_payload;
    QByteArray m_what;
};

QDebug operator<<(QDebug debug, const CaldraError &error);

} // namespace caldra
