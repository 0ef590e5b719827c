#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

namespace zorel::updater {

class Cancellation;

/// Hears how far a download has come.
struct DownloadProgressDelegate
{
    /// The bytes written so far, and how many are expected, -1 when the server does not tell. Called on the
    /// thread of the download.
    std::function<void(qint64 written, qint64 expectedTotal)> onProgress;
};

/// One file to fetch.
struct ArtifactDownload
{
    QUrl url;
    qint64 announcedSize = 0; ///< bytes; a longer body is cut off
    QByteArray userAgent;
    std::chrono::milliseconds inactivity{60'000}; ///< how long the server may be silent
    QList<QSslCertificate> trustedAuthorities;    ///< beside the system's own

    /// Fetches the file to `destination`, which must not exist, and blocks meanwhile. Sends no credentials
    /// and no cookies; follows redirects to addresses that downloads may come from, never from https to http.
    /// Throws UpdateError: `http`, `cancelled`, or `extractionFailed` when the file cannot be written;
    /// nothing is left at `destination` then.
    void run(const QString &destination, const DownloadProgressDelegate &delegate,
             const Cancellation &cancellation) const;
};

} // namespace zorel::updater
