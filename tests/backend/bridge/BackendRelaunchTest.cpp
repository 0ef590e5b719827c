#include "tests/backend/bridge/ControllerFixture.h"

#include <QDir>
#include <QSignalSpy>

#include <sys/resource.h>
#include <unistd.h>

namespace zorel::tests {

using backend::bridge::BackendController;

namespace {

/// Leaves this process room for so many more descriptors while it lives.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(int more)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        // The lowest free number; those below are taken.
        const int next = ::dup(0);
        ::close(next);
        rlimit limit = m_before;
        limit.rlim_cur = static_cast<rlim_t>(next + more);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    Q_DISABLE_COPY_MOVE(DescriptorLimit)

private:
    rlimit m_before = {};
};

} // namespace

/// A controller that launches again and again, or cannot.
class BackendRelaunchTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }

    void aListenerOfTheLogMayRelaunch();
    void aListenerOfAFailedSendMayRelaunch();
    void hundredRelaunchesLeaveNothingBehind();
    void withoutDescriptorsTheLaunchFailsAndTheNextSucceeds();
};

void BackendRelaunchTest::aListenerOfTheLogMayRelaunch()
{
    m_sidecar->play({step(QStringLiteral("exit"), 3)});
    int exits = 0;
    QObject untilTheTestEnds;
    connect(m_controller.get(), &BackendController::logLineAppended, &untilTheTestEnds,
            [&](const QString &line) {
                if (line == QLatin1String("backend exited (code 3)") && ++exits == 1) {
                    m_sidecar->play({step(QStringLiteral("emit"),
                                          QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")}})});
                    m_controller->launch();
                }
            });
    m_controller->launch();
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    QCOMPARE(exits, 1);
    m_controller->sendCommand(QStringLiteral("quit"));
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 0)")), patience);
    QVERIFY(!log().join(u'\n').contains(QStringLiteral("skipped")));
}

void BackendRelaunchTest::aListenerOfAFailedSendMayRelaunch()
{
    m_sidecar->play(
        {step(QStringLiteral("close_input"), true),
         step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("done")}}),
         step(QStringLiteral("stop_reading"), true)});
    QSignalSpy done(m_controller.get(), &BackendController::backendDone);
    m_controller->launch();
    QVERIFY(done.wait(patience));
    connect(m_controller.get(), &BackendController::logLineAppended, this, [&](const QString &line) {
        if (line.startsWith(QStringLiteral("× send failed"))) {
            m_controller->killSidecar();
            m_sidecar->play({step(QStringLiteral("emit"),
                                  QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")}})});
            while (m_controller->isRunning()) {
                QThread::yieldCurrentThread();
            }
            m_controller->launch();
        }
    });
    m_controller->sendCommand(QStringLiteral("stop"));
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    m_controller->sendCommand(QStringLiteral("quit"));
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 0)")), patience);
    QVERIFY(!log().join(u'\n').contains(QStringLiteral("skipped")));
}

void BackendRelaunchTest::hundredRelaunchesLeaveNothingBehind()
{
    m_sidecar->interpreter = QStringLiteral("/usr/bin/true");
    m_controller = std::make_unique<BackendController>(*m_settings, m_sidecar->surroundings());
    QSignalSpy exited(m_controller.get(), &BackendController::backendExited);
    const auto entries = [](const char *folder) {
        return QDir(QLatin1String(folder)).entryList(QDir::AllEntries | QDir::System).size();
    };
    const auto launchOnce = [&] {
        m_controller->launch();
        return exited.wait(patience);
    };
    QVERIFY(launchOnce());
    const qsizetype descriptors = entries("/dev/fd");
    const qsizetype threads = entries("/proc/self/task");
    for (int round = 0; round < 100; ++round) {
        QVERIFY(launchOnce());
    }
    QTRY_VERIFY_WITH_TIMEOUT(entries("/dev/fd") <= descriptors, patience);
    QTRY_VERIFY_WITH_TIMEOUT(entries("/proc/self/task") <= threads, patience);
}

void BackendRelaunchTest::withoutDescriptorsTheLaunchFailsAndTheNextSucceeds()
{
#if !defined(__SANITIZE_ADDRESS__) // a sanitizer needs a descriptor to look at an exception
    m_sidecar->interpreter = QStringLiteral("/usr/bin/true");
    int failures = 0;
    for (bool failed = true; failed; ++failures) {
        m_controller = std::make_unique<BackendController>(*m_settings, m_sidecar->surroundings());
        QSignalSpy exited(m_controller.get(), &BackendController::backendExited);
        {
            const DescriptorLimit limit(failures);
            m_controller->launch();
        }
        failed = m_controller->fatalError().has_value();
        if (failed) {
            QCOMPARE(*m_controller->fatalError(),
                     QStringLiteral("failed to launch Python backend: Too many open files"));
            QVERIFY(!m_controller->isRunning());
            m_controller->launch();
        }
        QVERIFY(exited.wait(patience));
    }
    QVERIFY(failures > 6); // of the child's pipes, and of those that wake the readers
#endif
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendRelaunchTest)
#include "BackendRelaunchTest.moc"
