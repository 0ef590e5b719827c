#include "tests/platform/FileUserDefaultsFixture.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>

using zorel::platform::FileUserDefaults;

namespace {

const QString name = QStringLiteral("zorel.modelName");
const QString version = QStringLiteral("zorel.modelVersion");
const QString description = QStringLiteral("zorel.modelDescription");

} // namespace

class FileUserDefaultsProcessTest : public zorel::tests::FileUserDefaultsFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeFolder(); }
    void fullDiskLeavesTheOldFileWholeAndTheSessionGoesOn();
    void placeWithoutRightsLeavesTheOldFileAndTheSessionGoesOn_data();
    void placeWithoutRightsLeavesTheOldFileAndTheSessionGoesOn();
    void killedWriterLeavesOldOrNewValues();
    void twoInstancesKeepEachOthersValues();

private:
    static void runToSuccess(const QStringList &arguments)
    {
        QProcess probe;
        probe.start(QStringLiteral(ZOREL_PLATFORM_PROBE), arguments);
        QVERIFY(probe.waitForFinished());
        QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
        QVERIFY2(probe.exitCode() == 0, probe.readAllStandardError().constData());
    }
};

void FileUserDefaultsProcessTest::fullDiskLeavesTheOldFileWholeAndTheSessionGoesOn()
{
    store(R"({"zorel.modelName": "Old", "zorel.modelDescription": "Old too"})");
    runToSuccess({QStringLiteral("beyond-limit"), m_file});
}

void FileUserDefaultsProcessTest::placeWithoutRightsLeavesTheOldFileAndTheSessionGoesOn_data()
{
    QTest::addColumn<QFile::Permissions>("file");
    QTest::addColumn<QFile::Permissions>("folder");
    const QFile::Permissions read = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    const QFile::Permissions enter = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
    const QFile::Permissions write = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    QTest::newRow("folder not writable") << (read | write) << (read | enter);
    QTest::newRow("file not writable") << read << (read | enter | write);
    QTest::newRow("file not readable") << QFile::Permissions(write) << (read | enter | write);
}

void FileUserDefaultsProcessTest::placeWithoutRightsLeavesTheOldFileAndTheSessionGoesOn()
{
    QFETCH(QFile::Permissions, file);
    QFETCH(QFile::Permissions, folder);
    const QByteArray before = R"({"zorel.modelName": "Old"})";
    store(before);
    QVERIFY(QFile::setPermissions(m_file, file));
    QVERIFY(QFile::setPermissions(m_folder->path(), folder));
    runToSuccess({QStringLiteral("without-rights"), m_file});
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(QFile::setPermissions(m_file, QFile::ReadOwner | QFile::WriteOwner));
    QFile kept(m_file);
    QVERIFY(kept.open(QFile::ReadOnly));
    QCOMPARE(kept.readAll(), before);
}

void FileUserDefaultsProcessTest::killedWriterLeavesOldOrNewValues()
{
    QRandomGenerator random(20'26);
    for (int round = 0; round < 30; ++round) {
        QProcess probe;
        probe.start(QStringLiteral(ZOREL_PLATFORM_PROBE), {QStringLiteral("count-forever"), m_file});
        int announced = 0;
        // The writer never waits for us, so each further line moves the kill to another point of a write.
        for (int lines = random.bounded(1, 6); lines > 0;) {
            QVERIFY(probe.waitForReadyRead());
            for (; probe.canReadLine(); --lines) {
                announced = probe.readLine().trimmed().toInt();
            }
        }
        probe.kill();
        QVERIFY(probe.waitForFinished());
        if (QFile::exists(m_file + QStringLiteral(".new"))) {
            while (probe.canReadLine()) {
                announced = probe.readLine().trimmed().toInt();
            }
        }

        QVERIFY(isWhole());
        const FileUserDefaults defaults(m_file);
        const QString number = defaults.string(name).value_or(QString());
        QVERIFY2(number.toInt() == announced || number.toInt() == announced + 1, qPrintable(number));
        QCOMPARE(defaults.string(version), number);
        QCOMPARE(defaults.string(description), (number + u' ').repeated(20'000));
    }
    const QStringList left = QDir(m_folder->path()).entryList({QStringLiteral("*.damaged*")});
    QCOMPARE(left, QStringList());
}

void FileUserDefaultsProcessTest::twoInstancesKeepEachOthersValues()
{
    constexpr int last = 150;
    const QJsonObject later{{QStringLiteral("list"), QStringLiteral("of a later version")}};
    store(QJsonDocument(QJsonObject{{QStringLiteral("later"), later}}).toJson());

    QProcess probes[2];
    const QString keys[] = {QStringLiteral("first"), QStringLiteral("second")};
    int finished = 0;
    int unreadable = 0;
    for (int index = 0; index < 2; ++index) {
        QProcess &probe = probes[index];
        connect(&probe, &QProcess::finished, this, [&finished] { ++finished; });
        connect(&probe, &QProcess::readyReadStandardOutput, this, [this, &probe, &unreadable] {
            probe.readAllStandardOutput();
            unreadable += isWhole() ? 0 : 1;
        });
        probe.start(QStringLiteral(ZOREL_PLATFORM_PROBE),
                    {QStringLiteral("count"), m_file, keys[index], QString::number(last)});
    }
    QTRY_COMPARE_WITH_TIMEOUT(finished, 2, 60'000);
    QCOMPARE(unreadable, 0);
    const QString number = QString::number(last);
    QCOMPARE(stored(), QJsonObject({{QStringLiteral("later"), later}, {keys[0], number}, {keys[1], number}}));
}

QTEST_GUILESS_MAIN(FileUserDefaultsProcessTest)
#include "FileUserDefaultsProcessTest.moc"
