#pragma once

#include <QString>

#include <exception>

namespace caldra {

/// Why no whole answer came back.
class TransportError : public std::exception
{
public:
    enum class Kind {
        connection,      ///< name not found, refused, unreachable, broken
        security,        ///< no trustworthy encrypted connection
        timedOut,        ///< the configured time passed before the answer was whole
        closedEarly,     ///< the connection ended in the middle of the answer
        tooLarge,        ///< the answer passes the transport's limit
        refusedRedirect, ///< redirected too often, or to an address that is not allowed
        unusableRequest, ///< the request holds what HTTP or JSON cannot carry
        other            ///< what an injected transport threw
    };

    TransportError(Kind kind, QString message)
        : m_kind(kind)
        , m_message(std::move(message))
        , m_what(m_message.toUtf8())
    {}

    Kind kind() const { return m_kind; }
    /// For people.
    const QString &localizedDescription() const { return m_message; }
    const char *what() const noexcept override { return m_what.constData(); }

private:
    Kind m_kind;
    QString m_message;
    QByteArray m_what;
};

} // namespace caldra
