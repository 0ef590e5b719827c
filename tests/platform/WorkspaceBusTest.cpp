#include "platform/Workspace.h"

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using zorel::platform::Workspace;

namespace {

/// Milliseconds that another process is given on a loaded machine.
constexpr int patience = 60'000;

} // namespace

/// A file manager on the session bus that notes what it is asked to show.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList &addresses, const QString &)
    {
        for (const QString &address : addresses) {
            shown.append(QUrl(address).toLocalFile());
        }
    }
};

/// Against a real session bus of this test's own.
class WorkspaceBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileManagerOnTheBusShowsTheItem_data();
    void fileManagerOnTheBusShowsTheItem();
    void cleanupTestCase();

private:
    QProcess m_bus;
    FileManager m_fileManager;
};

void WorkspaceBusTest::initTestCase()
{
    m_bus.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                QStringLiteral("--print-address=1")});
    QVERIFY2(m_bus.waitForStarted(), "dbus-daemon is missing; ./test installs it");
    QTRY_VERIFY_WITH_TIMEOUT(m_bus.canReadLine(), patience);
    const QByteArray address = m_bus.readLine().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);

    QDBusConnection connection =
        QDBusConnection::connectToBus(QString::fromLatin1(address), QStringLiteral("file manager"));
    QVERIFY(connection.isConnected());
    QVERIFY(connection.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    QVERIFY(connection.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &m_fileManager,
                                      QDBusConnection::ExportAllSlots));
}

void WorkspaceBusTest::fileManagerOnTheBusShowsTheItem_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("2026-06-01_21-44-12");
    QTest::newRow("commas, colons and spaces") << QStringLiteral("a, b: c");
    QTest::newRow("percent and hash") << QStringLiteral("100% #1?");
    QTest::newRow("quotes") << QStringLiteral("it's \"mine\" $(not)");
    QTest::newRow("a line break") << QStringLiteral("two\nlines");
    QTest::newRow("not Latin") << QStringLiteral("данные 学習 📚");
}

void WorkspaceBusTest::fileManagerOnTheBusShowsTheItem()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(name));
    m_fileManager.shown.clear();
    Workspace::system().reveal(folder.filePath(name));
    QTRY_COMPARE_WITH_TIMEOUT(m_fileManager.shown, QStringList(folder.filePath(name)), patience);
}

void WorkspaceBusTest::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(QStringLiteral("file manager"));
    m_bus.kill();
    m_bus.waitForFinished();
}

QTEST_GUILESS_MAIN(WorkspaceBusTest)
#include "WorkspaceBusTest.moc"
