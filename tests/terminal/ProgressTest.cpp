#include "terminal/PlainRenderer.h"
#include "terminal/RemainingTime.h"

#include <QTest>

#include <unistd.h>

namespace zorel::tests {

using namespace terminal;

namespace {

backend::protocol::TrainStatusPayload running(std::int64_t step, double elapsed, std::int64_t maxSteps = 100)
{
    backend::protocol::TrainStatusPayload status;
    status.state = QStringLiteral("running");
    status.step = step;
    status.maxSteps = maxSteps;
    status.elapsedS = elapsed;
    return status;
}

} // namespace

/// The estimate of the remaining time, and when plain lines are written.
class ProgressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void estimatesFromThePaceOfLate();
    void knowsNoPaceAtFirst();
    void forgetsThePaceInAPause();
    void writesALineWhenItIsTime();
};

void ProgressTest::estimatesFromThePaceOfLate()
{
    RemainingTime remaining;
    // A slow first step falls out of the window.
    remaining.update(running(1, 100, 1000));
    for (int step = 2; step <= 200; ++step) {
        remaining.update(running(step, 200 + step, 1000));
    }
    QCOMPARE(*remaining.seconds(), 800.0);
    remaining.update(running(201, 401, 301));
    QCOMPARE(*remaining.seconds(), 100.0);
    remaining.update(running(202, 402, 50));
    QCOMPARE(*remaining.seconds(), 0.0);
}

void ProgressTest::knowsNoPaceAtFirst()
{
    RemainingTime remaining;
    QVERIFY(!remaining.seconds());
    // A resumed run starts in the middle.
    remaining.update(running(50, 500));
    QVERIFY(!remaining.seconds());
    remaining.update(running(50, 501));
    QVERIFY(!remaining.seconds());
    remaining.update(running(60, 510));
    QCOMPARE(*remaining.seconds(), 40.0);
}

void ProgressTest::forgetsThePaceInAPause()
{
    RemainingTime remaining;
    remaining.update(running(1, 1));
    remaining.update(running(2, 2));
    QVERIFY(remaining.seconds());
    auto paused = running(2, 1000);
    paused.state = QStringLiteral("paused");
    remaining.update(paused);
    QVERIFY(!remaining.seconds());
    remaining.update(running(3, 1001));
    remaining.update(running(5, 1003));
    QCOMPARE(*remaining.seconds(), 95.0);
    // The next run starts over.
    remaining.update(running(1, 1));
    QVERIFY(!remaining.seconds());
}

void ProgressTest::writesALineWhenItIsTime()
{
    int pipe[2];
    QCOMPARE(::pipe(pipe), 0);
    OutputStream stream(pipe[1]);
    MessageWriter writer(stream, {});
    std::chrono::milliseconds now{5000};
    PlainRenderer renderer(writer, writer, [&now] { return now; });
    const auto linesAfter = [&](std::int64_t step, int milliseconds) {
        now += std::chrono::milliseconds(milliseconds);
        RunProgress progress;
        progress.phase = TerminalRun::Phase::training;
        progress.status = running(step, 0, 1000);
        renderer.showProgress(progress);
        stream.write("end");
        QByteArray bytes(4096, '\0');
        bytes.resize(qsizetype(::read(pipe[0], bytes.data(), std::size_t(bytes.size()))));
        return bytes.count('\n');
    };
    QCOMPARE(linesAfter(1, 0), 1); // another state
    QCOMPARE(linesAfter(2, 0), 0);
    QCOMPARE(linesAfter(3, 9999), 0);
    QCOMPARE(linesAfter(4, 1), 1); // 10 seconds
    QCOMPARE(linesAfter(53, 0), 0);
    QCOMPARE(linesAfter(54, 0), 1);     // 5 per cent
    QCOMPARE(linesAfter(54, 20000), 0); // nothing new
    ::close(pipe[0]);
    ::close(pipe[1]);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::ProgressTest)
#include "ProgressTest.moc"
