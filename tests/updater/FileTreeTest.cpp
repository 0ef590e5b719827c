#include "updater/FileTree.h"
#include "tests/updater/Files.h"
#include "tests/updater/Outcome.h"
#include "updater/Cancellation.h"
#include "updater/InstallSurroundings.h"

#include <sys/stat.h>

using namespace zorel::tests;
using namespace zorel::updater;

namespace {

std::optional<UpdateError> refusalOf(const QString &root, const InstallLimits &limits = {})
{
    return errorOf([&] { requireSelfContained(root, limits, Cancellation()); });
}

} // namespace

class FileTreeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizesAreCounted();
    void linksMayNotLeaveTheTree_data();
    void linksMayNotLeaveTheTree();
    void aChainOfLinksCannotLeaveTheTree();
    void filesWithANameElsewhereAreRefused();
    void filesWithTwoNamesInsideAreAllowed();
    void whatIsNeitherFileNorFolderIsRefused();
    void treesPastTheLimitsAreRefused();
    void aCancelledWalkEnds();

    void theFirstBundleIsFound_data();
    void theFirstBundleIsFound();
    void aNameThatIsNoTextIsNoBundle();

    void removingFollowsNoLink();
    void removingNeedsNoWritableFolders();
};

void FileTreeTest::sizesAreCounted()
{
    const Folder folder;
    writeFile(folder / "a", QByteArray(10, 'x'));
    writeFile(folder / "inner/b", QByteArray(5, 'x'));
    makeLink(folder / "inner/c", "b");
    const TreeSize size = requireSelfContained(folder.path(), {}, Cancellation());
    QCOMPARE(size.bytes, 15);
    QCOMPARE(size.items, 4);
}

void FileTreeTest::linksMayNotLeaveTheTree_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<bool>("isAllowed");
    const auto row = [](const char *target, bool isAllowed) {
        QTest::newRow(target) << QByteArray(target) << isAllowed;
    };
    // The link stands two folders below the root.
    row("file", true);
    row("./file", true);
    row("missing", true);
    row("deeper/file", true);
    row("../../file", true);
    row("../..", true);
    row("../../../file", false);
    row("../../..", false);
    row("/", false);
    row("/etc/passwd", false);
    row("../inner/../../../file", false);
    row("deeper/../../../file", false);
    row("a/..", false);
    row("...", true);
}

void FileTreeTest::linksMayNotLeaveTheTree()
{
    QFETCH(QByteArray, target);
    QFETCH(bool, isAllowed);
    const Folder folder;
    makeLink(folder / "root/outer/inner/link", target);
    const auto expected =
        isAllowed ? std::nullopt
                  : extractionFailed(QStringLiteral("link is a link that leads out of the update"));
    QCOMPARE(refusalOf(folder / "root"), expected);
}

void FileTreeTest::aChainOfLinksCannotLeaveTheTree()
{
    const Folder folder;
    // By its text alone, "up/../x" stays inside; through the first link it would not.
    makeLink(folder / "root/a/b/up", "../..");
    makeLink(folder / "root/a/b/out", "up/../x");
    QVERIFY(refusalOf(folder / "root"));
}

void FileTreeTest::filesWithANameElsewhereAreRefused()
{
    const Folder folder;
    writeFile(folder / "outside", "x");
    QDir().mkpath(folder / "root");
    QCOMPARE(::link(QFile::encodeName(folder / "outside").constData(),
                    QFile::encodeName(folder / "root/inside").constData()),
             0);
    QCOMPARE(refusalOf(folder / "root"),
             extractionFailed(QStringLiteral("a file of it is also linked from elsewhere")));
}

void FileTreeTest::filesWithTwoNamesInsideAreAllowed()
{
    const Folder folder;
    writeFile(folder / "root/one", "x");
    QCOMPARE(::link(QFile::encodeName(folder / "root/one").constData(),
                    QFile::encodeName(folder / "root/two").constData()),
             0);
    QCOMPARE(refusalOf(folder / "root"), std::nullopt);
}

void FileTreeTest::whatIsNeitherFileNorFolderIsRefused()
{
    const Folder folder;
    QDir().mkpath(folder / "root");
    QCOMPARE(::mkfifo(QFile::encodeName(folder / "root/pipe").constData(), 0600), 0);
    QCOMPARE(refusalOf(folder / "root"),
             extractionFailed(QStringLiteral("pipe is neither a file nor a folder")));
}

void FileTreeTest::treesPastTheLimitsAreRefused()
{
    const Folder folder;
    writeFile(folder / "a", QByteArray(600, 'x'));
    writeFile(folder / "b", QByteArray(600, 'x'));
    InstallLimits limits;
    limits.unpackedBytes = 1200;
    limits.unpackedItems = 2;
    QCOMPARE(refusalOf(folder.path(), limits), std::nullopt);
    QCOMPARE(errorOf([&] { requireWithinLimits(folder.path(), limits); }), std::nullopt);
    limits.unpackedBytes = 1199;
    const auto tooLarge = extractionFailed(QStringLiteral("it unpacks to more than 1199 bytes or 2 files"));
    QCOMPARE(refusalOf(folder.path(), limits), tooLarge);
    QCOMPARE(errorOf([&] { requireWithinLimits(folder.path(), limits); }), tooLarge);
    limits.unpackedBytes = 1200;
    limits.unpackedItems = 1;
    const auto tooMany = extractionFailed(QStringLiteral("it unpacks to more than 1200 bytes or 1 files"));
    QCOMPARE(refusalOf(folder.path(), limits), tooMany);
    QCOMPARE(errorOf([&] { requireWithinLimits(folder.path(), limits); }), tooMany);
}

void FileTreeTest::aCancelledWalkEnds()
{
    const Folder folder;
    writeFile(folder / "a", "x");
    Cancellation cancellation;
    cancellation.cancel();
    QCOMPARE(errorOf([&] { requireSelfContained(folder.path(), {}, cancellation); }), cancelled());
}

void FileTreeTest::theFirstBundleIsFound_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QString>("bundle");
    const auto row = [](const char *name, const QStringList &entries, const char *bundle) {
        QTest::newRow(name) << entries << QString::fromUtf8(bundle);
    };
    row("at the top", {QStringLiteral("b/New.app/x")}, "b/New.app");
    row("nowhere", {QStringLiteral("b/x")}, "");
    row("two", {QStringLiteral("B.app/x"), QStringLiteral("A.app/x")}, "A.app");
    row("a higher one counts", {QStringLiteral("a/b/A.app/x"), QStringLiteral("z/Z.app/x")}, "z/Z.app");
    row("one inside another", {QStringLiteral("Z.app/A.app/x")}, "Z.app");
    row("a file", {QStringLiteral("A.app")}, "");
    row("a file before a folder", {QStringLiteral("A.app"), QStringLiteral("B.app/x")}, "B.app");
    row("a link", {QStringLiteral("link:A.app"), QStringLiteral("there/x")}, "");
    row("an extension alone", {QStringLiteral(".app/x")}, "");
    row("a hidden one", {QStringLiteral(".A.app/x")}, ".A.app");
    row("another case", {QStringLiteral("A.APP/x")}, "");
    row("more than the extension", {QStringLiteral("A.apps/x"), QStringLiteral("A.app.old/x")}, "");
}

void FileTreeTest::theFirstBundleIsFound()
{
    QFETCH(QStringList, entries);
    QFETCH(QString, bundle);
    const Folder folder;
    for (const QString &entry : std::as_const(entries)) {
        if (entry.startsWith(QLatin1String("link:"))) {
            makeLink(folder / entry.mid(5), "there");
        } else {
            writeFile(folder / entry, "x");
        }
    }
    QCOMPARE(findBundle(folder.path()), bundle.isEmpty() ? std::nullopt : std::optional(folder / bundle));
}

void FileTreeTest::aNameThatIsNoTextIsNoBundle()
{
    const Folder folder;
    const QByteArray name = QFile::encodeName(folder.path()) + "/\xff.app";
    if (::mkdir(name.constData(), 0700) != 0) {
        // Some file systems take no such name in the first place.
        QCOMPARE(errno, EILSEQ);
    }
    const auto found = findBundle(folder.path());
    ::rmdir(name.constData());
    QCOMPARE(found, std::nullopt);
}

void FileTreeTest::removingFollowsNoLink()
{
    const Folder folder;
    writeFile(folder / "outside/kept", "x");
    makeLink(folder / "root/link", "../outside");
    makeLink(folder / "link", "outside");
    removeTree(folder / "root");
    removeTree(folder / "link");
    removeTree(folder / "missing");
    QCOMPARE(namesIn(folder.path()), QStringList{QStringLiteral("outside")});
    QCOMPARE(namesIn(folder / "outside"), QStringList{QStringLiteral("kept")});
}

void FileTreeTest::removingNeedsNoWritableFolders()
{
    const Folder folder;
    writeFile(folder / "root/a/b/c", "x");
    QFile::setPermissions(folder / "root/a/b", QFile::Permissions());
    QFile::setPermissions(folder / "root/a", QFile::ReadOwner);
    QVERIFY(succeedsWithoutRights(folder.path(), [&folder] {
        removeTree(folder / "root");
        return namesIn(folder.path()).isEmpty();
    }));
}

QTEST_GUILESS_MAIN(FileTreeTest)
#include "FileTreeTest.moc"
