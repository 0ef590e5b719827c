#include "ui/kit/Repaint.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace zorel::tests {

using namespace ui::kit;

class FrameCoalescerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsOnceForManyRequests();
    void neverRunsInsideARequest();
    void runsAgainForALaterRequest();
    void keepsToTheFrameRate();
    void takesARequestFromItsFunction();
    void flushesWhatIsPending();
    void hasNoTimerWhileIdle();
    void servesInTheSameFrameWhatAFrameAsksFor();
    void aFunctionMayEndAnother();
    void endsWithItsParent();
};

void FrameCoalescerTest::runsOnceForManyRequests()
{
    int runs = 0;
    FrameCoalescer frames(this, [&runs] { ++runs; });
    for (int request = 0; request < 1000; ++request) {
        frames.request();
    }
    QTRY_COMPARE(runs, 1);
    QVERIFY(!frames.isPending());
}

void FrameCoalescerTest::neverRunsInsideARequest()
{
    int runs = 0;
    FrameCoalescer frames(this, [&runs] { ++runs; });
    frames.request();
    QCOMPARE(runs, 0);
}

void FrameCoalescerTest::runsAgainForALaterRequest()
{
    int runs = 0;
    FrameCoalescer frames(this, [&runs] { ++runs; });
    frames.request();
    QTRY_COMPARE(runs, 1);
    frames.request();
    QTRY_COMPARE(runs, 2);
}

void FrameCoalescerTest::keepsToTheFrameRate()
{
    int runs = 0;
    FrameCoalescer frames(this, [&runs] { ++runs; });
    // Whatever the machine's speed: each run but the first waits for its frame.
    QElapsedTimer passed;
    passed.start();
    while (runs < 5) {
        frames.request();
        QCoreApplication::processEvents();
    }
    QVERIFY(passed.elapsed() >= 4 * 16);
}

void FrameCoalescerTest::takesARequestFromItsFunction()
{
    int runs = 0;
    FrameCoalescer *again = nullptr;
    FrameCoalescer frames(this, [&runs, &again] {
        if (++runs < 3) {
            again->request();
        }
    });
    again = &frames;
    frames.request();
    QTRY_COMPARE(runs, 3);
    QVERIFY(!frames.isPending());
}

void FrameCoalescerTest::flushesWhatIsPending()
{
    int runs = 0;
    FrameCoalescer frames(this, [&runs] { ++runs; });
    frames.flush();
    QCOMPARE(runs, 0);
    frames.request();
    frames.flush();
    QCOMPARE(runs, 1);
    QVERIFY(!frames.isPending());
}

void FrameCoalescerTest::hasNoTimerWhileIdle()
{
    int runs = 0;
    FrameCoalescer frames(this, [&runs] { ++runs; });
    const auto timers = [] {
        const QList<QTimer *> all = QCoreApplication::instance()->findChildren<QTimer *>();
        return std::ranges::count_if(all, &QTimer::isActive);
    };
    QCOMPARE(timers(), 0);
    frames.request();
    QVERIFY(frames.isPending());
    QCOMPARE(timers(), 1);
    QTRY_COMPARE(runs, 1);
    QCOMPARE(timers(), 0);
    frames.request();
    frames.flush();
    QCOMPARE(timers(), 0);
    QVERIFY(!frames.isPending());
}

/// Two paints of a window would follow otherwise, where the one that has new data asks for the other's
/// repaint.
void FrameCoalescerTest::servesInTheSameFrameWhatAFrameAsksFor()
{
    QStringList order;
    FrameCoalescer picture(this, [&order] { order << QStringLiteral("picture"); });
    FrameCoalescer data(this, [&order, &picture] {
        order << QStringLiteral("data");
        picture.request();
        QMetaObject::invokeMethod(
            &picture, [&order] { order << QStringLiteral("paint"); }, Qt::QueuedConnection);
    });
    for (int round = 0; round < 3; ++round) {
        data.request();
        QTRY_COMPARE(order.count(QStringLiteral("paint")), round + 1);
    }
    QCOMPARE(order.join(QLatin1Char(' ')),
             QStringLiteral("data picture paint data picture paint data picture paint"));
}

void FrameCoalescerTest::aFunctionMayEndAnother()
{
    int runs = 0;
    auto other = std::make_unique<FrameCoalescer>(nullptr, [&runs] { ++runs; });
    FrameCoalescer frames(this, [&runs, &other] {
        ++runs;
        other.reset();
    });
    frames.request();
    other->request();
    QTRY_VERIFY(!frames.isPending());
    QCOMPARE(runs, 1);
}

void FrameCoalescerTest::endsWithItsParent()
{
    int runs = 0;
    auto parent = std::make_unique<QObject>();
    auto *frames = new FrameCoalescer(parent.get(), [&runs] { ++runs; });
    frames->request();
    parent.reset();
    QCoreApplication::processEvents();
    QCOMPARE(runs, 0);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::FrameCoalescerTest)
#include "FrameCoalescerTest.moc"
