#include "platform/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

#include <array>
#include <thread>
#include <vector>

using zorel::platform::makeStandardUserDefaults;
using zorel::platform::standardUserDefaults;
using zorel::platform::UserDefaults;

class StandardUserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processSharesOneStore();
    void valueSetJustBeforeTheProcessReturnsIsPersisted();
    void configurationFolderIsTheOneOfTheEnvironment_data();
    void configurationFolderIsTheOneOfTheEnvironment();
};

void StandardUserDefaultsTest::processSharesOneStore()
{
    std::array<UserDefaults *, 8> stores{};
    std::vector<std::thread> threads;
    for (UserDefaults *&store : stores) {
        threads.emplace_back([&store] { store = &standardUserDefaults(); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (const UserDefaults *const store : stores) {
        QCOMPARE(store, &standardUserDefaults());
    }
}

void StandardUserDefaultsTest::valueSetJustBeforeTheProcessReturnsIsPersisted()
{
    // Of this run: the test's home folder outlives it.
    const QString value = QUuid::createUuid().toString();
    QProcess probe;
    probe.start(QStringLiteral(ZOREL_PLATFORM_PROBE), {QStringLiteral("save-and-return"), value});
    QVERIFY(probe.waitForFinished());
    QCOMPARE(probe.exitCode(), 0);
    QCOMPARE(makeStandardUserDefaults()->string(QStringLiteral("zorel.modelName")), value);
}

void StandardUserDefaultsTest::configurationFolderIsTheOneOfTheEnvironment_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("expected");
    QTest::newRow("given") << QStringLiteral("HOME/given") << QStringLiteral("given");
    QTest::newRow("not given") << QString() << QStringLiteral(".config");
    QTest::newRow("relative, which does not count")
        << QStringLiteral("some/where") << QStringLiteral(".config");
}

void StandardUserDefaultsTest::configurationFolderIsTheOneOfTheEnvironment()
{
    QFETCH(QString, variable);
    QFETCH(QString, expected);
    QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                       variable.replace(QLatin1String("HOME"), home.path()));
    QProcess probe;
    probe.setProcessEnvironment(environment);
    probe.setWorkingDirectory(home.path());
    probe.start(QStringLiteral(ZOREL_PLATFORM_PROBE),
                {QStringLiteral("save-and-return"), QStringLiteral("Poet")});
    QVERIFY(probe.waitForFinished());
    QVERIFY(QFile::exists(home.filePath(expected + QStringLiteral("/Talvex/zorel.json"))));
    QCOMPARE(QDir(home.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{expected});
}

QTEST_GUILESS_MAIN(StandardUserDefaultsTest)
#include "StandardUserDefaultsTest.moc"
