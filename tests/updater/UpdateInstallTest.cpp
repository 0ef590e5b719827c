#include "tests/updater/OfferedUpdate.h"

#include <csignal>

using namespace zorel::tests;
using namespace zorel::updater;
using caldra::tests::Answer;

class UpdateInstallTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOfferIsInstalledAndTheApplicationAskedToQuit();
    void terminationTellsTheScriptAndEndsTheProcess();
    void aFailureShowsItsMessageAndCanBeTriedAgain();
    void theOfferEndsWithAFailureAndTheSheetStays();
    void aFailedSheetCanBeClosed();
    void aSecondPressStartsNothing();
    void aSecondInstanceIsTold();
    void withoutAnOfferNothingIsInstalled();
    void cancellingEndsADownload();
    void cancellingEndsARunningTool();
    void cancellingTooLateChangesNothing();
    void checksLeaveARunningInstallationAlone();
    void anAnswerDuringAnInstallationLeavesItAlone();
    void aNewOfferTakesTheFailedOnesPlace();
    void destroyingTheCheckerEndsItsInstallation();
};

void UpdateInstallTest::anOfferIsInstalledAndTheApplicationAskedToQuit()
{
    OfferedUpdate offer;
    const auto update = offer.checker().available();
    QSignalSpy quit(&offer.checker(), &UpdateChecker::quitRequested);
    std::vector<QString> texts;
    connect(&offer.checker(), &UpdateChecker::installChanged, &offer.checker(),
            [&] { texts.push_back(offer.checker().install().text()); });
    offer.checker().startInstall();
    QVERIFY(offer.checker().install().is<InstallState::Downloading>());
    QVERIFY(quit.wait(60'000));
    QVERIFY(offer.checker().install().is<InstallState::Relaunching>());
    // The offer is over; the sheet says what happens.
    QVERIFY(!offer.checker().available());
    QCOMPARE(offer.checker().presentedUpdate(), update);
    QVERIFY(texts.size() >= 4);
    QVERIFY(texts.front().startsWith(QStringLiteral("Downloading ")));
    QCOMPARE(texts[texts.size() - 3], QStringLiteral("Verifying download…"));
    QCOMPARE(texts[texts.size() - 2], QStringLiteral("Installing update…"));
    QCOMPARE(texts[texts.size() - 1], QStringLiteral("Restarting Talvex LLM Trainer…"));
    QVERIFY(offer.isInstalled());
}

void UpdateInstallTest::terminationTellsTheScriptAndEndsTheProcess()
{
    OfferedUpdate offer;
    QSignalSpy quit(&offer.checker(), &UpdateChecker::quitRequested);
    offer.checker().finishTermination();
    QVERIFY(offer.exitStatuses.empty());
    offer.checker().startInstall();
    QVERIFY(quit.wait(60'000));
    const QString sentinel = offer.stage.updaterFolder() + u'/' + offer.stage.workingFolders().value(0) +
                             QStringLiteral("/exited.sentinel");
    QVERIFY(!QFile::exists(sentinel));
    offer.checker().finishTermination();
    QCOMPARE(contentsOf(sentinel), QByteArray("exited"));
    QCOMPARE(offer.exitStatuses, std::vector{0});
    // Nothing else would persist the settings: the process ends at once.
    QCOMPARE(offer.defaults.synchronizations, 1);
    QVERIFY(offer.isInstalled());
}

void UpdateInstallTest::aFailureShowsItsMessageAndCanBeTriedAgain()
{
    OfferedUpdate offer;
    offer.host.answer(Answer::with(503, "text/plain", "busy"));
    offer.checker().startInstall();
    QVERIFY(offer.waitForFailure());
    QCOMPARE(offer.failure(),
             QStringLiteral("The update server returned HTTP 503. Try downloading manually from "
                            "https://talvex.example/downloads."));
    QCOMPARE(offer.checker().install().text(), offer.failure());
    offer.host.answer(Answer::with(200, "application/gzip", offer.archive));
    QSignalSpy quit(&offer.checker(), &UpdateChecker::quitRequested);
    offer.checker().retryInstall();
    QVERIFY(offer.checker().install().is<InstallState::Downloading>());
    QVERIFY(quit.wait(60'000));
    QVERIFY(offer.isInstalled());
}

void UpdateInstallTest::theOfferEndsWithAFailureAndTheSheetStays()
{
    OfferedUpdate offer;
    const auto update = offer.checker().available();
    QSignalSpy presented(&offer.checker(), &UpdateChecker::presentedUpdateChanged);
    offer.host.answer(Answer::dropped());
    offer.checker().startInstall();
    QVERIFY(offer.waitForFailure());
    QVERIFY(!offer.checker().available());
    QCOMPARE(offer.checker().presentedUpdate(), update);
    QCOMPARE(presented.size(), 0);
}

void UpdateInstallTest::aFailedSheetCanBeClosed()
{
    OfferedUpdate offer;
    offer.host.answer(Answer::dropped());
    offer.checker().startInstall();
    QVERIFY(offer.waitForFailure());
    offer.checker().remindLater();
    QVERIFY(offer.checker().install().is<InstallState::Idle>());
    QVERIFY(!offer.checker().presentedUpdate());
    offer.checker().retryInstall();
    QVERIFY(offer.checker().install().is<InstallState::Idle>());
    QVERIFY(offer.checkAutomatically());
    QVERIFY(offer.checker().available());
}

void UpdateInstallTest::aSecondPressStartsNothing()
{
    OfferedUpdate offer;
    offer.host.answer(OfferedUpdate::stalled());
    offer.checker().startInstall();
    QVERIFY(offer.host.server.received.tryAcquire(1, 30'000));
    offer.checker().startInstall();
    offer.checker().retryInstall();
    QCOMPARE(offer.stage.workingFolders().size(), 1);
    offer.checker().cancelInstall();
    QVERIFY(offer.waitForFailure());
    QCOMPARE(offer.host.server.requests().size(), 1U);
}

void UpdateInstallTest::aSecondInstanceIsTold()
{
    OfferedUpdate offer;
    offer.host.answer(OfferedUpdate::stalled());
    offer.checker().startInstall();
    QVERIFY(offer.host.server.received.tryAcquire(1, 30'000));

    OfferedUpdate second;
    second.destroyChecker();
    second.surroundings.install = offer.stage.surroundings();
    QVERIFY(second.checkManually());
    second.checker().startInstall();
    QVERIFY(second.waitForFailure());
    QCOMPARE(second.failure(),
             QStringLiteral("Couldn't relaunch into the new version: another copy of Talvex LLM "
                            "Trainer is installing an update"));
    QVERIFY(offer.checker().install().is<InstallState::Downloading>());
}

void UpdateInstallTest::withoutAnOfferNothingIsInstalled()
{
    OfferedUpdate offer;
    offer.checker().remindLater();
    offer.checker().startInstall();
    offer.checker().retryInstall();
    offer.checker().cancelInstall();
    QVERIFY(offer.checker().install().is<InstallState::Idle>());
    QVERIFY(offer.host.server.requests().empty());
}

void UpdateInstallTest::cancellingEndsADownload()
{
    OfferedUpdate offer;
    offer.host.answer(OfferedUpdate::stalled());
    offer.checker().startInstall();
    QVERIFY(offer.host.server.received.tryAcquire(1, 30'000));
    offer.checker().cancelInstall();
    QVERIFY(offer.waitForFailure());
    QCOMPARE(offer.failure(), QStringLiteral("Update cancelled."));
    QVERIFY(offer.host.server.disconnected.tryAcquire(1, 30'000));
    QVERIFY(offer.stage.workingFolders().isEmpty());
}

void UpdateInstallTest::cancellingEndsARunningTool()
{
    OfferedUpdate offer;
    const QString tool = offer.stage / "tar";
    writeExecutable(tool, "#!/bin/sh\necho $$ > \"$STANDIN_STATE/tool\"\nexec /bin/sleep 1000\n");
    offer.destroyChecker();
    offer.surroundings.install.tools.tar = tool;
    QVERIFY(offer.checkManually());
    offer.checker().startInstall();
    QTRY_VERIFY_WITH_TIMEOUT(contentsOf(offer.stage / "tool").endsWith('\n'), 60'000);
    // The tool may be quicker than the news of the state.
    QTRY_VERIFY_WITH_TIMEOUT(offer.checker().install().is<InstallState::Installing>(), 60'000);
    offer.checker().cancelInstall();
    QVERIFY(offer.waitForFailure());
    QCOMPARE(offer.failure(), QStringLiteral("Update cancelled."));
    // The tool was reaped before the task told its end.
    QCOMPARE(::kill(contentsOf(offer.stage / "tool").trimmed().toInt(), 0), -1);
    QVERIFY(offer.stage.workingFolders().isEmpty());
}

void UpdateInstallTest::cancellingTooLateChangesNothing()
{
    OfferedUpdate offer;
    QSignalSpy quit(&offer.checker(), &UpdateChecker::quitRequested);
    offer.checker().startInstall();
    QVERIFY(quit.wait(60'000));
    offer.checker().cancelInstall();
    offer.checker().remindLater();
    offer.checker().skipThisVersion();
    offer.checker().startInstall();
    QVERIFY(offer.checker().install().is<InstallState::Relaunching>());
    QVERIFY(offer.isInstalled());
}

void UpdateInstallTest::checksLeaveARunningInstallationAlone()
{
    OfferedUpdate offer;
    const auto requests = offer.service.requests().size();
    offer.host.answer(OfferedUpdate::stalled());
    offer.checker().startInstall();
    offer.checker().checkForUpdates();
    QVERIFY(!offer.checker().isChecking());
    offer.checker().startSchedule();
    offer.timers[0].action();
    QVERIFY(!offer.checker().isChecking());
    offer.checker().remindLater();
    offer.checker().skipThisVersion();
    QVERIFY(offer.checker().available());
    QVERIFY(offer.checker().install().isUnderWay());
    QCOMPARE(offer.service.requests().size(), requests);
}

void UpdateInstallTest::anAnswerDuringAnInstallationLeavesItAlone()
{
    OfferedUpdate offer;
    const auto update = offer.checker().available();
    offer.host.answer(OfferedUpdate::stalled());
    PublishedRelease nothingNewer;
    nothingNewer.version = QStringLiteral("1.0");
    offer.publish(nothingNewer);
    offer.checker().checkForUpdates();
    offer.checker().startInstall();
    QVERIFY(offer.waitForCheck());
    QCOMPARE(offer.checker().available(), update);
    QVERIFY(offer.checker().install().isUnderWay());
}

void UpdateInstallTest::aNewOfferTakesTheFailedOnesPlace()
{
    OfferedUpdate offer;
    offer.host.answer(Answer::dropped());
    offer.checker().startInstall();
    QVERIFY(offer.waitForFailure());
    PublishedRelease newer;
    newer.version = QStringLiteral("3.0");
    offer.publish(newer);
    QVERIFY(offer.checkManually());
    QVERIFY(offer.checker().install().is<InstallState::Idle>());
    QCOMPARE(offer.checker().presentedUpdate()->version, QStringLiteral("3.0"));
}

void UpdateInstallTest::destroyingTheCheckerEndsItsInstallation()
{
    OfferedUpdate offer;
    offer.host.answer(OfferedUpdate::stalled());
    offer.checker().startInstall();
    QVERIFY(offer.host.server.received.tryAcquire(1, 30'000));
    offer.destroyChecker();
    QVERIFY(offer.host.server.disconnected.tryAcquire(1, 30'000));
    QVERIFY(offer.stage.workingFolders().isEmpty());
}

QTEST_GUILESS_MAIN(UpdateInstallTest)
#include "UpdateInstallTest.moc"
