#include "library/ArchivedRunCount.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using zorel::library::countArchivedRuns;

class ArchivedRunCountTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyFoldersWithAManifestCount();
    void aFolderThatCannotBeListedHasNone();
};

void ArchivedRunCountTest::onlyFoldersWithAManifestCount()
{
    QTemporaryDir folder;
    QDir root(folder.path());
    for (const char *name : {"run-1", "run-2", "empty", "nested/run-3", "folder-manifest/manifest.json"}) {
        root.mkpath(QString::fromLatin1(name));
    }
    for (const char *name :
         {"run-1/manifest.json", "run-2/manifest.json", "nested/run-3/manifest.json", "manifest.json"}) {
        QFile file(root.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QCOMPARE(countArchivedRuns(folder.path()), 2);
}

void ArchivedRunCountTest::aFolderThatCannotBeListedHasNone()
{
    QCOMPARE(countArchivedRuns(QStringLiteral("/nowhere")), 0);
    QCOMPARE(countArchivedRuns(QStringLiteral("/etc/passwd")), 0);
    QCOMPARE(countArchivedRuns(QString()), 0);
}

QTEST_GUILESS_MAIN(ArchivedRunCountTest)
#include "ArchivedRunCountTest.moc"
