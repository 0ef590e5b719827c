#include "platform/StandardFolders.h"

#include <QDir>
#include <QScopeGuard>
#include <QTest>

#include <pwd.h>
#include <unistd.h>

using zorel::platform::expandTilde;
using zorel::platform::StandardFolders;

class StandardFoldersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersStandBelowTheHomeFolder();
    void homeFolderMayBeTheRootFolder();
    void currentFoldersAreThoseOfTheUser();
    void withoutHomeTheSystemsHomeFolderOfTheUserCounts();
    void leadingTildeIsExpanded_data();
    void leadingTildeIsExpanded();
    void nameOfAUserIsExpandedToThatUsersHome();
    void tildeInTheRootFolderGivesNoDoubleSlash();
};

void StandardFoldersTest::foldersStandBelowTheHomeFolder()
{
    const StandardFolders expected{QStringLiteral("/Users/ada"), QStringLiteral("/Users/ada/Documents"),
                                   QStringLiteral("/Users/ada/Library/Application Support"),
                                   QStringLiteral("/Users/ada/Library/Caches")};
    QVERIFY(StandardFolders::below(QStringLiteral("/Users/ada")) == expected);
}

void StandardFoldersTest::homeFolderMayBeTheRootFolder()
{
    const StandardFolders folders = StandardFolders::below(QStringLiteral("/"));
    QCOMPARE(folders.home, QStringLiteral("/"));
    QCOMPARE(folders.documents, QStringLiteral("/Documents"));
}

void StandardFoldersTest::currentFoldersAreThoseOfTheUser()
{
    QVERIFY(StandardFolders::current() == StandardFolders::below(QDir::homePath()));
    QVERIFY(QDir::isAbsolutePath(StandardFolders::current().documents));
}

void StandardFoldersTest::withoutHomeTheSystemsHomeFolderOfTheUserCounts()
{
    const passwd *const user = ::getpwuid(::getuid());
    QVERIFY(user != nullptr);
    const QByteArray home = qgetenv("HOME");
    const auto restored = qScopeGuard([&home] { qputenv("HOME", home); });
    qputenv("HOME", "");
    QCOMPARE(StandardFolders::current().home, QFile::decodeName(user->pw_dir));
    qunsetenv("HOME");
    QCOMPARE(StandardFolders::current().home, QFile::decodeName(user->pw_dir));
}

void StandardFoldersTest::leadingTildeIsExpanded_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expanded");
    const auto row = [](const char *name, const char *path, const char *expanded) {
        QTest::newRow(name) << QString::fromUtf8(path) << QString::fromUtf8(expanded);
    };
    row("alone", "~", "/Users/ada");
    row("with a slash", "~/", "/Users/ada/");
    row("with a path", "~/Documents/Zorel", "/Users/ada/Documents/Zorel");
    row("only the first", "~/~/x", "/Users/ada/~/x");
    row("empty", "", "");
    row("absolute", "/data", "/data");
    row("relative", "data", "data");
    row("inside", "/data/~/x", "/data/~/x");
    row("after a space", " ~/x", " ~/x");
    row("name of nobody", "~no such user/x", "~no such user/x");
    row("twice", "~~", "~~");
    row("trailing slashes stay", "/data//", "/data//");
}

void StandardFoldersTest::leadingTildeIsExpanded()
{
    QFETCH(QString, path);
    QTEST(expandTilde(path, QStringLiteral("/Users/ada")), "expanded");
}

void StandardFoldersTest::nameOfAUserIsExpandedToThatUsersHome()
{
    const passwd *const entry = ::getpwnam("root");
    QVERIFY(entry != nullptr);
    const QString home = QString::fromLocal8Bit(entry->pw_dir);
    QCOMPARE(expandTilde(QStringLiteral("~root"), QStringLiteral("/Users/ada")), home);
    QCOMPARE(expandTilde(QStringLiteral("~root/data"), QStringLiteral("/Users/ada")),
             home + QStringLiteral("/data"));
    const QString hidden = QStringLiteral("~root") + QChar(u'\0') + QStringLiteral("x/data");
    QCOMPARE(expandTilde(hidden, QStringLiteral("/Users/ada")), hidden);
}

void StandardFoldersTest::tildeInTheRootFolderGivesNoDoubleSlash()
{
    QCOMPARE(expandTilde(QStringLiteral("~"), QStringLiteral("/")), QStringLiteral("/"));
    QCOMPARE(expandTilde(QStringLiteral("~/data"), QStringLiteral("/")), QStringLiteral("/data"));
}

QTEST_GUILESS_MAIN(StandardFoldersTest)
#include "StandardFoldersTest.moc"
