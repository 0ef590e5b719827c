#include "platform/KeepAwake.h"
#include "tests/support/FakeTools.h"

#include <QProcess>
#include <QTest>

#include <csignal>

#include <sys/types.h>

using zorel::platform::KeepAwake;
using zorel::tests::FakeTools;

namespace {

/// Milliseconds that another process is given on a loaded machine.
constexpr int patience = 60'000;

} // namespace

class KeepAwakeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void systemIsKeptAwakeUntilTheRelease();
    void objectThatGoesReleases();
    void secondHoldChangesNothing();
    void systemCanBeHeldAgain();
    void processThatIsKilledReleases();
    void desktopWithIdleTimesOfItsOwnIsAsked();
    void desktopWithIdleTimesOfItsOwnMayLackTheTool();
    void missingToolsAreNoConcern();

private:
    void addTool(const QString &name);
    /// The arguments of the tool that holds the lock, one a line; null when none has been started.
    QByteArray lockOf(const QString &tool) const
    {
        return m_tools->written(QStringLiteral("lock of ") + tool);
    }
    /// Whether the lock's holder and what it runs live.
    bool isLocked() const { return isAlive(QStringLiteral("holder")) && isAlive(QStringLiteral("reader")); }
    bool isFree() const { return !isAlive(QStringLiteral("holder")) && !isAlive(QStringLiteral("reader")); }
    /// A process that ends by itself takes its note with it; a killed one cannot.
    bool isAlive(const QString &name) const
    {
        const pid_t process = m_tools->written(name).toInt();
        return process > 0 && ::kill(process, 0) == 0;
    }

    std::unique_ptr<FakeTools> m_tools;
    QByteArray m_formerDesktop;
};

void KeepAwakeTest::init()
{
    m_formerDesktop = qgetenv("XDG_CURRENT_DESKTOP");
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    m_tools = std::make_unique<FakeTools>();
    m_tools->add(QStringLiteral("cat"),
                 "echo $$ > \"$HERE/reader\"\n/bin/cat > /dev/null\n/bin/rm \"$HERE/reader\"");
}

void KeepAwakeTest::cleanup()
{
    m_tools.reset();
    qputenv("XDG_CURRENT_DESKTOP", m_formerDesktop);
}

/// Runs what stands behind its options, as the real ones do, and ends with it.
void KeepAwakeTest::addTool(const QString &name)
{
    m_tools->add(name, "echo $$ > \"$HERE/holder\"\n"
                       "printf '%s\\n' \"$@\" >> \"$HERE/lock of ${0##*/}\"\n"
                       "while [ $# -gt 1 ]; do shift; done\n"
                       "\"$1\"\n"
                       "/bin/rm \"$HERE/holder\"");
}

void KeepAwakeTest::systemIsKeptAwakeUntilTheRelease()
{
    addTool(QStringLiteral("systemd-inhibit"));
    KeepAwake keepAwake;
    QVERIFY(!keepAwake.isHeld());
    keepAwake.hold(QStringLiteral("Training \"it's\" $(mine)"));
    QVERIFY(keepAwake.isHeld());
    QTRY_VERIFY_WITH_TIMEOUT(isLocked(), patience);
    QCOMPARE(lockOf(QStringLiteral("systemd-inhibit")),
             QByteArray("--what=idle\n--who=Talvex LLM Trainer\n--why=Training \"it's\" $(mine)\ncat\n"));
    keepAwake.release();
    QVERIFY(!keepAwake.isHeld());
    QTRY_VERIFY_WITH_TIMEOUT(isFree(), patience);
    keepAwake.release();
}

void KeepAwakeTest::objectThatGoesReleases()
{
    addTool(QStringLiteral("systemd-inhibit"));
    auto keepAwake = std::make_unique<KeepAwake>();
    keepAwake->hold(QStringLiteral("Training"));
    QTRY_VERIFY_WITH_TIMEOUT(isLocked(), patience);
    keepAwake.reset();
    QTRY_VERIFY_WITH_TIMEOUT(isFree(), patience);
}

void KeepAwakeTest::secondHoldChangesNothing()
{
    addTool(QStringLiteral("systemd-inhibit"));
    KeepAwake keepAwake;
    keepAwake.hold(QStringLiteral("Training"));
    QTRY_VERIFY_WITH_TIMEOUT(isLocked(), patience);
    const QByteArray holder = m_tools->written(QStringLiteral("holder"));
    keepAwake.hold(QStringLiteral("Something else"));
    QVERIFY(::kill(holder.toInt(), 0) == 0);
    keepAwake.release();
    QTRY_VERIFY_WITH_TIMEOUT(isFree(), patience);
}

void KeepAwakeTest::systemCanBeHeldAgain()
{
    addTool(QStringLiteral("systemd-inhibit"));
    KeepAwake keepAwake;
    for (int run = 0; run < 3; ++run) {
        keepAwake.hold(QStringLiteral("Training"));
        QTRY_VERIFY_WITH_TIMEOUT(isLocked(), patience);
        keepAwake.release();
        QTRY_VERIFY_WITH_TIMEOUT(isFree(), patience);
    }
}

void KeepAwakeTest::processThatIsKilledReleases()
{
    addTool(QStringLiteral("systemd-inhibit"));
    QProcess process;
    process.start(QStringLiteral(ZOREL_PLATFORM_PROBE),
                  {QStringLiteral("stay-awake"), QStringLiteral("Training")});
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(isLocked(), patience);
    process.kill();
    QVERIFY(process.waitForFinished());
    QTRY_VERIFY_WITH_TIMEOUT(isFree(), patience);
}

void KeepAwakeTest::desktopWithIdleTimesOfItsOwnIsAsked()
{
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    addTool(QStringLiteral("systemd-inhibit"));
    addTool(QStringLiteral("gnome-session-inhibit"));
    KeepAwake keepAwake;
    keepAwake.hold(QStringLiteral("Training"));
    QTRY_VERIFY_WITH_TIMEOUT(isLocked(), patience);
    QCOMPARE(lockOf(QStringLiteral("gnome-session-inhibit")),
             QByteArray("--app-id\ncom.talvex.zorel\n--reason\nTraining\n--inhibit\nsuspend\ncat\n"));
    QVERIFY(lockOf(QStringLiteral("systemd-inhibit")).isNull());
}

void KeepAwakeTest::desktopWithIdleTimesOfItsOwnMayLackTheTool()
{
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    addTool(QStringLiteral("systemd-inhibit"));
    KeepAwake keepAwake;
    keepAwake.hold(QStringLiteral("Training"));
    QTRY_VERIFY_WITH_TIMEOUT(isLocked(), patience);
    QVERIFY(!lockOf(QStringLiteral("systemd-inhibit")).isNull());
}

void KeepAwakeTest::missingToolsAreNoConcern()
{
    KeepAwake keepAwake;
    keepAwake.hold(QStringLiteral("Training"));
    QVERIFY(keepAwake.isHeld());
    keepAwake.release();
    QVERIFY(!keepAwake.isHeld());
}

QTEST_GUILESS_MAIN(KeepAwakeTest)
#include "KeepAwakeTest.moc"
