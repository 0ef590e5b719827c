#include "app/shell/AppDelegate.h"

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "tests/app/shell/SimulatedTime.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <unistd.h>

using namespace zorel;
using app::shell::AppDelegate;
using backend::bridge::BackendController;
using tests::step;
using namespace std::chrono_literals;

using Reply = AppDelegate::TerminateReply;

namespace {

QJsonObject ready()
{
    return step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")}});
}

QJsonObject status(const QString &state)
{
    QJsonObject event{{QStringLiteral("event"), QStringLiteral("status")}, {QStringLiteral("state"), state}};
    for (const char *key :
         {"step", "max_steps", "loss", "lr", "grad_norm", "tokens_per_sec", "elapsed_s", "prep_progress"}) {
        event.insert(QLatin1String(key), 1);
    }
    return step(QStringLiteral("emit"), event);
}

QJsonObject await(const QString &name)
{
    return step(QStringLiteral("await"), name);
}

} // namespace

/// The quit decision with a real child process and a clock that only the test moves.
class AppDelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void launchingIgnoresTheBrokenPipeSignal();
    void theLastWindowTakesTheApplicationWithIt();
    void withoutBackendItQuitsNow();
    void beforeReadyItQuitsNowAndSendsNothing();
    void anIdleSidecarIsToldToStopAndQuitAndNotWaitedFor_data();
    void anIdleSidecarIsToldToStopAndQuitAndNotWaitedFor();
    void askedAgainItTellsAnIdleSidecarNothingMore();
    void aBusySidecarIsToldToStopAndQuitAndWaitedFor_data();
    void aBusySidecarIsToldToStopAndQuitAndWaitedFor();
    void theWaitAsksFourTimesASecond();
    void theWaitEndsAfterTwoMinutes();
    void theWaitForAVanishedControllerLastsTwoMinutes();
    void askedAgainItSendsNothingMore();
    void aUserWhoWillNotWaitEndsTheWait();
    void theAnswerComesOnce();
    void afterALogoutThatWasCalledOffANewSidecarIsStoppedAsWell();
    void theEventLoopRunsDuringTheWait();
    void aLogoutWaitsLikeAQuit();
    void aLogoutWithNothingToSaveGoesOn();

private:
    void launch(const QJsonArray &scenario);
    void launchBusy(const QString &state);
    QByteArray commandsAfterReady() const;
    void pass(std::chrono::milliseconds time) { m_time.pass(time); }

    std::unique_ptr<tests::FakeSidecar> m_sidecar;
    std::unique_ptr<tests::InMemoryUserDefaults> m_store;
    std::unique_ptr<app::settings::ZorelSettings> m_settings;
    std::unique_ptr<BackendController> m_controller;
    std::unique_ptr<AppDelegate> m_delegate;
    std::unique_ptr<QSignalSpy> m_allowed;

    tests::SimulatedTime m_time;
    std::vector<std::chrono::milliseconds> m_delays;
};

void AppDelegateTest::init()
{
    m_time = {};
    m_delays.clear();
    m_sidecar = std::make_unique<tests::FakeSidecar>();
    m_store = std::make_unique<tests::InMemoryUserDefaults>();
    m_settings = std::make_unique<app::settings::ZorelSettings>(
        *m_store, platform::StandardFolders::below(m_sidecar->root()));
    m_controller = std::make_unique<BackendController>(*m_settings, m_sidecar->surroundings());
    m_delegate = std::make_unique<AppDelegate>(
        AppDelegate::Surroundings{[this] { return m_time.now(); },
                                  [this](std::chrono::milliseconds delay, QObject *, auto action) {
                                      m_delays.push_back(delay);
                                      m_time.after(delay, std::move(action));
                                  }});
    m_allowed = std::make_unique<QSignalSpy>(m_delegate.get(), &AppDelegate::terminationAllowed);
    m_delegate->applicationWillFinishLaunching();
}

void AppDelegateTest::cleanup()
{
    if (m_controller && m_controller->isRunning()) {
        m_controller->killSidecar();
        QTRY_VERIFY(!m_controller->isRunning());
    }
    m_allowed.reset();
    m_delegate.reset();
    m_controller.reset();
}

void AppDelegateTest::launch(const QJsonArray &scenario)
{
    QJsonArray steps{step(QStringLiteral("echo_commands_to"), m_sidecar->pathOf(QStringLiteral("commands")))};
    for (const QJsonValue &action : scenario) {
        steps.append(action);
    }
    m_sidecar->play(steps);
    m_controller->launch();
    QVERIFY2(m_controller->isRunning(), qPrintable(m_controller->fatalError().value_or(QString())));
    m_delegate->setBackend(m_controller.get());
}

/// Launches a sidecar that stays in this state and never exits by itself.
void AppDelegateTest::launchBusy(const QString &state)
{
    launch({ready(), await(QStringLiteral("set_training_profile")), status(state),
            await(QStringLiteral("quit")),
            step(QStringLiteral("wait_for_file"), m_sidecar->pathOf(QStringLiteral("saved"))),
            step(QStringLiteral("exit"), 0)});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready() && m_controller->status().state == state, 30'000);
}

/// The names of the commands that came after those which follow "ready".
QByteArray AppDelegateTest::commandsAfterReady() const
{
    QFile file(m_sidecar->pathOf(QStringLiteral("commands")));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArrayList names;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QByteArray name =
            QJsonDocument::fromJson(line).object().value(QLatin1String("cmd")).toString().toUtf8();
        if (!name.isEmpty() && !name.startsWith("set_")) {
            names.append(name);
        }
    }
    return names.join(' ');
}

void AppDelegateTest::launchingIgnoresTheBrokenPipeSignal()
{
    std::signal(SIGPIPE, SIG_DFL);
    m_delegate->applicationWillFinishLaunching();
    int descriptors[2];
    QCOMPARE(::pipe(descriptors), 0);
    ::close(descriptors[0]);
    QCOMPARE(::write(descriptors[1], "x", 1), ssize_t{-1});
    QCOMPARE(errno, EPIPE);
    ::close(descriptors[1]);
}

void AppDelegateTest::theLastWindowTakesTheApplicationWithIt()
{
    QVERIFY(m_delegate->applicationShouldTerminateAfterLastWindowClosed());
}

void AppDelegateTest::withoutBackendItQuitsNow()
{
    QVERIFY(!m_delegate->backend());
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
    QVERIFY(!m_delegate->isWaiting());
}

void AppDelegateTest::beforeReadyItQuitsNowAndSendsNothing()
{
    launch({status(QStringLiteral("running"))});
    QTRY_COMPARE_WITH_TIMEOUT(m_controller->status().state, QStringLiteral("running"), 30'000);
    QVERIFY(!m_controller->ready());
    const std::size_t logged = m_controller->logLines().size();

    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
    QVERIFY(!m_delegate->isWaiting());
    QVERIFY(m_time.isNothingDue());
    QCOMPARE(m_controller->logLines().size(), logged);

    // The child has read all its input when it ends.
    QSignalSpy exited(m_controller.get(), &BackendController::backendExited);
    m_controller->sendCommand(QStringLiteral("quit"));
    QTRY_COMPARE_WITH_TIMEOUT(exited.count(), 1, 30'000);
    QCOMPARE(commandsAfterReady(), QByteArray("quit"));
}

void AppDelegateTest::anIdleSidecarIsToldToStopAndQuitAndNotWaitedFor_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"idle", "preparing", "done", "error", "", "Running"}) {
        QTest::newRow(state) << QString::fromLatin1(state);
    }
}

void AppDelegateTest::anIdleSidecarIsToldToStopAndQuitAndNotWaitedFor()
{
    QFETCH(const QString, state);
    launch({ready(), await(QStringLiteral("set_training_profile")), status(state)});
    QTRY_COMPARE_WITH_TIMEOUT(m_controller->status().maxSteps, 1, 30'000);
    QSignalSpy exited(m_controller.get(), &BackendController::backendExited);

    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
    QVERIFY(!m_delegate->isWaiting());
    QVERIFY(m_time.isNothingDue());
    // The windows that close on the way ask once more.
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
    QTRY_COMPARE_WITH_TIMEOUT(exited.count(), 1, 30'000);
    QCOMPARE(commandsAfterReady(), QByteArray("stop quit"));
}

void AppDelegateTest::askedAgainItTellsAnIdleSidecarNothingMore()
{
    launch({ready(), await(QStringLiteral("set_training_profile")), status(QStringLiteral("idle")),
            await(QStringLiteral("toggle_pause"))});
    QTRY_COMPARE_WITH_TIMEOUT(m_controller->status().maxSteps, 1, 30'000);
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
    // What comes before this has arrived with it.
    m_controller->sendCommand(QStringLiteral("toggle_pause"));
    QTRY_COMPARE_WITH_TIMEOUT(commandsAfterReady(), QByteArray("stop quit toggle_pause"), 30'000);
}

void AppDelegateTest::aBusySidecarIsToldToStopAndQuitAndWaitedFor_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<int>("seconds");
    QTest::newRow("starting") << QStringLiteral("starting") << 1;
    QTest::newRow("running") << QStringLiteral("running") << 60;
    QTest::newRow("paused") << QStringLiteral("paused") << 119;
    QTest::newRow("stopping") << QStringLiteral("stopping") << 0;
}

void AppDelegateTest::aBusySidecarIsToldToStopAndQuitAndWaitedFor()
{
    QFETCH(const QString, state);
    QFETCH(const int, seconds);
    launchBusy(state);
    QSignalSpy began(m_delegate.get(), &AppDelegate::waitingBegan);

    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    QCOMPARE(began.count(), 1);
    QVERIFY(m_delegate->isWaiting());
    pass(std::chrono::seconds(seconds));
    QVERIFY(m_delegate->isWaiting());
    QTRY_COMPARE_WITH_TIMEOUT(commandsAfterReady(), QByteArray("stop quit"), 30'000);

    QFile saved(m_sidecar->pathOf(QStringLiteral("saved")));
    QVERIFY(saved.open(QIODevice::WriteOnly));
    QTRY_VERIFY_WITH_TIMEOUT(!m_controller->isRunning(), 30'000);
    QCOMPARE(m_allowed->count(), 0);
    pass(250ms);
    QCOMPARE(m_allowed->count(), 1);
    QVERIFY(!m_delegate->isWaiting());
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
    QVERIFY(m_time.isNothingDue());
}

void AppDelegateTest::theWaitAsksFourTimesASecond()
{
    launchBusy(QStringLiteral("running"));
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    pass(1s);
    QCOMPARE(m_delays, (std::vector<std::chrono::milliseconds>{0ms, 250ms, 250ms, 250ms, 250ms, 250ms}));
}

void AppDelegateTest::theWaitEndsAfterTwoMinutes()
{
    launchBusy(QStringLiteral("running"));
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    pass(119s + 999ms);
    QCOMPARE(m_allowed->count(), 0);
    pass(1ms);
    QCOMPARE(m_allowed->count(), 1);
    QVERIFY(m_controller->isRunning());
    QVERIFY(m_time.isNothingDue());
}

void AppDelegateTest::theWaitForAVanishedControllerLastsTwoMinutes()
{
    launchBusy(QStringLiteral("running"));
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    m_controller.reset();
    pass(119s);
    QCOMPARE(m_allowed->count(), 0);
    pass(1s);
    QCOMPARE(m_allowed->count(), 1);
}

void AppDelegateTest::askedAgainItSendsNothingMore()
{
    launchBusy(QStringLiteral("paused"));
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    pass(100s);
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    // The first request's deadline holds.
    pass(20s);
    QCOMPARE(m_allowed->count(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(commandsAfterReady(), QByteArray("stop quit"), 30'000);
}

void AppDelegateTest::aUserWhoWillNotWaitEndsTheWait()
{
    launchBusy(QStringLiteral("running"));
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    m_delegate->stopWaiting();
    QCOMPARE(m_allowed->count(), 1);
    QVERIFY(m_controller->isRunning());
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::now);
}

void AppDelegateTest::theAnswerComesOnce()
{
    launchBusy(QStringLiteral("running"));
    m_delegate->stopWaiting();
    QCOMPARE(m_allowed->count(), 0);
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    m_delegate->stopWaiting();
    m_delegate->stopWaiting();
    pass(300s);
    QCOMPARE(m_allowed->count(), 1);
}

void AppDelegateTest::afterALogoutThatWasCalledOffANewSidecarIsStoppedAsWell()
{
    launchBusy(QStringLiteral("running"));
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    m_delegate->stopWaiting();
    QTRY_COMPARE_WITH_TIMEOUT(commandsAfterReady(), QByteArray("stop quit"), 30'000);
    m_controller->killSidecar();
    QTRY_VERIFY_WITH_TIMEOUT(!m_controller->isRunning(), 30'000);

    launchBusy(QStringLiteral("running"));
    QCOMPARE(m_delegate->applicationShouldTerminate(), Reply::later);
    QTRY_COMPARE_WITH_TIMEOUT(commandsAfterReady(), QByteArray("stop quit stop quit"), 30'000);
}

void AppDelegateTest::theEventLoopRunsDuringTheWait()
{
    AppDelegate delegate;
    launchBusy(QStringLiteral("running"));
    delegate.setBackend(m_controller.get());
    QSignalSpy allowed(&delegate, &AppDelegate::terminationAllowed);
    QCOMPARE(delegate.applicationShouldTerminate(), Reply::later);

    // Only a running event loop lets the child go on.
    QTimer::singleShot(0, this, [this] {
        QFile saved(m_sidecar->pathOf(QStringLiteral("saved")));
        QVERIFY(saved.open(QIODevice::WriteOnly));
    });
    QVERIFY(delegate.isWaiting());
    QTRY_COMPARE_WITH_TIMEOUT(allowed.count(), 1, 60'000);
    QVERIFY(!m_controller->isRunning());
}

void AppDelegateTest::aLogoutWaitsLikeAQuit()
{
    AppDelegate delegate;
    launchBusy(QStringLiteral("running"));
    delegate.setBackend(m_controller.get());
    QTimer::singleShot(0, this, [this] {
        QFile saved(m_sidecar->pathOf(QStringLiteral("saved")));
        QVERIFY(saved.open(QIODevice::WriteOnly));
    });
    delegate.terminateForLogout();
    QVERIFY(!m_controller->isRunning());
    QCOMPARE(commandsAfterReady(), QByteArray("stop quit"));
}

void AppDelegateTest::aLogoutWithNothingToSaveGoesOn()
{
    m_delegate->terminateForLogout();
    QVERIFY(m_time.isNothingDue());
}

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "AppDelegateTest.moc"
