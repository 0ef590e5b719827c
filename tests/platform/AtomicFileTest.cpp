#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using zorel::platform::keepAside;
using zorel::platform::replaceFile;

class AtomicFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void newFileIsTheUsersOwn();
    void oldPermissionsStay();
    void linkStaysALink_data();
    void linkStaysALink();
    void otherHoldersOfTheOldFileKeepIt();
    void leftoverOfAKilledProcessIsReplaced();
    void linkInPlaceOfTheLeftoverIsNotFollowed();
    void whatIsNoFileStays_data();
    void whatIsNoFileStays();
    void missingFolderIsAFailure();
    void keptFilesHaveNamesOfTheirOwn();
    void keepingAFileTwiceKeepsItOnce();
    void nothingToKeepIsAFailure();

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }
    QStringList names() const
    {
        return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    }
    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QFile::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void AtomicFileTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void AtomicFileTest::newFileIsTheUsersOwn()
{
    QVERIFY(replaceFile(path("file"), "contents"));
    QCOMPARE(contents(path("file")), QByteArray("contents"));
    QCOMPARE(QFile::permissions(path("file")) & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteOther),
             QFile::Permissions());
    QCOMPARE(names(), QStringList{QStringLiteral("file")});
}

void AtomicFileTest::oldPermissionsStay()
{
    write(path("file"), "old");
    QVERIFY(QFile::setPermissions(path("file"), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    const QFile::Permissions before = QFile::permissions(path("file"));
    QVERIFY(replaceFile(path("file"), "new"));
    QCOMPARE(QFile::permissions(path("file")), before);
}

void AtomicFileTest::linkStaysALink_data()
{
    QTest::addColumn<bool>("dangling");
    QTest::newRow("to a file") << false;
    QTest::newRow("to nothing yet") << true;
}

void AtomicFileTest::linkStaysALink()
{
    QFETCH(bool, dangling);
    QVERIFY(QDir().mkdir(path("elsewhere")));
    if (!dangling) {
        write(path("elsewhere/file"), "old");
    }
    QVERIFY(QFile::link(QStringLiteral("elsewhere/file"), path("file")));
    QVERIFY(replaceFile(path("file"), "new"));
    QVERIFY(QFileInfo(path("file")).isSymLink());
    QCOMPARE(contents(path("elsewhere/file")), QByteArray("new"));
}

void AtomicFileTest::otherHoldersOfTheOldFileKeepIt()
{
    write(path("file"), "old");
    QFile holder(path("file"));
    QVERIFY(holder.open(QFile::ReadOnly));
    QVERIFY(replaceFile(path("file"), "new"));
    QCOMPARE(holder.readAll(), QByteArray("old"));
}

void AtomicFileTest::leftoverOfAKilledProcessIsReplaced()
{
    write(path("file"), "old");
    write(path("file.new"), "a longer half of something");
    QVERIFY(replaceFile(path("file"), "new"));
    QCOMPARE(contents(path("file")), QByteArray("new"));
    QCOMPARE(names(), QStringList{QStringLiteral("file")});
}

void AtomicFileTest::linkInPlaceOfTheLeftoverIsNotFollowed()
{
    write(path("precious"), "precious");
    QVERIFY(QFile::link(path("precious"), path("file.new")));
    replaceFile(path("file"), "new");
    QCOMPARE(contents(path("precious")), QByteArray("precious"));
}

void AtomicFileTest::whatIsNoFileStays_data()
{
    QTest::addColumn<bool>("pipe");
    QTest::newRow("folder") << false;
    QTest::newRow("named pipe") << true;
}

void AtomicFileTest::whatIsNoFileStays()
{
    QFETCH(bool, pipe);
    const QByteArray name = QFile::encodeName(path("file"));
    QCOMPARE(pipe ? ::mkfifo(name.constData(), 0600) : ::mkdir(name.constData(), 0700), 0);
    QVERIFY(!replaceFile(path("file"), "new"));
    QVERIFY(!QFileInfo(path("file")).isFile());
    QCOMPARE(names(), QStringList{QStringLiteral("file")});
}

void AtomicFileTest::missingFolderIsAFailure()
{
    QVERIFY(!replaceFile(path("no/such/file"), "new"));
}

void AtomicFileTest::keptFilesHaveNamesOfTheirOwn()
{
    write(path("file"), "first");
    QVERIFY(keepAside(path("file")));
    QVERIFY(replaceFile(path("file"), "second"));
    QVERIFY(keepAside(path("file")));
    QVERIFY(replaceFile(path("file"), "third"));
    QCOMPARE(contents(path("file.damaged")), QByteArray("first"));
    QCOMPARE(contents(path("file.damaged-2")), QByteArray("second"));
    QCOMPARE(contents(path("file")), QByteArray("third"));
}

void AtomicFileTest::keepingAFileTwiceKeepsItOnce()
{
    write(path("file"), "first");
    QVERIFY(keepAside(path("file")));
    QVERIFY(keepAside(path("file")));
    QCOMPARE(names(), QStringList({QStringLiteral("file"), QStringLiteral("file.damaged")}));
}

void AtomicFileTest::nothingToKeepIsAFailure()
{
    QVERIFY(!keepAside(path("file")));
}

QTEST_GUILESS_MAIN(AtomicFileTest)
#include "AtomicFileTest.moc"
