#include "ui/dashboard/LiveUpdates.h"

#include "tests/ui/dashboard/Stage.h"

#include <QElapsedTimer>
#include <QSignalSpy>

namespace zorel::tests {

using ui::dashboard::LiveUpdates;

class LiveUpdatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesManyChangesOnAtOnce();
    void saysNothingWhenNothingChanged();
    void passesOnBeforeTheFrame();
    void passesLogLinesOnSlowerAndAll();
    void passesPointsOnSlowerAndAll();
};

void LiveUpdatesTest::passesManyChangesOnAtOnce()
{
    Stage stage;
    LiveUpdates updates(stage.backend);
    QSignalSpy status(&updates, &LiveUpdates::statusMoved);
    QSignalSpy points(&updates, &LiveUpdates::lossHistoryGrew);
    QSignalSpy lines(&updates, &LiveUpdates::logGrew);
    for (int index = 1; index <= 1000; ++index) {
        stage.applyStatus(QStringLiteral("running"), index, 1000, 2.5);
        stage.backend.appendLog(QStringLiteral("line"));
    }
    QCOMPARE(status.count() + points.count() + lines.count(), 0); // never from within the change
    QTRY_COMPARE(status.count(), 1);
    QCOMPARE(points.count(), 1);
    QCOMPARE(points.front().front().value<std::size_t>(), std::size_t{1000});
    QCOMPARE(lines.count(), 1);
    QCOMPARE(lines.front().front().value<std::size_t>(), std::size_t{1000});
}

void LiveUpdatesTest::saysNothingWhenNothingChanged()
{
    Stage stage;
    LiveUpdates updates(stage.backend);
    QSignalSpy status(&updates, &LiveUpdates::statusMoved);
    QSignalSpy points(&updates, &LiveUpdates::lossHistoryGrew);
    QSignalSpy lines(&updates, &LiveUpdates::logGrew);
    stage.backend.appendLog(QStringLiteral("line"));
    QTRY_COMPARE(lines.count(), 1);
    QCOMPARE(status.count() + points.count(), 0);
    updates.publish();
    QCOMPARE(lines.count(), 1);
}

void LiveUpdatesTest::passesOnBeforeTheFrame()
{
    Stage stage;
    LiveUpdates updates(stage.backend);
    QSignalSpy status(&updates, &LiveUpdates::statusMoved);
    stage.becomeReady();
    updates.publish();
    QCOMPARE(status.count(), 1);
    QSignalSpy lines(&updates, &LiveUpdates::logGrew);
    stage.backend.appendLog(QStringLiteral("line"));
    QTRY_COMPARE(lines.count(), 1);
    QCOMPARE(status.count(), 1);
}

void LiveUpdatesTest::passesLogLinesOnSlowerAndAll()
{
    Stage stage;
    LiveUpdates updates(stage.backend);
    std::size_t passedOn = 0;
    int times = 0;
    connect(&updates, &LiveUpdates::logGrew, this, [&](std::size_t lines) {
        passedOn += lines;
        ++times;
    });
    // Whatever the machine's speed: each time but the first waits for the one before.
    QElapsedTimer passed;
    passed.start();
    std::size_t written = 0;
    while (times < 4) {
        stage.backend.appendLog(QStringLiteral("line"));
        ++written;
        QCoreApplication::processEvents();
    }
    QVERIFY(passed.elapsed() >= 3 * 49);
    QTRY_COMPARE(passedOn, written);
    stage.backend.appendLog(QStringLiteral("line"));
    updates.publish();
    QCOMPARE(passedOn, written + 1);
}

void LiveUpdatesTest::passesPointsOnSlowerAndAll()
{
    Stage stage;
    LiveUpdates updates(stage.backend);
    QSignalSpy status(&updates, &LiveUpdates::statusMoved);
    std::size_t passedOn = 0;
    int times = 0;
    connect(&updates, &LiveUpdates::lossHistoryGrew, this, [&](std::size_t points) {
        passedOn += points;
        ++times;
    });
    QElapsedTimer passed;
    passed.start();
    std::int64_t step = 0;
    while (times < 4) {
        stage.applyStatus(QStringLiteral("running"), ++step, 1000, 2.5);
        QCoreApplication::processEvents();
    }
    QVERIFY(passed.elapsed() >= 3 * 32);
    QVERIFY(status.count() >= 4);
    QTRY_COMPARE(passedOn, static_cast<std::size_t>(step));
    stage.applyStatus(QStringLiteral("running"), ++step, 1000, 2.5);
    updates.publish();
    QCOMPARE(passedOn, static_cast<std::size_t>(step));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::LiveUpdatesTest)
#include "LiveUpdatesTest.moc"
