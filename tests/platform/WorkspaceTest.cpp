#include "platform/Workspace.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace zorel::platform;

class WorkspaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nearestThingIsShown_data();
    void nearestThingIsShown();
    void relativePathCountsFromTheWorkingFolder();
    void addressIsAPageOrAMail_data();
    void addressIsAPageOrAMail();
    void strangeAddressIsNotOpened();
};

void WorkspaceTest::nearestThingIsShown_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("shown");
    const QString root = QStringLiteral("ROOT");
    QTest::newRow("a folder") << root + QStringLiteral("/a/b") << root + QStringLiteral("/a/b");
    QTest::newRow("with a slash") << root + QStringLiteral("/a/b/") << root + QStringLiteral("/a/b");
    QTest::newRow("a file") << root + QStringLiteral("/a/file") << root + QStringLiteral("/a/file");
    QTest::newRow("not there") << root + QStringLiteral("/a/x") << root + QStringLiteral("/a");
    QTest::newRow("nor are its parents") << root + QStringLiteral("/a/x/y/z") << root + QStringLiteral("/a");
    QTest::newRow("below a file") << root + QStringLiteral("/a/file/x") << root + QStringLiteral("/a/file");
    QTest::newRow("a dangling link") << root + QStringLiteral("/dangling")
                                     << root + QStringLiteral("/dangling");
    QTest::newRow("a name of 10,000 characters")
        << root + QStringLiteral("/a/") + QString(10'000, u'x') << root + QStringLiteral("/a");
    QTest::newRow("the root folder") << QStringLiteral("/") << QStringLiteral("/");
    QTest::newRow("nothing of it is there") << QStringLiteral("/no-such/folder") << QStringLiteral("/");
}

void WorkspaceTest::nearestThingIsShown()
{
    QFETCH(QString, path);
    QFETCH(QString, shown);
    const QTemporaryDir folder;
    QVERIFY(QDir().mkpath(folder.filePath(QStringLiteral("a/b"))));
    QFile file(folder.filePath(QStringLiteral("a/file")));
    QVERIFY(file.open(QFile::WriteOnly));
    QVERIFY(QFile::link(QStringLiteral("nowhere"), folder.filePath(QStringLiteral("dangling"))));
    const QStringList before = QDir(folder.path()).entryList(QDir::AllEntries | QDir::System);

    QCOMPARE(nearestExisting(path.replace(QLatin1String("ROOT"), folder.path())),
             shown.replace(QLatin1String("ROOT"), folder.path()));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::System), before);
}

void WorkspaceTest::relativePathCountsFromTheWorkingFolder()
{
    QCOMPARE(nearestExisting(QStringLiteral("no-such-folder")), QDir::currentPath());
}

void WorkspaceTest::addressIsAPageOrAMail_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("expected");
    QTest::newRow("https") << QStringLiteral("https://example.com/a?b#c") << true;
    QTest::newRow("http") << QStringLiteral("http://127.0.0.1:8080/") << true;
    QTest::newRow("other letter case") << QStringLiteral("HTTPS://example.com") << true;
    QTest::newRow("mail") << QStringLiteral("mailto:help@example.com") << true;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("a path") << QStringLiteral("/usr/bin/sh") << false;
    QTest::newRow("a file") << QStringLiteral("file:///usr/bin/sh") << false;
    QTest::newRow("no host") << QStringLiteral("https:///page") << false;
    QTest::newRow("a script") << QStringLiteral("javascript:alert(1)") << false;
    QTest::newRow("another program's") << QStringLiteral("x-other:do") << false;
    QTest::newRow("an option") << QStringLiteral("--help") << false;
    QTest::newRow("invalid") << QStringLiteral("https://exa mple.com:port/") << false;
}

void WorkspaceTest::addressIsAPageOrAMail()
{
    QFETCH(QString, address);
    QTEST(isPageOrMail(QUrl(address)), "expected");
}

void WorkspaceTest::strangeAddressIsNotOpened()
{
    const Workspace workspace = Workspace::system();
    QVERIFY(!workspace.openUrl(QUrl(QStringLiteral("file:///usr/bin/sh"))));
    QVERIFY(!workspace.openUrl(QUrl()));
}

QTEST_GUILESS_MAIN(WorkspaceTest)
#include "WorkspaceTest.moc"
