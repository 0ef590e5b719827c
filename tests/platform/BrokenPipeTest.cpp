#include <QProcess>
#include <QTest>

class BrokenPipeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writingToAPipeWithoutReaderFailsAndTheProcessLives();
};

void BrokenPipeTest::writingToAPipeWithoutReaderFailsAndTheProcessLives()
{
    QProcess probe;
    probe.start(QStringLiteral(ZOREL_PLATFORM_PROBE), {QStringLiteral("broken-pipe")});
    QVERIFY(probe.waitForFinished());
    QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
    QVERIFY2(probe.exitCode() == 0, probe.readAllStandardError().constData());
}

QTEST_GUILESS_MAIN(BrokenPipeTest)
#include "BrokenPipeTest.moc"
