#include "tests/terminal/TrainHome.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSocketNotifier>
#include <QTest>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif

namespace zorel::tests {

namespace {

constexpr int patience = 60'000; // milliseconds

/// What the block of a single status, of 45 seconds, ends with where there is room for it.
constexpr char endOfBlock[] = "45s elapsed";

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

/// What is left to see, line by line, when the escape sequences that the program uses have been carried out.
QStringList screen(const QByteArray &output)
{
    QStringList rows{QString()};
    qsizetype row = 0;
    const QString characters = QString::fromUtf8(output);
    static const QRegularExpression sequence(text("\x1b\\[([0-9;]*)([A-Za-z])"));
    for (qsizetype i = 0; i < characters.size();) {
        const QChar character = characters[i];
        const auto match = sequence.match(characters, i, QRegularExpression::NormalMatch,
                                          QRegularExpression::AnchorAtOffsetMatchOption);
        if (match.hasMatch()) {
            i += match.capturedLength();
            if (match.captured(2) == text("A")) {
                row = qMax<qsizetype>(0, row - match.captured(1).toInt());
            } else if (match.captured(2) == text("J")) {
                rows.resize(row + 1);
                rows[row].clear();
            }
            continue;
        }
        ++i;
        if (character == u'\n') {
            if (++row == rows.size()) {
                rows.append(QString());
            }
        } else if (character != u'\r') {
            rows[row] += character;
        }
    }
    return rows;
}

/// A pseudo-terminal, and zorel-train with it as its outputs.
class TerminalSession
{
public:
    TerminalSession(TrainHome &home, int columns, const QStringList &arguments = {})
    {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = static_cast<unsigned short>(columns);
        int slave = -1;
        if (::openpty(&m_master, &slave, nullptr, nullptr, &size) != 0) {
            qFatal("no pseudo-terminal");
        }
        ::fcntl(m_master, F_SETFL, O_NONBLOCK);
        ::fcntl(m_master, F_SETFD, FD_CLOEXEC);
        m_process.setProcessEnvironment(home.environment());
        m_process.setChildProcessModifier([slave] {
            ::dup2(slave, 1);
            ::dup2(slave, 2);
        });
        m_process.start(text(ZOREL_TRAIN), arguments);
        m_process.waitForStarted(patience);
        ::close(slave);
    }

    ~TerminalSession()
    {
        m_process.kill();
        m_process.waitForFinished(patience);
        ::close(m_master);
    }

    const QByteArray &output()
    {
        char bytes[4096];
        for (ssize_t count = 0; (count = ::read(m_master, bytes, sizeof bytes)) > 0;) {
            m_output.append(bytes, qsizetype(count));
        }
        return m_output;
    }

    bool hasEnded()
    {
        output();
        return m_process.state() == QProcess::NotRunning;
    }

    /// What can be read from this line on. A terminal may hand over half of what has been written at once.
    QStringList rowsFrom(int row) { return screen(output()).mid(row); }

    void resize(int columns)
    {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = static_cast<unsigned short>(columns);
        ::ioctl(m_master, TIOCSWINSZ, &size);
        interrupt(SIGWINCH);
    }

    void interrupt(int signal) { ::kill(pid_t(m_process.processId()), signal); }
    int exitCode() const { return m_process.exitCode(); }

private:
    int m_master = -1;
    QProcess m_process;
    QByteArray m_output;
};

QJsonArray upTo(const QJsonArray &statuses, const QString &gate)
{
    QJsonArray scenario{ready(), does("await", text("start"))};
    for (const QJsonValue &value : statuses) {
        scenario.append(value);
    }
    scenario.append(does("wait_for_file", gate));
    scenario.append(says({{text("event"), text("model_archived")},
                          {text("path"), text("/m")},
                          {text("step"), 200},
                          {text("loss"), 2.5},
                          {text("elapsed"), 42}}));
    return scenario;
}

} // namespace

class LiveTerminalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drawsInPlaceAndLeavesTheSummary();
    void showsThePreparation();
    void fitsNarrowTerminals();
    void followsTheSize();
    void erasesNothingAfterASuspension();
    void writesErrorsAbove();
    void usesAsciiAndNoColoursWhereToldTo();
    void leavesTheLineCleanWhenInterrupted();
    void diesWithoutHarmWhenTheTerminalGoes();
};

void LiveTerminalTest::drawsInPlaceAndLeavesTheSummary()
{
    TrainHome home;
    const QString gate = home.pathOf(text("gate"));
    home.play(upTo({status("running", 80, 200, 3.25, 40), status("running", 90, 200, 3.2, 45)}, gate));
    TerminalSession session(home, 100);
    const QStringList block{text("Training  ━━━━━━━━━━━━━━━━━━──────────────────────   45%  90 / 200"),
                            text("loss 3.2000 · 1234 tokens/sec · 45s elapsed · 55s left")};
    QTRY_COMPARE_WITH_TIMEOUT(session.rowsFrom(4), block, patience);
    QVERIFY(session.output().contains("\x1b[32m"));
    writeFile(gate, "");
    QTRY_VERIFY_WITH_TIMEOUT(session.hasEnded(), patience);
    QCOMPARE(session.exitCode(), 0);
    const QStringList summary{text("✓ Model archived after 200 steps in 42s, final loss 2.5000"),
                              text("  /m"), QString()};
    QTRY_COMPARE_WITH_TIMEOUT(session.rowsFrom(4), summary, patience);
}

void LiveTerminalTest::showsThePreparation()
{
    TrainHome home;
    QJsonObject preparing = status("preparing", 0, 200, 0, 0).value(text("emit")).toObject();
    preparing[text("prep_progress")] = 0.5;
    preparing[text("prep_detail")] = text("読み込み 日本語コーパス.txt");
    preparing[text("prep_elapsed_s")] = 75;
    preparing[text("prep_eta_s")] = 75;
    home.play(upTo({says(preparing)}, home.pathOf(text("gate"))));
    TerminalSession session(home, 45);
    const QStringList block{text("Preparing data  ━━━━━━━━━━━───────────   50%"),
                            text("読み込み 日本語コーパス.txt · 1m15s left")};
    QTRY_COMPARE_WITH_TIMEOUT(session.rowsFrom(4), block, patience);
}

void LiveTerminalTest::fitsNarrowTerminals()
{
    TrainHome home;
    home.play(upTo({status("running", 90, 200, 3.2, 45)}, home.pathOf(text("gate"))));
    TerminalSession session(home, 18);
    const QStringList block{text(" 45%  90 / 200"), text("loss 3.2000")};
    QTRY_COMPARE_WITH_TIMEOUT(session.rowsFrom(4), block, patience);
}

void LiveTerminalTest::followsTheSize()
{
    TrainHome home;
    home.play(upTo({status("running", 90, 200, 3.2, 45)}, home.pathOf(text("gate"))));
    TerminalSession session(home, 100);
    QTRY_VERIFY_WITH_TIMEOUT(session.output().endsWith(endOfBlock), patience);
    const qsizetype before = session.output().size();
    session.resize(30);
    QTRY_VERIFY_WITH_TIMEOUT(session.output().mid(before).contains("loss 3.2000 · 1234 tokens/sec") ||
                                 session.output().mid(before).contains("45s elapsed"),
                             patience);
    // The bar's 66 columns and the figures' 45 have been wrapped into 3 and 2 rows of 30.
    QVERIFY2(session.output().mid(before).startsWith("\r\x1b[4A\x1b[J"),
             session.output().mid(before).constData());
}

void LiveTerminalTest::erasesNothingAfterASuspension()
{
    TrainHome home;
    home.play(upTo({status("running", 90, 200, 3.2, 45)}, home.pathOf(text("gate"))));
    TerminalSession session(home, 100);
    QTRY_VERIFY_WITH_TIMEOUT(session.output().endsWith(endOfBlock), patience);
    const qsizetype before = session.output().size();
    session.interrupt(SIGCONT);
    QTRY_VERIFY_WITH_TIMEOUT(session.output().mid(before).contains("tokens/sec"), patience);
    QVERIFY(session.output().mid(before).startsWith("Training  "));
}

void LiveTerminalTest::writesErrorsAbove()
{
    TrainHome home;
    home.play(
        upTo({status("running", 90, 200, 3.2, 45), does("raw", text("oops\n"))}, home.pathOf(text("gate"))));
    TerminalSession session(home, 100);
    const QStringList block{text("× bad event from backend: oops"),
                            text("Training  ━━━━━━━━━━━━━━━━━━──────────────────────   45%  90 / 200"),
                            text("loss 3.2000 · 1234 tokens/sec · 45s elapsed")};
    QTRY_COMPARE_WITH_TIMEOUT(session.rowsFrom(4), block, patience);
}

void LiveTerminalTest::usesAsciiAndNoColoursWhereToldTo()
{
    TrainHome home;
    home.setEnvironment(text("LC_ALL"), text("C"));
    home.setEnvironment(text("NO_COLOR"), text("1"));
    home.play(upTo({status("running", 90, 200, 3.2, 45)}, home.pathOf(text("gate"))));
    TerminalSession session(home, 60);
    QTRY_COMPARE_WITH_TIMEOUT(session.rowsFrom(5),
                              QStringList(text("loss 3.2000, 1234 tokens/sec, 45s elapsed")), patience);
    for (const char byte : session.output()) {
        QVERIFY(static_cast<unsigned char>(byte) < 0x80);
    }
    QVERIFY(!session.output().contains("m["));
    const QStringList rows = screen(session.output());
    QVERIFY2(rows[4].contains(QRegularExpression(text("^Training  \\[#+\\.+\\]   45%  90 / 200$"))),
             qPrintable(rows[4]));
    QVERIFY(!session.output().contains("\x1b[3"));
}

void LiveTerminalTest::leavesTheLineCleanWhenInterrupted()
{
    TrainHome home;
    home.play({ready(), does("await", text("start")), status("running", 90, 200, 3.2, 45)});
    TerminalSession session(home, 100);
    QTRY_VERIFY_WITH_TIMEOUT(session.output().contains("90 / 200"), patience);
    session.interrupt(SIGINT);
    QTRY_VERIFY_WITH_TIMEOUT(session.hasEnded(), patience);
    QCOMPARE(session.exitCode(), 0);
    const QStringList goodbye{text("Stopping… Press Ctrl-C again to stop at once, without a checkpoint."),
                              text("Stopped at step 90 of 200. To go on from the latest checkpoint: '%1' "
                                   "--resume --steps 200")
                                  .arg(text(ZOREL_TRAIN)),
                              QString()};
    QTRY_COMPARE_WITH_TIMEOUT(session.rowsFrom(4), goodbye, patience);
    // Nothing was switched that would have to be switched back.
    QVERIFY(!session.output().contains("\x1b[?"));
}

void LiveTerminalTest::diesWithoutHarmWhenTheTerminalGoes()
{
    TrainHome home;
    const QString ended = home.pathOf(text("ended"));
    const QString gate = home.pathOf(text("gate"));
    home.play({ready(), does("await", text("start")), status("running", 90, 200, 3.2, 45),
               does("wait_for_file", gate), status("running", 91, 200, 3.2, 46), does("await", text("stop")),
               does("touch", ended)});
    {
        TerminalSession session(home, 100);
        QTRY_VERIFY_WITH_TIMEOUT(session.output().contains("90 / 200"), patience);
        session.interrupt(SIGHUP);
        writeFile(gate, "");
        QTRY_VERIFY_WITH_TIMEOUT(session.hasEnded(), patience);
        QCOMPARE(session.exitCode(), 0);
    }
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(ended), patience);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::LiveTerminalTest)
#include "LiveTerminalTest.moc"
