#include "library/FolderWalk.h"
#include "tests/support/RunFolders.h"

#include <QDir>
#include <QTest>

namespace zorel::tests {

using library::FileContent;
using library::FolderWalk;

namespace {

QString nameOf(const FolderWalk &walk)
{
    return QString::fromUtf8(walk.name().data(), qsizetype(walk.name().size()));
}

QStringList walked(const QString &path, FolderWalk::Hidden hidden)
{
    QStringList names;
    FolderWalk walk(path, hidden);
    while (walk.next()) {
        names << nameOf(walk);
    }
    names.sort();
    return names;
}

} // namespace

class FolderWalkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsFoldersAndNothingElse();
    void aFolderRemovedDuringTheWalkIsEmpty();
    void theWalkedFolderMayGoAway();
};

void FolderWalkTest::findsFoldersAndNothingElse()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    folders.addRun(QStringLiteral(".hidden"), "{}");
    folders.write(QStringLiteral("file"), "{}");
    folders.link(QStringLiteral("link"), QStringLiteral("run"));
    QCOMPARE(walked(folders.path(), FolderWalk::Hidden::skipped), QStringList{QStringLiteral("run")});
    QCOMPARE(walked(folders.path(), FolderWalk::Hidden::included),
             (QStringList{QStringLiteral(".hidden"), QStringLiteral("run")}));
}

void FolderWalkTest::aFolderRemovedDuringTheWalkIsEmpty()
{
    const RunFolders folders;
    for (const char *name : {"a", "b", "c"}) {
        folders.addRun(QString::fromLatin1(name), "{}");
    }
    FolderWalk walk(folders.path(), FolderWalk::Hidden::skipped);
    FileContent content;
    QVERIFY(walk.next());
    QVERIFY(walk.read("manifest.json", 100, content));
    QVERIFY(walk.next());
    QVERIFY(QDir(folders.pathOf(nameOf(walk))).removeRecursively());
    QVERIFY(!walk.has("manifest.json"));
    QVERIFY(!walk.hasRegularFile("manifest.json"));
    QVERIFY(!walk.read("manifest.json", 100, content));
    QVERIFY(walk.next());
    QVERIFY(walk.read("manifest.json", 100, content));
    QCOMPARE(content.text(), std::string_view("{}"));
    QVERIFY(!walk.next());
}

void FolderWalkTest::theWalkedFolderMayGoAway()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("library/run"), "{}");
    FolderWalk walk(folders.pathOf(QStringLiteral("library")), FolderWalk::Hidden::skipped);
    QVERIFY(QDir(folders.pathOf(QStringLiteral("library"))).removeRecursively());
    FileContent content;
    while (walk.next()) {
        QVERIFY(!walk.read("manifest.json", 100, content));
    }
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::FolderWalkTest)
#include "FolderWalkTest.moc"
