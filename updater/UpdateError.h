#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <exception>
#include <variant>

namespace zorel::updater {

/// How a check or an installation fails.
class UpdateError : public std::exception
{
public:
    enum class Case : std::uint8_t {
        http,
        checksumMismatch,
        extractionFailed,
        targetNotWritable,
        relaunchFailed,
        clientUnavailable,
        decode,
        noReleaseYet,
        appNotFoundInArtifact,
        cancelled,
    };

    struct Http
    {
        int status = 0;  ///< 0 or less: no answer came
        QString message; ///< for developers; not part of the shown text

        bool operator==(const Http &) const = default;
    };
    struct ChecksumMismatch
    {
        QString expected;
        QString actual;

        bool operator==(const ChecksumMismatch &) const = default;
    };
    struct ExtractionFailed
    {
        QString text;

        bool operator==(const ExtractionFailed &) const = default;
    };
    struct TargetNotWritable
    {
        QString path;

        bool operator==(const TargetNotWritable &) const = default;
    };
    struct RelaunchFailed
    {
        QString text;

        bool operator==(const RelaunchFailed &) const = default;
    };
    struct ClientUnavailable
    {
        bool operator==(const ClientUnavailable &) const = default;
    };
    struct Decode
    {
        bool operator==(const Decode &) const = default;
    };
    struct NoReleaseYet
    {
        bool operator==(const NoReleaseYet &) const = default;
    };
    struct AppNotFoundInArtifact
    {
        bool operator==(const AppNotFoundInArtifact &) const = default;
    };
    struct Cancelled
    {
        bool operator==(const Cancelled &) const = default;
    };
    /// In the order of Case.
    using Payload = std::variant<Http, ChecksumMismatch, ExtractionFailed, TargetNotWritable, RelaunchFailed,
                                 ClientUnavailable, Decode, NoReleaseYet, AppNotFoundInArtifact, Cancelled>;

    UpdateError(Payload payload);

    Case errorCase() const { return static_cast<Case>(m_payload.index()); }
    const Payload &payload() const { return m_payload; }
    /// For people.
    QString message() const;
    const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const UpdateError &other) const { return m_payload == other.m_payload; }

private:
    Payload m_payload;
    QByteArray m_what;
};

} // namespace zorel::updater
