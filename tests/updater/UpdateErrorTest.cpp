#include "updater/UpdateError.h"

#include <QTest>

using zorel::updater::UpdateError;

Q_DECLARE_METATYPE(UpdateError::Payload)

class UpdateErrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCaseHasItsMessage_data();
    void everyCaseHasItsMessage();
    void theCaseIsThatOfThePayload();
};

void UpdateErrorTest::everyCaseHasItsMessage_data()
{
    QTest::addColumn<UpdateError::Payload>("payload");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const UpdateError::Payload &payload, const char *message) {
        QTest::newRow(name) << payload << QString::fromUtf8(message);
    };
    row("http 0", UpdateError::Http{0, QStringLiteral("connection refused")},
        "Couldn't reach the update server. Try downloading manually from https://talvex.example/downloads.");
    row("http -1", UpdateError::Http{-1, QString()},
        "Couldn't reach the update server. Try downloading manually from https://talvex.example/downloads.");
    row("http 503", UpdateError::Http{503, QStringLiteral("on fire")},
        "The update server returned HTTP 503. Try downloading manually from "
        "https://talvex.example/downloads.");
    row("checksumMismatch",
        UpdateError::ChecksumMismatch{QStringLiteral("0123456789abcdef"), QStringLiteral("fedcba9876543210")},
        "Downloaded file is corrupted (expected 01234567…, got fedcba98…).");
    row("extractionFailed", UpdateError::ExtractionFailed{QStringLiteral("ditto exited with code 1: no")},
        "Couldn't unpack the update: ditto exited with code 1: no");
    row("targetNotWritable", UpdateError::TargetNotWritable{QStringLiteral("/Applications")},
        "This Mac account can't replace the app at /Applications. Move Talvex LLM Trainer.app to a folder "
        "you "
        "own, or sign in as an administrator and try again.");
    row("relaunchFailed", UpdateError::RelaunchFailed{QStringLiteral("installer launcher exited 127")},
        "Couldn't relaunch into the new version: installer launcher exited 127");
    row("clientUnavailable", UpdateError::ClientUnavailable{},
        "Caldra is not configured. Add CaldraAPIKey and CaldraOrganizationId to Info.plist.");
    row("decode", UpdateError::Decode{},
        "The update server returned an unexpected response. Try downloading manually from "
        "https://talvex.example/downloads.");
    row("noReleaseYet", UpdateError::NoReleaseYet{}, "No release has been published yet.");
    row("appNotFoundInArtifact", UpdateError::AppNotFoundInArtifact{},
        "The downloaded update doesn't contain a .app bundle.");
    row("cancelled", UpdateError::Cancelled{}, "Update cancelled.");
    // A path is shown as it is, whatever stands in it.
    row("a path with a place marker", UpdateError::TargetNotWritable{QStringLiteral("/a/%1/%2")},
        "This Mac account can't replace the app at /a/%1/%2. Move Talvex LLM Trainer.app to a folder you "
        "own, "
        "or sign in as an administrator and try again.");
}

void UpdateErrorTest::everyCaseHasItsMessage()
{
    QFETCH(UpdateError::Payload, payload);
    QFETCH(QString, message);
    const UpdateError error(payload);
    QCOMPARE(error.message(), message);
    QCOMPARE(QString::fromUtf8(error.what()), message);
}

void UpdateErrorTest::theCaseIsThatOfThePayload()
{
    QCOMPARE(UpdateError(UpdateError::Http{}).errorCase(), UpdateError::Case::http);
    QCOMPARE(UpdateError(UpdateError::ChecksumMismatch{}).errorCase(), UpdateError::Case::checksumMismatch);
    QCOMPARE(UpdateError(UpdateError::ExtractionFailed{}).errorCase(), UpdateError::Case::extractionFailed);
    QCOMPARE(UpdateError(UpdateError::TargetNotWritable{}).errorCase(), UpdateError::Case::targetNotWritable);
    QCOMPARE(UpdateError(UpdateError::RelaunchFailed{}).errorCase(), UpdateError::Case::relaunchFailed);
    QCOMPARE(UpdateError(UpdateError::ClientUnavailable{}).errorCase(), UpdateError::Case::clientUnavailable);
    QCOMPARE(UpdateError(UpdateError::Decode{}).errorCase(), UpdateError::Case::decode);
    QCOMPARE(UpdateError(UpdateError::NoReleaseYet{}).errorCase(), UpdateError::Case::noReleaseYet);
    QCOMPARE(UpdateError(UpdateError::AppNotFoundInArtifact{}).errorCase(),
             UpdateError::Case::appNotFoundInArtifact);
    QCOMPARE(UpdateError(UpdateError::Cancelled{}).errorCase(), UpdateError::Case::cancelled);
}

QTEST_GUILESS_MAIN(UpdateErrorTest)
#include "UpdateErrorTest.moc"
