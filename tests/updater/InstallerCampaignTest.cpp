#include "tests/updater/ScriptRun.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace zorel::tests;

namespace {

/// One way through the script.
struct Way
{
    const char *name;
    QByteArray failures; ///< of the stand-ins
};

const std::array<Way, 4> ways{{{"swap", ""},
                               {"administrator's swap", "mv:1"},
                               {"copy fails, administrator's swap", "cp:1"},
                               {"both copies fail, backup restored", "cp:1,cp:2"}}};

/// What the script needs when nobody kills it.
struct Measure
{
    int commands = 0;
    qint64 microseconds = 0;
};

/// Counts the script's commands, and kills the shell before the one that is wanted. The stand-ins are scripts
/// as well, and are left alone.
constexpr const char *countingEnvironment = R"(
case $0 in
*/install.sh)
    set -o functrace
    commands=0
    trap 'commands=$((commands + 1)); if [ "$commands" = "${KILL_AT:-0}" ]; then kill -9 $$; fi' DEBUG
    trap 'echo "$commands" > "$STANDIN_STATE/commands"' EXIT ;;
esac
)";

/// A script that can be killed, alone or with all that it has started.
class KillableRun
{
public:
    explicit KillableRun(const Way &way)
    {
        m_run.stage.environment["STANDIN_FAIL"] = way.failures;
        m_run.stage.environment["BASH_ENV"] = QFile::encodeName(m_run.stage / "counting");
        writeFile(m_run.stage / "counting", countingEnvironment);
        m_run.write();
    }

    void setKilledBefore(int command) { m_run.stage.environment["KILL_AT"] = QByteArray::number(command); }

    void start()
    {
        QProcessEnvironment environment;
        for (const auto &[name, value] : m_run.stage.environment.asKeyValueRange()) {
            environment.insert(QString::fromUtf8(name), QString::fromUtf8(value));
        }
        int ends[2] = {};
        if (::pipe(ends) != 0) {
            qFatal("no pipe");
        }
        ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
        m_process.setProcessEnvironment(environment);
        m_process.setChildProcessModifier([] { ::setsid(); });
        m_process.start(QStringLiteral("/bin/bash"), {m_run.scriptPath()});
        m_process.waitForStarted();
        ::close(ends[1]);
        m_end = ends[0];
    }

    void killEverything() { ::kill(-static_cast<pid_t>(m_process.processId()), SIGKILL); }

    /// Until the script and all that it has started are gone, in whatever way.
    bool waitForEnd()
    {
        // Nobody writes there: what can be read is the end, once the last of them is gone.
        pollfd end{m_end, POLLIN, 0};
        const bool isOver = ::poll(&end, 1, 60'000) == 1;
        ::close(m_end);
        return isOver && m_process.waitForFinished(60'000);
    }

    int commands() const { return contentsOf(m_run.stage / "commands").toInt(); }

    /// The bundle that is whole, and under which name; empty when there is none.
    QByteArray outcome() const
    {
        const QByteArray version = m_run.targetVersion();
        if (version == "1" || version == "2") {
            return version == "1" ? "old bundle" : "new bundle";
        }
        const QStringList backups = m_run.backups();
        const bool isBackupWhole = std::any_of(backups.begin(), backups.end(), [this](const QString &backup) {
            return InstallStage::versionAt(m_run.folderOfTarget() + u'/' + backup) == "1";
        });
        return isBackupWhole ? "old bundle as the backup" : "";
    }

private:
    ScriptRun m_run;
    QProcess m_process;
    int m_end = -1;
};

Measure measured(const Way &way)
{
    KillableRun run(way);
    QElapsedTimer clock;
    clock.start();
    run.start();
    if (!run.waitForEnd()) {
        qFatal("the script does not end");
    }
    return {run.commands(), clock.nsecsElapsed() / 1000};
}

int number(const char *variable, int standard)
{
    return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariableIntValue(variable) : standard;
}

} // namespace

/// Kills the installer script before each of its commands and at random moments. Afterwards the old bundle or
/// the new one must be there whole, under its name or under the backup's. ZOREL_CAMPAIGN_KILLS says how
/// often, ZOREL_CAMPAIGN_SEED which moments.
class InstallerCampaignTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void killedBeforeACommand();
    void killedWithItsChildrenAtARandomMoment();

private:
    void note(const QByteArray &outcome) { ++m_outcomes[outcome]; }

    const int m_killsEach = number("ZOREL_CAMPAIGN_KILLS", 60) / 2;
    QRandomGenerator m_random{static_cast<quint32>(number("ZOREL_CAMPAIGN_SEED", 4711))};
    std::array<Measure, ways.size()> m_measures;
    QMap<QByteArray, int> m_outcomes;
};

void InstallerCampaignTest::initTestCase()
{
    for (std::size_t way = 0; way < ways.size(); ++way) {
        m_measures[way] = measured(ways[way]);
        QVERIFY(m_measures[way].commands > 20);
        qInfo("%s: %d commands in %lld us", ways[way].name, m_measures[way].commands,
              qlonglong(m_measures[way].microseconds));
    }
}

void InstallerCampaignTest::killedBeforeACommand()
{
    m_outcomes.clear();
    const int killsOfAWay = (m_killsEach + int(ways.size()) - 1) / int(ways.size());
    for (int kill = 0; kill < m_killsEach; ++kill) {
        const std::size_t way = std::size_t(kill) % ways.size();
        const int commands = m_measures[way].commands;
        // Spread over the whole script, however few kills there are.
        const int round = kill / int(ways.size());
        const int command = 1 + (killsOfAWay < commands ? round * commands / killsOfAWay : round % commands);
        KillableRun run(ways[way]);
        run.setKilledBefore(command);
        run.start();
        QVERIFY(run.waitForEnd());
        QVERIFY2(run.commands() == 0, "the script was not killed");
        const QByteArray outcome = run.outcome();
        QVERIFY2(
            !outcome.isEmpty(),
            qPrintable(
                QStringLiteral("%1, before command %2").arg(QString::fromUtf8(ways[way].name)).arg(command)));
        note(outcome);
    }
    qInfo() << "killed before a command:" << m_outcomes;
    QVERIFY(m_outcomes.value("old bundle") > 0 && m_outcomes.value("new bundle") > 0);
}

void InstallerCampaignTest::killedWithItsChildrenAtARandomMoment()
{
    m_outcomes.clear();
    for (int kill = 0; kill < m_killsEach; ++kill) {
        const std::size_t way = std::size_t(kill) % ways.size();
        const auto moment = m_random.bounded(m_measures[way].microseconds + 1);
        KillableRun run(ways[way]);
        run.start();
        const timespec pause{moment / 1'000'000, moment % 1'000'000 * 1000};
        ::nanosleep(&pause, nullptr);
        run.killEverything();
        QVERIFY(run.waitForEnd());
        const QByteArray outcome = run.outcome();
        QVERIFY2(
            !outcome.isEmpty(),
            qPrintable(QStringLiteral("%1, after %2 us").arg(QString::fromUtf8(ways[way].name)).arg(moment)));
        note(outcome);
    }
    qInfo() << "killed at a random moment:" << m_outcomes;
}

QTEST_GUILESS_MAIN(InstallerCampaignTest)
#include "InstallerCampaignTest.moc"
