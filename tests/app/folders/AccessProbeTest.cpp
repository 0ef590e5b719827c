#include "app/folders/AccessProbe.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using zorel::app::folders::probeAccess;

namespace {

/// Files of this process cannot grow while this exists, which is how a full disk looks to it.
class FullDisk
{
public:
    FullDisk()
    {
        m_formerHandler = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_former);
        rlimit none = m_former;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_former);
        std::signal(SIGXFSZ, m_formerHandler);
    }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    rlimit m_former = {};
    void (*m_formerHandler)(int) = SIG_DFL;
};

/// A superuser may do everything; while this exists, this process is not one.
class WithoutRights
{
public:
    WithoutRights()
        : m_former(::geteuid())
    {
        constexpr uid_t nobody = 65534;
        if (m_former == 0 && ::seteuid(nobody) != 0) {
            qFatal("The rights cannot be given up.");
        }
    }
    ~WithoutRights()
    {
        if (::seteuid(m_former) != 0) {
            qFatal("The rights are not given back.");
        }
    }
    Q_DISABLE_COPY_MOVE(WithoutRights)

private:
    uid_t m_former;
};

} // namespace

class AccessProbeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void folderThatDoesNotExistIsMadeWithItsParents();
    void nothingIsLeftBehindAfterSuccess();
    void whatIsInTheFolderStays();
    void unusableFolderIsRefused_data();
    void unusableFolderIsRefused();
    void folderThatOnlyOthersMayWriteIsRefused();
    void folderBelowOneThatOnlyOthersMayWriteIsRefused();
    void folderOnAFullDiskIsRefusedAndNothingIsDeleted();
    void folderInWhichTheProbeCannotBeReplacedIsRefusedAndNothingIsDeleted();
    void leftoverOfAKilledProcessIsReplacedAndRemoved();
    void linkInTheProbesPlaceIsNotFollowed();
    void folderWithAnUnusualNameIsUsable_data();
    void folderWithAnUnusualNameIsUsable();
    void linkToAFolderIsUsable();

private:
    QString below(const QString &relative) const { return m_root->filePath(relative); }
    /// Everything in the folder, hidden or not.
    static QStringList entriesOf(const QString &folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    static void write(const QString &path, const QByteArray &contents)
    {
        QFile file(path);
        QVERIFY(file.open(QFile::WriteOnly));
        QCOMPARE(file.write(contents), contents.size());
    }
    static QByteArray contentsOf(const QString &path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    std::unique_ptr<QTemporaryDir> m_root;
};

void AccessProbeTest::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    QVERIFY(m_root->isValid());
}

void AccessProbeTest::folderThatDoesNotExistIsMadeWithItsParents()
{
    QVERIFY(probeAccess(below(QStringLiteral("Documents/Zorel/Training Data"))));
    QVERIFY(QFileInfo(below(QStringLiteral("Documents/Zorel/Training Data"))).isDir());
}

void AccessProbeTest::nothingIsLeftBehindAfterSuccess()
{
    QVERIFY(probeAccess(m_root->path()));
    QCOMPARE(entriesOf(m_root->path()), QStringList());
}

void AccessProbeTest::whatIsInTheFolderStays()
{
    write(below(QStringLiteral("corpus.txt")), "words");
    QVERIFY(probeAccess(m_root->path()));
    QCOMPARE(entriesOf(m_root->path()), QStringList(QStringLiteral("corpus.txt")));
    QCOMPARE(contentsOf(below(QStringLiteral("corpus.txt"))), QByteArray("words"));
}

void AccessProbeTest::unusableFolderIsRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << QString();
    QTest::newRow("a file") << QStringLiteral("ROOT/file");
    QTest::newRow("below a file") << QStringLiteral("ROOT/file/folder");
    QTest::newRow("a dangling link") << QStringLiteral("ROOT/dangling");
    QTest::newRow("a link to itself") << QStringLiteral("ROOT/loop");
    QTest::newRow("a name of 4,000 characters") << QStringLiteral("ROOT/") + QString(4000, u'x');
    QTest::newRow("a path of 8,000 characters")
        << QStringLiteral("ROOT/") + QStringLiteral("folder/").repeated(1143);
    QTest::newRow("a NUL") << QStringLiteral("ROOT/nul") + QChar(u'\0') + QStringLiteral("folder");
    QTest::newRow("cannot be made by anybody") << QStringLiteral("/dev/null/folder");
}

void AccessProbeTest::unusableFolderIsRefused()
{
    QFETCH(QString, path);
    write(below(QStringLiteral("file")), "kept");
    QVERIFY(QFile::link(QStringLiteral("nowhere"), below(QStringLiteral("dangling"))));
    QVERIFY(QFile::link(QStringLiteral("loop"), below(QStringLiteral("loop"))));
    const QStringList before = entriesOf(m_root->path());

    QVERIFY(!probeAccess(path.replace(QLatin1String("ROOT"), m_root->path())));

    const QStringList remaining = entriesOf(m_root->path());
    for (const QString &entry : before) {
        QVERIFY2(remaining.contains(entry), qPrintable(entry));
    }
    QVERIFY(!remaining.contains(QStringLiteral("nowhere")));
    QVERIFY(!remaining.contains(QStringLiteral("nul")));
    QCOMPARE(contentsOf(below(QStringLiteral("file"))), QByteArray("kept"));
}

void AccessProbeTest::folderThatOnlyOthersMayWriteIsRefused()
{
    QVERIFY(::chmod(QFile::encodeName(m_root->path()).constData(), 0555) == 0);
    {
        const WithoutRights nobody;
        QVERIFY(!probeAccess(m_root->path()));
    }
    QCOMPARE(entriesOf(m_root->path()), QStringList());
    QVERIFY(::chmod(QFile::encodeName(m_root->path()).constData(), 0777) == 0);
    const WithoutRights nobody;
    QVERIFY(probeAccess(m_root->path()));
}

void AccessProbeTest::folderBelowOneThatOnlyOthersMayWriteIsRefused()
{
    QVERIFY(::chmod(QFile::encodeName(m_root->path()).constData(), 0555) == 0);
    const WithoutRights nobody;
    QVERIFY(!probeAccess(below(QStringLiteral("folder"))));
}

void AccessProbeTest::folderOnAFullDiskIsRefusedAndNothingIsDeleted()
{
    const QString probe = QStringLiteral(".talvex-access-probe");
    write(below(probe), "earlier");
    {
        const FullDisk disk;
        QVERIFY(!probeAccess(m_root->path()));
    }
    QCOMPARE(entriesOf(m_root->path()), QStringList(probe));
    QCOMPARE(contentsOf(below(probe)), QByteArray("earlier"));
}

void AccessProbeTest::folderInWhichTheProbeCannotBeReplacedIsRefusedAndNothingIsDeleted()
{
    const QString probe = QStringLiteral(".talvex-access-probe");
    QVERIFY(QDir(m_root->path()).mkdir(probe));
    QVERIFY(!probeAccess(m_root->path()));
    QCOMPARE(entriesOf(m_root->path()), QStringList(probe));
    QVERIFY(QFileInfo(below(probe)).isDir());
}

void AccessProbeTest::leftoverOfAKilledProcessIsReplacedAndRemoved()
{
    const QString probe = below(QStringLiteral(".talvex-access-probe"));
    write(probe, "o");
    QVERIFY(QFile::setPermissions(probe, QFile::ReadOwner));
    QVERIFY(probeAccess(m_root->path()));
    QCOMPARE(entriesOf(m_root->path()), QStringList());
}

void AccessProbeTest::linkInTheProbesPlaceIsNotFollowed()
{
    const QString folder = below(QStringLiteral("folder"));
    QVERIFY(QDir().mkpath(folder));
    write(below(QStringLiteral("precious")), "kept");
    QVERIFY(QFile::link(below(QStringLiteral("precious")), folder + QStringLiteral("/.talvex-access-probe")));
    QVERIFY(probeAccess(folder));
    QCOMPARE(entriesOf(folder), QStringList());
    QCOMPARE(contentsOf(below(QStringLiteral("precious"))), QByteArray("kept"));
}

void AccessProbeTest::folderWithAnUnusualNameIsUsable_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("not Latin") << QStringLiteral("данные/学習/📚");
    QTest::newRow("a line break") << QStringLiteral("two\nlines");
    QTest::newRow("quotes") << QStringLiteral("it's \"mine\"");
    QTest::newRow("a shell's words") << QStringLiteral("$(touch x); `ls` *");
    QTest::newRow("the letters of a pattern") << QStringLiteral("XXXXXX.XXXXXX");
    QTest::newRow("spaces at the ends") << QStringLiteral(" spaced ");
    QTest::newRow("a path of 2,000 characters")
        << QStringLiteral("folder").append(QStringLiteral("/folder").repeated(285));
}

void AccessProbeTest::folderWithAnUnusualNameIsUsable()
{
    QFETCH(QString, name);
    QVERIFY(probeAccess(below(name)));
    QVERIFY(QFileInfo(below(name)).isDir());
    QCOMPARE(entriesOf(below(name)), QStringList());
}

void AccessProbeTest::linkToAFolderIsUsable()
{
    QVERIFY(QDir(m_root->path()).mkdir(QStringLiteral("folder")));
    QVERIFY(QFile::link(QStringLiteral("folder"), below(QStringLiteral("link"))));
    QVERIFY(probeAccess(below(QStringLiteral("link"))));
    QVERIFY(QFileInfo(below(QStringLiteral("link"))).isSymLink());
}

QTEST_GUILESS_MAIN(AccessProbeTest)
#include "AccessProbeTest.moc"
