#include "library/RunScan.h"
#include "tests/support/RunFolders.h"

#include <QDir>
#include <QHash>
#include <QTest>

namespace zorel::tests {

using library::ArchivedModelRecord;
using library::comesBefore;
using library::scanRuns;

namespace {

QStringList folderNames(const QList<ArchivedModelRecord> &runs)
{
    QStringList names;
    for (const ArchivedModelRecord &run : runs) {
        names << run.folderName;
    }
    return names;
}

QByteArray datedManifest(const char *date)
{
    return QByteArray(R"({"archived_at": ")") + date + "\"}";
}

} // namespace

class RunScanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryKindAsDescribed();
    void whatLiesBesideTheRunsIsIgnored();
    void leavesOutWhatIsNoRun_data();
    void leavesOutWhatIsNoRun();
    void aManifestWithoutIdentityGetsDefaults();
    void namesAreTrimmedAndAuthorsAreNot();
    void datesFallBackToTheFolders();
    void anUnknownFamilyIsKept();
    void theNewestComeFirst();
    void runsOfOneMomentAreOrderedByFolder();
    void runsWithoutDatesComeLast();
    void pathsHaveNoDoubleSlash();
    void aRelativePathBecomesAbsolute();
    void aLinkToTheLibraryIsFollowed();
    void whatIsNoFolderHasNoRuns_data();
    void whatIsNoFolderHasNoRuns();
};

void RunScanTest::readsEveryKindAsDescribed()
{
    const RunFolders folders;
    const std::vector<RunKind> kinds = folders.addEveryKind();
    QHash<QString, ArchivedModelRecord> found;
    for (const ArchivedModelRecord &run : scanRuns(folders.path())) {
        found.insert(run.folderName, run);
    }
    for (const RunKind &kind : kinds) {
        QVERIFY2(found.contains(kind.entry) == kind.isRun, qPrintable(kind.entry));
        if (kind.isRun) {
            QVERIFY2(found.take(kind.entry) == kind.record, qPrintable(kind.entry));
        }
    }
    QCOMPARE(found.keys(), QStringList());
}

void RunScanTest::whatLiesBesideTheRunsIsIgnored()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    folders.write(QStringLiteral("manifest.json"), "{}");
    folders.write(QStringLiteral("notes.txt"), "{}");
    folders.addRun(QStringLiteral(".hidden"), "{}");
    folders.write(QStringLiteral("no manifest/loss_curve.jsonl"), "{}");
    QCOMPARE(folderNames(scanRuns(folders.path())), QStringList{QStringLiteral("run")});
}

void RunScanTest::leavesOutWhatIsNoRun_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QByteArray>("manifest");
    QTest::newRow("hidden") << QStringLiteral(".run") << QByteArray("{}");
    QTest::newRow("array") << QStringLiteral("run") << QByteArray("[]");
    QTest::newRow("string") << QStringLiteral("run") << QByteArray("\"{}\"");
    QTest::newRow("trailing comma") << QStringLiteral("run") << QByteArray(R"({"step": 1,})");
    QTest::newRow("single quotes") << QStringLiteral("run") << QByteArray("{'step': 1}");
    QTest::newRow("comment") << QStringLiteral("run") << QByteArray("{} // done");
    QTest::newRow("bad value of an unknown key") << QStringLiteral("run") << QByteArray(R"({"x": 01})");
    QTest::newRow("control character") << QStringLiteral("run") << QByteArray("{\"x\": \"a\nb\"}");
}

void RunScanTest::leavesOutWhatIsNoRun()
{
    QFETCH(QString, entry);
    QFETCH(QByteArray, manifest);
    const RunFolders folders;
    folders.addRun(QStringLiteral("good"), "{}");
    folders.addRun(entry, manifest);
    QCOMPARE(folderNames(scanRuns(folders.path())), QStringList{QStringLiteral("good")});
}

void RunScanTest::aManifestWithoutIdentityGetsDefaults()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("2026-06-01_21-44-12"), R"({"step": 1})");
    const ArchivedModelRecord run = scanRuns(folders.path()).value(0);
    QCOMPARE(run.name, QStringLiteral("2026-06-01_21-44-12"));
    QCOMPARE(run.version, QStringLiteral("0.0.0"));
    QCOMPARE(run.author, QString());
}

void RunScanTest::namesAreTrimmedAndAuthorsAreNot()
{
    const RunFolders folders;
    folders.addRun(
        QStringLiteral("run"),
        R"({"model_identity": {"name": "  Poet\n", "version": "\u00a01\r\n", "author": " Ada "}})");
    folders.addRun(QStringLiteral("second"), R"({"model_identity": {"name": " \t ", "version": ""}})");
    const QList<ArchivedModelRecord> runs = scanRuns(folders.path());
    QCOMPARE(runs.size(), 2);
    for (const ArchivedModelRecord &run : runs) {
        const bool isFirst = run.folderName == QStringLiteral("run");
        QCOMPARE(run.name, isFirst ? QStringLiteral("Poet") : QString());
        QCOMPARE(run.version, isFirst ? QStringLiteral("1") : QString());
        QCOMPARE(run.author, isFirst ? QStringLiteral(" Ada ") : QString());
    }
}

void RunScanTest::datesFallBackToTheFolders()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("whole"), datedManifest("2025-03-14T09:26:53Z"));
    folders.addRun(QStringLiteral("fraction"), datedManifest("2025-03-14T09:26:53.5Z"));
    for (const char *date : {"2025-03-14 09:26", "", "soon"}) {
        folders.addRun(QStringLiteral("none ") + QString::fromLatin1(date), datedManifest(date));
        folders.setModified(QStringLiteral("none ") + QString::fromLatin1(date),
                            dateOf("2001-02-03T04:05:06.789Z"));
    }
    const QList<ArchivedModelRecord> runs = scanRuns(folders.path());
    QCOMPARE(runs.size(), 5);
    for (const ArchivedModelRecord &run : runs) {
        const char *expected = run.folderName == QStringLiteral("whole")      ? "2025-03-14T09:26:53Z"
                               : run.folderName == QStringLiteral("fraction") ? "2025-03-14T09:26:53.500Z"
                                                                              : "2001-02-03T04:05:06.789Z";
        QCOMPARE(run.archivedAt, dateOf(expected));
    }
}

void RunScanTest::anUnknownFamilyIsKept()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("b"),
                   R"({"model_family": "vision", "archived_at": "2025-01-01T00:00:00Z"})");
    folders.addRun(QStringLiteral("a"), R"({"archived_at": "2024-01-01T00:00:00Z"})");
    const QList<ArchivedModelRecord> runs = scanRuns(folders.path());
    QCOMPARE(runs.value(0).modelFamily, QStringLiteral("vision"));
    QCOMPARE(runs.value(1).modelFamily, QStringLiteral("text_language"));
}

void RunScanTest::theNewestComeFirst()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("a"), datedManifest("2025-03-14T09:26:53.000001Z"));
    folders.addRun(QStringLiteral("b"), datedManifest("2025-03-14T09:26:53Z"));
    folders.addRun(QStringLiteral("c"), datedManifest("2025-03-14T12:00:00+09:00"));
    folders.addRun(QStringLiteral("d"), datedManifest("2026-01-01T00:00:00Z"));
    QCOMPARE(folderNames(scanRuns(folders.path())).join(u' '), QStringLiteral("d a b c"));
}

void RunScanTest::runsOfOneMomentAreOrderedByFolder()
{
    const RunFolders folders;
    for (const char *name : {"run-1", "Run-3", "run-10", "run-2", "run"}) {
        folders.addRun(QString::fromLatin1(name), datedManifest("2025-03-14T09:26:53Z"));
    }
    QCOMPARE(folderNames(scanRuns(folders.path())).join(u' '),
             QStringLiteral("run-2 run-10 run-1 run Run-3"));

    ArchivedModelRecord one;
    one.folderName = QStringLiteral("one");
    QVERIFY(!comesBefore(one, one));
}

void RunScanTest::runsWithoutDatesComeLast()
{
    ArchivedModelRecord dated;
    dated.archivedAt = dateOf("0001-01-01T00:00:00Z");
    dated.folderName = QStringLiteral("a");
    ArchivedModelRecord undated;
    undated.folderName = QStringLiteral("z");
    ArchivedModelRecord other = undated;
    other.folderName = QStringLiteral("y");
    QVERIFY(comesBefore(dated, undated));
    QVERIFY(!comesBefore(undated, dated));
    QVERIFY(comesBefore(undated, other));
    QVERIFY(!comesBefore(other, undated));
}

void RunScanTest::pathsHaveNoDoubleSlash()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    for (const char *ending : {"", "/", "///"}) {
        const ArchivedModelRecord run = scanRuns(folders.path() + QString::fromLatin1(ending)).value(0);
        QCOMPARE(run.path, folders.pathOf(QStringLiteral("run")));
        QCOMPARE(run.id, run.path);
    }
}

void RunScanTest::aRelativePathBecomesAbsolute()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    const QString relative = QDir::current().relativeFilePath(folders.path());
    QVERIFY(QDir::isRelativePath(relative));
    const QString path = scanRuns(relative).value(0).path;
    QVERIFY(QDir::isAbsolutePath(path));
    QCOMPARE(QDir::cleanPath(path), folders.pathOf(QStringLiteral("run")));
}

void RunScanTest::aLinkToTheLibraryIsFollowed()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("library/run"), "{}");
    folders.link(QStringLiteral("link"), QStringLiteral("library"));
    QCOMPARE(scanRuns(folders.pathOf(QStringLiteral("link"))).value(0).path,
             folders.pathOf(QStringLiteral("link/run")));
}

void RunScanTest::whatIsNoFolderHasNoRuns_data()
{
    QTest::addColumn<QString>("entry");
    QTest::newRow("nothing") << QStringLiteral("nothing");
    QTest::newRow("a file") << QStringLiteral("file");
    QTest::newRow("a dangling link") << QStringLiteral("dangling");
    QTest::newRow("a loop") << QStringLiteral("loop");
    QTest::newRow("below a file") << QStringLiteral("file/below");
    QTest::newRow("a long name") << QString(4000, u'x');
}

void RunScanTest::whatIsNoFolderHasNoRuns()
{
    QFETCH(QString, entry);
    const RunFolders folders;
    folders.write(QStringLiteral("file"), "{}");
    folders.link(QStringLiteral("dangling"), QStringLiteral("nowhere"));
    folders.link(QStringLiteral("loop"), QStringLiteral("loop"));
    QVERIFY(scanRuns(folders.pathOf(entry)).isEmpty());
    QVERIFY(scanRuns(QString()).isEmpty());
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::RunScanTest)
#include "RunScanTest.moc"
