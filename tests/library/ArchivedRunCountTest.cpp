#include "library/ArchivedRunCount.h"
#include "tests/support/RunFolders.h"

#include <QDir>
#include <QTest>

namespace zorel::tests {

using library::countArchivedRuns;

class ArchivedRunCountTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyFoldersWithAManifestCount();
    void aManifestNeedNotBeGood();
    void aFolderThatCannotBeListedHasNone();
};

void ArchivedRunCountTest::onlyFoldersWithAManifestCount()
{
    const RunFolders folders;
    for (const char *name : {"run-1", "run-2", ".hidden", "nested/run-3"}) {
        folders.addRun(QString::fromLatin1(name), "{}");
    }
    folders.write(QStringLiteral("manifest.json"), "{}");
    folders.link(QStringLiteral("link"), QStringLiteral("run-1"));
    QDir(folders.path()).mkpath(QStringLiteral("empty"));
    QDir(folders.path()).mkpath(QStringLiteral("folder-manifest/manifest.json"));
    QCOMPARE(countArchivedRuns(folders.path()), 3);
}

void ArchivedRunCountTest::aManifestNeedNotBeGood()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("empty"), "");
    folders.addRun(QStringLiteral("array"), "[]");
    QCOMPARE(countArchivedRuns(folders.path()), 2);
}

void ArchivedRunCountTest::aFolderThatCannotBeListedHasNone()
{
    QCOMPARE(countArchivedRuns(QStringLiteral("/nowhere")), 0);
    QCOMPARE(countArchivedRuns(QStringLiteral("/etc/passwd")), 0);
    QCOMPARE(countArchivedRuns(QString()), 0);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::ArchivedRunCountTest)
#include "ArchivedRunCountTest.moc"
