#include "platform/Workspace.h"
#include "tests/support/FakeTools.h"

#include <QFileInfo>
#include <QTest>

using zorel::platform::Workspace;
using zorel::tests::FakeTools;

namespace {

/// Milliseconds that another process is given on a loaded machine.
constexpr int patience = 60'000;

} // namespace

/// Which of the desktop's tools are run, and how.
class WorkspaceToolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void fileManagerIsAskedToSelectTheItem_data();
    void fileManagerIsAskedToSelectTheItem();
    void folderIsOpenedWhereNoFileManagerAnswers_data();
    void folderIsOpenedWhereNoFileManagerAnswers();
    void nobodyAsksABusThatIsNotThere();
    void missingFolderIsNotMade();
    void emptyPathShowsNothing();
    void missingToolsAreNoConcern();
    void pageIsOpened();
    void pageIsNotOpenedWithoutATool();

private:
    /// The tool's arguments, one a line; its file appears whole.
    static constexpr char record[] = "printf '%s\\n' \"$@\" > \"$HERE/unfinished.$$\"\n"
                                     "/bin/mv \"$HERE/unfinished.$$\" \"$HERE/arguments of ${0##*/}\"\n";
    QStringList argumentsOf(const QString &tool) const
    {
        const QByteArray text = m_tools->written(QStringLiteral("arguments of ") + tool);
        return text.isNull() ? QStringList() : QString::fromUtf8(text).chopped(1).split(u'\n');
    }

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_formerAddress;
};

void WorkspaceToolsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_formerAddress = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    m_tools = std::make_unique<FakeTools>();
}

void WorkspaceToolsTest::cleanup()
{
    m_tools.reset();
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_formerAddress);
}

void WorkspaceToolsTest::fileManagerIsAskedToSelectTheItem_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("encoded");
    QTest::newRow("plain") << QStringLiteral("2026-06-01_21-44-12") << QStringLiteral("2026-06-01_21-44-12");
    QTest::newRow("space") << QStringLiteral("Finished models") << QStringLiteral("Finished%20models");
    QTest::newRow("comma") << QStringLiteral("a,b") << QStringLiteral("a%2Cb");
    QTest::newRow("percent") << QStringLiteral("100%41") << QStringLiteral("100%2541");
    QTest::newRow("quotes") << QStringLiteral("it's \"mine\"") << QStringLiteral("it%27s%20%22mine%22");
    QTest::newRow("a shell's words") << QStringLiteral("$(touch x);`ls`")
                                     << QStringLiteral("%24%28touch%20x%29%3B%60ls%60");
    QTest::newRow("a line break") << QStringLiteral("two\nlines") << QStringLiteral("two%0Alines");
    QTest::newRow("not Latin") << QStringLiteral("é学") << QStringLiteral("%C3%A9%E5%AD%A6");
}

void WorkspaceToolsTest::fileManagerIsAskedToSelectTheItem()
{
    QFETCH(QString, name);
    QFETCH(QString, encoded);
    m_tools->add(QStringLiteral("dbus-send"), record);
    m_tools->add(QStringLiteral("xdg-open"), record);
    QVERIFY(QDir(m_folder->path()).mkdir(name));
    Workspace::system().reveal(m_folder->filePath(name));
    QTRY_VERIFY_WITH_TIMEOUT(!argumentsOf(QStringLiteral("dbus-send")).isEmpty(), patience);
    const QStringList arguments = argumentsOf(QStringLiteral("dbus-send"));
    QVERIFY(arguments.contains(QStringLiteral("--dest=org.freedesktop.FileManager1")));
    QVERIFY(arguments.contains(QStringLiteral("org.freedesktop.FileManager1.ShowItems")));
    QVERIFY2(arguments.contains(QStringLiteral("array:string:file://") + m_folder->path() + u'/' + encoded),
             qPrintable(arguments.join(u'\n')));
    QVERIFY(argumentsOf(QStringLiteral("xdg-open")).isEmpty());
}

void WorkspaceToolsTest::folderIsOpenedWhereNoFileManagerAnswers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("opened");
    QTest::newRow("a folder") << QStringLiteral("folder") << QStringLiteral("folder");
    QTest::newRow("a file") << QStringLiteral("folder/file") << QStringLiteral("folder");
    QTest::newRow("nothing") << QStringLiteral("folder/nothing/at all") << QStringLiteral("folder");
    QTest::newRow("quotes") << QStringLiteral("it's $(mine)") << QStringLiteral("it's $(mine)");
}

void WorkspaceToolsTest::folderIsOpenedWhereNoFileManagerAnswers()
{
    QFETCH(QString, name);
    QFETCH(QString, opened);
    m_tools->add(QStringLiteral("dbus-send"), "exit 1");
    m_tools->add(QStringLiteral("xdg-open"), record);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("it's $(mine)")));
    QFile file(m_folder->filePath(QStringLiteral("folder/file")));
    QVERIFY(file.open(QFile::WriteOnly));
    Workspace::system().reveal(m_folder->filePath(name));
    QTRY_COMPARE_WITH_TIMEOUT(argumentsOf(QStringLiteral("xdg-open")),
                              QStringList(m_folder->filePath(opened)), patience);
}

void WorkspaceToolsTest::nobodyAsksABusThatIsNotThere()
{
    // Asking would start a bus that nobody ends.
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray formerRuntimeFolder = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", "/nowhere");
    m_tools->add(QStringLiteral("dbus-send"), record);
    m_tools->add(QStringLiteral("xdg-open"), record);
    Workspace::system().reveal(m_folder->path());
    qputenv("XDG_RUNTIME_DIR", formerRuntimeFolder);
    QTRY_COMPARE_WITH_TIMEOUT(argumentsOf(QStringLiteral("xdg-open")), QStringList(m_folder->path()),
                              patience);
    QVERIFY(argumentsOf(QStringLiteral("dbus-send")).isEmpty());
}

void WorkspaceToolsTest::missingFolderIsNotMade()
{
    m_tools->add(QStringLiteral("dbus-send"), "exit 1");
    m_tools->add(QStringLiteral("xdg-open"), record);
    Workspace::system().reveal(m_folder->filePath(QStringLiteral("missing")));
    QTRY_COMPARE_WITH_TIMEOUT(argumentsOf(QStringLiteral("xdg-open")), QStringList(m_folder->path()),
                              patience);
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void WorkspaceToolsTest::emptyPathShowsNothing()
{
    m_tools->add(QStringLiteral("dbus-send"), record);
    m_tools->add(QStringLiteral("xdg-open"), record);
    Workspace::system().reveal(QString());
    Workspace::system().reveal(m_folder->path());
    QTRY_VERIFY_WITH_TIMEOUT(!argumentsOf(QStringLiteral("dbus-send")).isEmpty(), patience);
    QVERIFY(argumentsOf(QStringLiteral("dbus-send"))
                .contains(QStringLiteral("array:string:file://") + m_folder->path()));
}

void WorkspaceToolsTest::missingToolsAreNoConcern()
{
    Workspace::system().reveal(m_folder->path());
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void WorkspaceToolsTest::pageIsOpened()
{
    m_tools->add(QStringLiteral("xdg-open"), record);
    QVERIFY(Workspace::system().openUrl(QUrl(QStringLiteral("https://example.com/a b?c=d#e"))));
    QTRY_COMPARE_WITH_TIMEOUT(argumentsOf(QStringLiteral("xdg-open")),
                              QStringList(QStringLiteral("https://example.com/a%20b?c=d#e")), patience);
}

void WorkspaceToolsTest::pageIsNotOpenedWithoutATool()
{
    QVERIFY(!Workspace::system().openUrl(QUrl(QStringLiteral("https://example.com/"))));
}

QTEST_GUILESS_MAIN(WorkspaceToolsTest)
#include "WorkspaceToolsTest.moc"
