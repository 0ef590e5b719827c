#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace caldra {
struct DistributionLatestResponse;
}

namespace zorel::updater {

/// A release that can be offered to the user.
struct AvailableUpdate
{
    QString version;
    QString channel; ///< "stable", "beta" or "dev"
    QString notes;   ///< Markdown; empty when the release has none
    std::optional<QString> releasedAt;
    QUrl downloadUrl;
    QString fileName;
    qint64 sizeBytes = 0;
    std::optional<QString> sha256; ///< lower-case hexadecimal
    std::optional<QString> minOsVersion;
    std::optional<QString> architecture; ///< "x64", "arm64", "universal" or "x86"

    bool operator==(const AvailableUpdate &) const = default;

    /// What tells one offer from another.
    const QString &id() const { return version; }

    /// The service's answer as an offer. Throws UpdateError (`decode`) when the download address is none.
    static AvailableUpdate from(const caldra::DistributionLatestResponse &latest);
};

/// Refuses an update that must not even be downloaded: one without a digest to verify it by, from an address
/// that is not https (http on a loopback address), with a file name that could lead out of its folder, or of
/// a kind that nothing here unpacks. Throws UpdateError.
void requireInstallable(const AvailableUpdate &update);

} // namespace zorel::updater
