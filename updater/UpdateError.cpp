#include "updater/UpdateError.h"

#include "updater/DownloadsPage.h"
#include "updater/Overloaded.h"

#include <utility>

namespace zorel::updater {

namespace {

QString manualDownload()
{
    return QStringLiteral("Try downloading manually from %1.").arg(downloadsPageAddress());
}

QString messageOf(const UpdateError::Http &error)
{
    if (error.status <= 0) {
        return QStringLiteral("Couldn't reach the update server. ") + manualDownload();
    }
    return QStringLiteral("The update server returned HTTP %1. ").arg(error.status) + manualDownload();
}

QString messageOf(const UpdateError::ChecksumMismatch &error)
{
    constexpr qsizetype shownDigits = 8;
    return QStringLiteral("Downloaded file is corrupted (expected ") + error.expected.left(shownDigits) +
           QStringLiteral("…, got ") + error.actual.left(shownDigits) + QStringLiteral("…).");
}

QString messageOf(const UpdateError::TargetNotWritable &error)
{
    return QStringLiteral("This Mac account can't replace the app at ") + error.path +
           QStringLiteral(". Move Talvex LLM Trainer.app to a folder you own, or sign in as an administrator "
                          "and try again.");
}

} // namespace

UpdateError::UpdateError(Payload payload)
    : m_payload(std::move(payload))
    , m_what(message().toUtf8())
{}

QString UpdateError::message() const
{
    return std::visit(
        Overloaded{
            [](const Http &error) { return messageOf(error); },
            [](const ChecksumMismatch &error) { return messageOf(error); },
            [](const ExtractionFailed &error) {
                return QStringLiteral("Couldn't unpack the update: ") + error.text;
            },
            [](const TargetNotWritable &error) { return messageOf(error); },
            [](const RelaunchFailed &error) {
                return QStringLiteral("Couldn't relaunch into the new version: ") + error.text;
            },
            [](const ClientUnavailable &) {
                return QStringLiteral(
                    "Caldra is not configured. Add CaldraAPIKey and CaldraOrganizationId to Info.plist.");
            },
            [](const Decode &) {
                return QStringLiteral("The update server returned an unexpected response. ") +
                       manualDownload();
            },
            [](const NoReleaseYet &) { return QStringLiteral("No release has been published yet."); },
            [](const AppNotFoundInArtifact &) {
                return QStringLiteral("The downloaded update doesn't contain a .app bundle.");
            },
            [](const Cancelled &) { return QStringLiteral("Update cancelled."); },
        },
        m_payload);
}

} // namespace zorel::updater
