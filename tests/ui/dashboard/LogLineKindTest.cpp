#include "ui/dashboard/LogLineKind.h"

#include <QTest>

namespace zorel::tests {

using ui::dashboard::LogLineKind;
using ui::dashboard::logLineKind;

class LogLineKindTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsTheKinds_data();
    void knowsTheKinds();
};

void LogLineKindTest::knowsTheKinds_data()
{
    QTest::addColumn<LogLineKind>("expected");
    QTest::newRow("") << LogLineKind::ordinary;
    QTest::newRow("backend ready (default max_steps = 50)") << LogLineKind::ordinary;
    QTest::newRow("an error in lower case, a warning, step 5") << LogLineKind::ordinary;
    QTest::newRow("× ERROR: the disk is full") << LogLineKind::error;
    QTest::newRow("VALUEERRORS") << LogLineKind::error;
    QTest::newRow("[py stderr] WARNING: slow") << LogLineKind::warning;
    QTest::newRow("WARN") << LogLineKind::warning;
    QTest::newRow("step=10 loss=2.3") << LogLineKind::step;
    QTest::newRow("max_step=10") << LogLineKind::step;
    QTest::newRow("WARN step=10") << LogLineKind::warning;
    QTest::newRow("step=10 WARN ERROR") << LogLineKind::error;
}

void LogLineKindTest::knowsTheKinds()
{
    QFETCH(LogLineKind, expected);
    QCOMPARE(logLineKind(QString::fromUtf8(QTest::currentDataTag())), expected);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::LogLineKindTest)
#include "LogLineKindTest.moc"
