#include "backend/bridge/SidecarLocator.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace zorel::backend::bridge;

namespace {

const QStringList importMLX{QStringLiteral("-c"), QStringLiteral("import mlx")};

} // namespace

/// The real file system and child processes; the search itself is tested on made-up ones.
class SidecarHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theOverrideComesFromTheEnvironment();
    void outsideABundleThereIsTheCheckout();
    void aFileIsExecutableOrNot();
    void theExitStatusOfTheProbeIsReturned();
    void aProbeThatPrintsALotStillEnds();
    void aProbeGetsNoInput();
    void aHangingProbeIsKilledAtTheLimit();
    void anInterpreterThatCannotRunGivesNothing();
    void anInterpreterKilledBySignalGivesNothing();

private:
    QString script(const QString &text);

    QTemporaryDir m_folder;
    int m_scripts = 0;
};

QString SidecarHostTest::script(const QString &text)
{
    const QString path = m_folder.filePath(QStringLiteral("python%1").arg(++m_scripts));
    QFile file(path);
    [&] {
        QVERIFY(file.open(QIODevice::WriteOnly));
    }();
    file.write("#!/bin/sh\n" + text.toUtf8() + "\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

void SidecarHostTest::theOverrideComesFromTheEnvironment()
{
    qunsetenv("ZOREL_SCRIPTS_ROOT");
    QVERIFY(!SidecarHost::system().scriptsRootOverride);
    qputenv("ZOREL_SCRIPTS_ROOT", "");
    QCOMPARE(SidecarHost::system().scriptsRootOverride, std::optional(QString()));
    qputenv("ZOREL_SCRIPTS_ROOT", "/somewhere");
    QCOMPARE(SidecarHost::system().scriptsRootOverride, std::optional(QStringLiteral("/somewhere")));
    qunsetenv("ZOREL_SCRIPTS_ROOT");
}

void SidecarHostTest::outsideABundleThereIsTheCheckout()
{
    const SidecarHost host = SidecarHost::system();
    QVERIFY(!host.bundleResources);
    QVERIFY(!host.bundleParent);
    QVERIFY(host.checkoutSidecar.endsWith(QStringLiteral("/sidecar")));
    QCOMPARE(host.home, QString::fromLocal8Bit(qgetenv("HOME")));
}

void SidecarHostTest::aFileIsExecutableOrNot()
{
    const SidecarHost host = SidecarHost::system();
    QVERIFY(host.isExecutableFile(QStringLiteral("/bin/sh")));
    QVERIFY(!host.isExecutableFile(QStringLiteral("/etc/passwd")));
    QVERIFY(!host.isExecutableFile(QStringLiteral("/usr/bin")));
    QVERIFY(!host.isExecutableFile(QStringLiteral("/nowhere/python3")));
    QVERIFY(host.fileExists(QStringLiteral("/etc/passwd")));
    QVERIFY(!host.fileExists(QStringLiteral("/nowhere/python3")));
}

void SidecarHostTest::theExitStatusOfTheProbeIsReturned()
{
    const SidecarHost host = SidecarHost::system();
    QCOMPARE(host.run(script(QStringLiteral("exit 0")), importMLX), std::optional(0));
    QCOMPARE(host.run(script(QStringLiteral("exit 1")), importMLX), std::optional(1));
    const QString checksArguments =
        script(QStringLiteral("[ \"$1\" = -c ] && [ \"$2\" = 'import mlx' ] && [ $# = 2 ]"));
    QVERIFY(SidecarLocator::hasMLX(host, checksArguments));
}

void SidecarHostTest::aProbeThatPrintsALotStillEnds()
{
    const QString chatty = script(QStringLiteral("head -c 1000000 /dev/zero; head -c 1000000 /dev/zero >&2"));
    QCOMPARE(SidecarHost::system().run(chatty, importMLX), std::optional(0));
}

void SidecarHostTest::aProbeGetsNoInput()
{
    QCOMPARE(SidecarHost::system().run(script(QStringLiteral("read line")), importMLX), std::optional(1));
}

void SidecarHostTest::aHangingProbeIsKilledAtTheLimit()
{
    const SidecarHost host = SidecarHost::system(std::chrono::milliseconds(100));
    QCOMPARE(host.run(script(QStringLiteral("exec tail -f /dev/null")), importMLX), std::nullopt);
}

void SidecarHostTest::anInterpreterThatCannotRunGivesNothing()
{
    const SidecarHost host = SidecarHost::system();
    QCOMPARE(host.run(QStringLiteral("/nowhere/python3"), importMLX), std::nullopt);
    QCOMPARE(host.run(QStringLiteral("/etc/passwd"), importMLX), std::nullopt);
}

void SidecarHostTest::anInterpreterKilledBySignalGivesNothing()
{
    QCOMPARE(SidecarHost::system().run(script(QStringLiteral("kill -9 $$")), importMLX), std::nullopt);
}

QTEST_GUILESS_MAIN(SidecarHostTest)
#include "SidecarHostTest.moc"
