#include "tests/updater/CheckerFixture.h"
#include "tests/updater/Files.h"

using namespace zorel::tests;
using namespace zorel::updater;
using caldra::tests::Answer;

namespace {

const UpdateAlert upToDate{UpdateAlert::Kind::UpToDate,
                           QStringLiteral("You're up to date"),
                           QStringLiteral("Talvex LLM Trainer 1.0 is the latest version available."),
                           {}};

UpdateAlert checkFailed(const QString &message)
{
    return {UpdateAlert::Kind::CheckFailed, QStringLiteral("Couldn't check for updates"), message,
            UpdateAlert::Link{QStringLiteral("Open Downloads Page"),
                              QUrl(QStringLiteral("https://talvex.example/downloads"))}};
}

PublishedRelease release(const char *version)
{
    PublishedRelease published;
    published.version = QString::fromUtf8(version);
    return published;
}

} // namespace

class UpdateCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theServiceIsAskedForTheLatestUpdate();
    void aNewerReleaseIsOffered();
    void nothingNewerIsToldAfterAManualCheckAlone_data();
    void nothingNewerIsToldAfterAManualCheckAlone();
    void nothingNewerTakesAnOfferBack();
    void aFailureIsKeptAndToldAfterAManualCheckAlone_data();
    void aFailureIsKeptAndToldAfterAManualCheckAlone();
    void aReleaseThatIsMissingIsNoSheet();
    void withoutAClientTheCheckSaysSo();
    void aFailureEndsWithTheNextCheck();
    void aFailureLeavesTheOffer();
    void aSkippedVersionIsOfferedByManualChecksAlone();
    void anotherVersionThanTheSkippedOneIsOffered();
    void remindingLaterForgetsTheOfferAlone();
    void everySuccessfulCheckIsDated();
    void aFailedCheckIsNotDated();
    void theDateOutlivesTheChecker();
    void aStoredDateThatIsNoneIsIgnored_data();
    void aStoredDateThatIsNoneIsIgnored();
    void aManualCheckTakesOverARunningOne();
    void everyPropertyTellsItsChange();
    void destroyingTheCheckerEndsItsCheck();
    void theBundleConfiguresTheChecker();
    void standInsForToolsAreForLoopbackServicesAlone_data();
    void standInsForToolsAreForLoopbackServicesAlone();
    void terminationIsLeftAloneWithoutAnUpdate();
};

void UpdateCheckTest::theServiceIsAskedForTheLatestUpdate()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkManually());
    QCOMPARE(fixture.service.requests().size(), 1U);
    QCOMPARE(fixture.service.lastRequest().method, QByteArray("GET"));
    QCOMPARE(fixture.service.lastRequest().target,
             QByteArray("/distributionApi/v1/organizations/org/applications/talvex-llm-trainer/latest"
                        "?platform=macos&channel=stable&purpose=update"));
}

void UpdateCheckTest::aNewerReleaseIsOffered()
{
    for (const bool isManual : {false, true}) {
        CheckerFixture fixture;
        QVERIFY(isManual ? fixture.checkManually() : fixture.checkAutomatically());
        const std::optional<AvailableUpdate> &offer = fixture.checker().available();
        QVERIFY(offer);
        QCOMPARE(offer->version, QStringLiteral("2.0"));
        QCOMPARE(offer->channel, QStringLiteral("stable"));
        QCOMPARE(offer->notes, QStringLiteral("# Faster"));
        QCOMPARE(offer->downloadUrl, QUrl(QStringLiteral("https://files.example/Trainer.zip")));
        QCOMPARE(fixture.checker().presentedUpdate(), offer);
        QVERIFY(!fixture.checker().lastError());
        QVERIFY(fixture.alerts.empty());
    }
}

void UpdateCheckTest::nothingNewerIsToldAfterAManualCheckAlone_data()
{
    QTest::addColumn<QString>("version");
    for (const char *version : {"1.0", "1.0.0", "0.9", "1.0-beta", "1"}) {
        QTest::newRow(version) << QString::fromUtf8(version);
    }
}

void UpdateCheckTest::nothingNewerIsToldAfterAManualCheckAlone()
{
    QFETCH(QString, version);
    CheckerFixture fixture;
    fixture.publish(release(version.toUtf8().constData()));
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(!fixture.checker().available());
    QVERIFY(fixture.alerts.empty());
    QVERIFY(fixture.checkManually());
    QVERIFY(!fixture.checker().available());
    QCOMPARE(fixture.alerts, std::vector{upToDate});
}

void UpdateCheckTest::nothingNewerTakesAnOfferBack()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(fixture.checker().available());
    fixture.publish(release("1.0"));
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(!fixture.checker().available());
    QVERIFY(!fixture.checker().presentedUpdate());
}

void UpdateCheckTest::aFailureIsKeptAndToldAfterAManualCheckAlone_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("message");
    const QString manually =
        QStringLiteral(" Try downloading manually from https://talvex.example/downloads.");
    PublishedRelease withoutAddress;
    withoutAddress.downloadUrl = QStringLiteral("not an address");
    QTest::newRow("refused") << Answer::json(R"({"error":{"code":"broken","message":"secret detail"}})", 500)
                             << QStringLiteral("The update server returned HTTP 500.") + manually;
    QTest::newRow("a page") << Answer::with(502, "text/html", "<html>")
                            << QStringLiteral("The update server returned HTTP 502.") + manually;
    QTest::newRow("closed") << Answer::dropped()
                            << QStringLiteral("Couldn't reach the update server.") + manually;
    QTest::newRow("not JSON") << Answer::with(200, "text/html", "<html>")
                              << QStringLiteral("The update server returned an unexpected response.") +
                                     manually;
    QTest::newRow("no address") << Answer::json(withoutAddress.answer())
                                << QStringLiteral("The update server returned an unexpected response.") +
                                       manually;
    QTest::newRow("not_found") << Answer::json(R"({"error":{"code":"not_found","message":"no"}})", 400)
                               << QStringLiteral("No release has been published yet.");
    QTest::newRow("404") << Answer::json(R"({"error":{"code":"gone","message":"no"}})", 404)
                         << QStringLiteral("No release has been published yet.");
}

void UpdateCheckTest::aFailureIsKeptAndToldAfterAManualCheckAlone()
{
    QFETCH(Answer, answer);
    QFETCH(QString, message);
    CheckerFixture fixture;
    fixture.answer(answer);
    QVERIFY(fixture.checkAutomatically());
    QCOMPARE(fixture.checker().lastError(), std::optional(message));
    QVERIFY(fixture.alerts.empty());
    QVERIFY(fixture.checkManually());
    QCOMPARE(fixture.checker().lastError(), std::optional(message));
    QCOMPARE(fixture.alerts, std::vector{checkFailed(message)});
    QVERIFY(!fixture.checker().available());
}

void UpdateCheckTest::aReleaseThatIsMissingIsNoSheet()
{
    CheckerFixture fixture;
    fixture.answer(Answer::json(R"({"error":{"code":"not_found","message":"no"}})", 404));
    QVERIFY(fixture.checkManually());
    QCOMPARE(fixture.checker().lastError(),
             std::optional(QStringLiteral("No release has been published yet.")));
    QVERIFY(!fixture.checker().presentedUpdate());
}

void UpdateCheckTest::withoutAClientTheCheckSaysSo()
{
    const QString message =
        QStringLiteral("Caldra is not configured. Add CaldraAPIKey and CaldraOrganizationId to Info.plist.");
    CheckerFixture fixture;
    fixture.surroundings.caldra.reset();
    QVERIFY(fixture.checkAutomatically());
    QCOMPARE(fixture.checker().lastError(), std::optional(message));
    QVERIFY(fixture.checkManually());
    QCOMPARE(fixture.alerts, std::vector{checkFailed(message)});
}

void UpdateCheckTest::aFailureEndsWithTheNextCheck()
{
    CheckerFixture fixture;
    fixture.answer(Answer::dropped());
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(fixture.checker().lastError());
    fixture.publish({});
    fixture.checker().checkForUpdates();
    QVERIFY(!fixture.checker().lastError());
    QVERIFY(fixture.waitForCheck());
    QVERIFY(!fixture.checker().lastError());
}

void UpdateCheckTest::aFailureLeavesTheOffer()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkAutomatically());
    const std::optional<AvailableUpdate> offer = fixture.checker().available();
    QVERIFY(offer);
    fixture.answer(Answer::dropped());
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(fixture.checker().lastError());
    QCOMPARE(fixture.checker().available(), offer);
}

void UpdateCheckTest::aSkippedVersionIsOfferedByManualChecksAlone()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkAutomatically());
    fixture.checker().skipThisVersion();
    QVERIFY(!fixture.checker().available());
    QCOMPARE(fixture.defaults.values.value(QStringLiteral("talvex.updater.skippedVersion")),
             QVariant(QStringLiteral("2.0")));
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(!fixture.checker().available());
    QVERIFY(fixture.checkManually());
    QVERIFY(fixture.checker().available());
}

void UpdateCheckTest::anotherVersionThanTheSkippedOneIsOffered()
{
    CheckerFixture fixture;
    fixture.defaults.values.insert(QStringLiteral("talvex.updater.skippedVersion"), QStringLiteral("2.0"));
    // The texts are compared, not the versions.
    fixture.publish(release("2.0.0"));
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(fixture.checker().available());
}

void UpdateCheckTest::remindingLaterForgetsTheOfferAlone()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkAutomatically());
    const auto writes = fixture.defaults.writes.size();
    fixture.checker().remindLater();
    QVERIFY(!fixture.checker().available());
    QCOMPARE(fixture.defaults.writes.size(), writes);
    QVERIFY(fixture.checkAutomatically());
    QVERIFY(fixture.checker().available());
}

void UpdateCheckTest::everySuccessfulCheckIsDated()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkAutomatically());
    QCOMPARE(fixture.checker().lastCheckedAt(), std::optional(fixture.now));
    QCOMPARE(fixture.defaults.values.value(QStringLiteral("talvex.updater.lastCheckAt")),
             QVariant(QStringLiteral("2026-01-02T03:04:05.678Z")));
    fixture.publish(release("1.0"));
    fixture.now = fixture.now.addDays(1);
    QVERIFY(fixture.checkAutomatically());
    QCOMPARE(fixture.checker().lastCheckedAt(), std::optional(fixture.now));
    QCOMPARE(fixture.defaults.values.value(QStringLiteral("talvex.updater.lastCheckAt")),
             QVariant(QStringLiteral("2026-01-03T03:04:05.678Z")));
}

void UpdateCheckTest::aFailedCheckIsNotDated()
{
    CheckerFixture fixture;
    fixture.answer(Answer::dropped());
    QVERIFY(fixture.checkManually());
    QVERIFY(!fixture.checker().lastCheckedAt());
    PublishedRelease withoutAddress;
    withoutAddress.downloadUrl = QStringLiteral("not an address");
    fixture.publish(withoutAddress);
    QVERIFY(fixture.checkManually());
    QVERIFY(!fixture.checker().lastCheckedAt());
    QVERIFY(fixture.defaults.writes.empty());
}

void UpdateCheckTest::theDateOutlivesTheChecker()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkAutomatically());
    fixture.destroyChecker();
    QCOMPARE(fixture.checker().lastCheckedAt(), std::optional(fixture.now));
}

void UpdateCheckTest::aStoredDateThatIsNoneIsIgnored_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::newRow("text") << QVariant(QStringLiteral("yesterday"));
    QTest::newRow("empty") << QVariant(QString());
    QTest::newRow("a truth") << QVariant(true);
    QTest::newRow("no such day") << QVariant(QStringLiteral("2026-02-30T00:00:00Z"));
}

void UpdateCheckTest::aStoredDateThatIsNoneIsIgnored()
{
    QFETCH(QVariant, stored);
    CheckerFixture fixture;
    fixture.defaults.values.insert(QStringLiteral("talvex.updater.lastCheckAt"), stored);
    QVERIFY(!fixture.checker().lastCheckedAt());
}

void UpdateCheckTest::aManualCheckTakesOverARunningOne()
{
    CheckerFixture fixture;
    fixture.publish(release("1.0"));
    fixture.checker().startSchedule();
    fixture.timers[0].action();
    QVERIFY(fixture.checker().isChecking());
    fixture.checker().checkForUpdates();
    // A second automatic one changes nothing.
    fixture.timers[1].action();
    QVERIFY(fixture.waitForCheck());
    QCOMPARE(fixture.service.requests().size(), 1U);
    QCOMPARE(fixture.alerts, std::vector{upToDate});
}

void UpdateCheckTest::everyPropertyTellsItsChange()
{
    CheckerFixture fixture;
    UpdateChecker &checker = fixture.checker();
    QSignalSpy checking(&checker, &UpdateChecker::isCheckingChanged);
    QSignalSpy available(&checker, &UpdateChecker::availableChanged);
    QSignalSpy presented(&checker, &UpdateChecker::presentedUpdateChanged);
    QSignalSpy error(&checker, &UpdateChecker::lastErrorChanged);
    QSignalSpy date(&checker, &UpdateChecker::lastCheckedAtChanged);
    checker.checkForUpdates();
    QCOMPARE(checking.size(), 1);
    QVERIFY(fixture.waitForCheck());
    QCOMPARE(checking.size(), 2);
    QCOMPARE(available.size(), 1);
    QCOMPARE(presented.size(), 1);
    QCOMPARE(date.size(), 1);
    QCOMPARE(error.size(), 0);
    // The same offer again is no change.
    QVERIFY(fixture.checkManually());
    QCOMPARE(available.size(), 1);
    QCOMPARE(date.size(), 2);
    checker.remindLater();
    QCOMPARE(available.size(), 2);
    QCOMPARE(presented.size(), 2);
    fixture.answer(Answer::dropped());
    QVERIFY(fixture.checkManually());
    QCOMPARE(error.size(), 1);
    QVERIFY(fixture.checkManually());
    QCOMPARE(error.size(), 3);
}

void UpdateCheckTest::destroyingTheCheckerEndsItsCheck()
{
    CheckerFixture fixture;
    fixture.answer(Answer::silence());
    fixture.checker().checkForUpdates();
    QVERIFY(fixture.service.received.tryAcquire(1, 30'000));
    fixture.destroyChecker();
    QVERIFY(fixture.service.disconnected.tryAcquire(1, 30'000));
}

void UpdateCheckTest::theBundleConfiguresTheChecker()
{
    const auto surroundings = UpdateChecker::Surroundings::system(
        {{QStringLiteral("CaldraAPIKey"), QStringLiteral("key")},
         {QStringLiteral("CFBundleShortVersionString"), QStringLiteral("1.2")}});
    QVERIFY(surroundings.caldra);
    QCOMPARE(surroundings.caldra->configuration.apiKey, QStringLiteral("key"));
    QCOMPARE(surroundings.caldra->configuration.timeout, 30.0);
    QCOMPARE(surroundings.caldra->configuration.endpoints, caldra::ServiceEndpoints::production());
    QVERIFY(surroundings.caldra->configuration.defaultHeaders.empty());
    QCOMPARE(surroundings.currentVersion, QStringLiteral("1.2"));
    QCOMPARE(surroundings.install.userAgent, QByteArray("TalvexLLMTrainer/1.2"));

    const auto unconfigured = UpdateChecker::Surroundings::system({});
    QVERIFY(!unconfigured.caldra);
    QCOMPARE(unconfigured.currentVersion, QStringLiteral("unknown"));
}

void UpdateCheckTest::standInsForToolsAreForLoopbackServicesAlone_data()
{
    QTest::addColumn<QVariantMap>("services");
    QTest::addColumn<bool>("standIn");
    const auto row = [](const char *name, const char *key, const char *host, bool standIn) {
        QVariantMap services;
        if (key) {
            services.insert(QStringLiteral("CaldraAPIKey"), QString::fromUtf8(key));
        }
        if (host) {
            services.insert(QStringLiteral("CaldraServiceHost"), QString::fromUtf8(host));
        }
        QTest::newRow(name) << services << standIn;
    };
    row("loopback address", "key", "http://127.0.0.1:8080", true);
    row("local host", "key", "https://localhost", true);
    row("production", "key", nullptr, false);
    row("another machine", "key", "https://staging.example", false);
    row("another machine, plain", "key", "http://staging.example", false);
    row("like a loopback address", "key", "http://127.0.0.1.example", false);
    row("no services", nullptr, "http://127.0.0.1:8080", false);
}

void UpdateCheckTest::standInsForToolsAreForLoopbackServicesAlone()
{
    QFETCH(QVariantMap, services);
    QFETCH(bool, standIn);
    const Folder folder;
    writeExecutable(folder / "ditto", "#!/bin/sh\n");
    writeFile(folder / "tar", "not a program");
    services.insert(UpdateChecker::trialToolsKey(), folder.path());
    const ToolPaths tools = UpdateChecker::Surroundings::system(services).install.tools;
    QCOMPARE(tools.ditto, standIn ? folder / "ditto" : QStringLiteral("/usr/bin/ditto"));
    // What the folder lacks is the system's.
    QCOMPARE(tools.tar, QStringLiteral("/usr/bin/tar"));
    QCOMPARE(tools.bash, QStringLiteral("/bin/bash"));
    QCOMPARE(tools.hdiutil, QStringLiteral("/usr/bin/hdiutil"));
    QCOMPARE(tools.cp, QStringLiteral("/bin/cp"));
}

void UpdateCheckTest::terminationIsLeftAloneWithoutAnUpdate()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkManually());
    fixture.checker().finishTermination();
    QVERIFY(fixture.exitStatuses.empty());
}

QTEST_GUILESS_MAIN(UpdateCheckTest)
#include "UpdateCheckTest.moc"
