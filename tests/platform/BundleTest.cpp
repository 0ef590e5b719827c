#include "platform/Bundle.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using zorel::platform::Bundle;
using zorel::platform::bundleOf;

class BundleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void executableInABundleBelongsToIt();
    void innermostBundleCounts();
    void bundleMayStandInTheRootFolder();
    void executableElsewhereHasNoBundle_data();
    void executableElsewhereHasNoBundle();
    void thisTestHasNoBundle();
    void processInABundleFindsIt_data();
    void processInABundleFindsIt();
};

void BundleTest::executableInABundleBelongsToIt()
{
    const Bundle expected{QStringLiteral("/Applications/Talvex LLM Trainer.app"),
                          QStringLiteral("/Applications/Talvex LLM Trainer.app/Contents/Resources"),
                          QStringLiteral("/Applications")};
    QVERIFY(bundleOf(QStringLiteral("/Applications/Talvex LLM Trainer.app/Contents/MacOS/Trainer")) ==
            expected);
    QVERIFY(bundleOf(QStringLiteral("/Applications//Talvex LLM Trainer.app/Contents/./MacOS/Trainer")) ==
            expected);
}

void BundleTest::innermostBundleCounts()
{
    const auto bundle =
        bundleOf(QStringLiteral("/a/Outer.app/Contents/Resources/Inner.app/Contents/MacOS/run"));
    QVERIFY(bundle.has_value());
    QCOMPARE(bundle->path, QStringLiteral("/a/Outer.app/Contents/Resources/Inner.app"));
    QCOMPARE(bundle->parent, QStringLiteral("/a/Outer.app/Contents/Resources"));
}

void BundleTest::bundleMayStandInTheRootFolder()
{
    const auto bundle = bundleOf(QStringLiteral("/X.app/Contents/MacOS/run"));
    QVERIFY(bundle.has_value());
    QCOMPARE(bundle->path, QStringLiteral("/X.app"));
    QCOMPARE(bundle->parent, QStringLiteral("/"));
}

void BundleTest::executableElsewhereHasNoBundle_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("nothing") << QString();
    QTest::newRow("root") << QStringLiteral("/");
    QTest::newRow("plain folder") << QStringLiteral("/usr/bin/run");
    QTest::newRow("the bundle itself") << QStringLiteral("/a/X.app");
    QTest::newRow("the folder of executables") << QStringLiteral("/a/X.app/Contents/MacOS/");
    QTest::newRow("deeper") << QStringLiteral("/a/X.app/Contents/MacOS/bin/run");
    QTest::newRow("among the resources") << QStringLiteral("/a/X.app/Contents/Resources/run");
    QTest::newRow("without Contents") << QStringLiteral("/a/X.app/MacOS/run");
    QTest::newRow("another folder than Contents") << QStringLiteral("/a/X.app/Content/MacOS/run");
    QTest::newRow("another ending") << QStringLiteral("/a/X.application/Contents/MacOS/run");
    QTest::newRow("an ending alone") << QStringLiteral("/a/.app/Contents/MacOS/run");
    QTest::newRow("relative") << QStringLiteral("X.app/Contents/MacOS/run");
    QTest::newRow("left by dots") << QStringLiteral("/a/X.app/Contents/MacOS/../run");
}

void BundleTest::executableElsewhereHasNoBundle()
{
    QFETCH(QString, path);
    QVERIFY(!bundleOf(path).has_value());
}

void BundleTest::thisTestHasNoBundle()
{
    QVERIFY(!zorel::platform::mainBundle().has_value());
}

void BundleTest::processInABundleFindsIt_data()
{
    QTest::addColumn<bool>("throughLink");
    QTest::newRow("started by its path") << false;
    QTest::newRow("started through a link") << true;
}

void BundleTest::processInABundleFindsIt()
{
    QFETCH(bool, throughLink);
    QTemporaryDir folder;
    const QString root = QDir(folder.path()).canonicalPath();
    const QString bundle = root + QStringLiteral("/Prøbe it's.app");
    const QString executable = bundle + QStringLiteral("/Contents/MacOS/Probe");
    QVERIFY(QDir().mkpath(bundle + QStringLiteral("/Contents/MacOS")));
    QVERIFY(QFile::copy(QStringLiteral(ZOREL_PLATFORM_PROBE), executable));
    const QString link = root + QStringLiteral("/link");
    QVERIFY(QFile::link(executable, link));

    QProcess probe;
    probe.start(throughLink ? link : executable, {QStringLiteral("bundle")});
    QVERIFY(probe.waitForFinished());
    QCOMPARE(probe.exitCode(), 0);
    QCOMPARE(QFile::decodeName(probe.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts),
             QStringList({bundle, bundle + QStringLiteral("/Contents/Resources"), root}));
}

QTEST_GUILESS_MAIN(BundleTest)
#include "BundleTest.moc"
