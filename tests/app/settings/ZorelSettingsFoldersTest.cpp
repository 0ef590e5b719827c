#include "app/settings/ZorelSettings.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using zorel::app::settings::ZorelSettings;
using zorel::platform::StandardFolders;
using zorel::tests::InMemoryUserDefaults;

class ZorelSettingsFoldersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void createsTheThreeDefaultFoldersWithTheirParents();
    void existingFoldersAndWhatIsInThemStay();
    void storedTildeStaysStoredAndTheFolderStandsInTheHomeFolder();
    void oneImpossibleFolderDoesNotKeepTheOthersFromBeingMade_data();
    void oneImpossibleFolderDoesNotKeepTheOthersFromBeingMade();
    void foldersWithUnusualNamesAreMade_data();
    void foldersWithUnusualNamesAreMade();

private:
    QString below(const QString &relative) const { return m_home->filePath(relative); }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<InMemoryUserDefaults> m_store;
    std::unique_ptr<ZorelSettings> m_settings;
};

void ZorelSettingsFoldersTest::init()
{
    m_settings.reset();
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    m_store = std::make_unique<InMemoryUserDefaults>();
    m_settings = std::make_unique<ZorelSettings>(*m_store, StandardFolders::below(m_home->path()));
}

void ZorelSettingsFoldersTest::createsTheThreeDefaultFoldersWithTheirParents()
{
    m_settings->ensureFoldersExist();
    QVERIFY(QFileInfo(below(QStringLiteral("Documents/Zorel/Training Data"))).isDir());
    QVERIFY(QFileInfo(below(QStringLiteral("Documents/Zorel/Finished models"))).isDir());
    QVERIFY(QFileInfo(below(QStringLiteral("Library/Application Support/Zorel/Model"))).isDir());
    QVERIFY(m_store->writes.empty());
}

void ZorelSettingsFoldersTest::existingFoldersAndWhatIsInThemStay()
{
    m_settings->ensureFoldersExist();
    QFile corpus(m_settings->trainingDataPath() + QStringLiteral("/corpus.txt"));
    QVERIFY(corpus.open(QFile::WriteOnly));
    corpus.write("words");
    corpus.close();
    m_settings->ensureFoldersExist();
    QVERIFY(corpus.open(QFile::ReadOnly));
    QCOMPARE(corpus.readAll(), QByteArray("words"));
}

void ZorelSettingsFoldersTest::storedTildeStaysStoredAndTheFolderStandsInTheHomeFolder()
{
    const QString key = QStringLiteral("zorel.trainingDataPath");
    const QString path = QStringLiteral("~/Corpora/Mine");
    m_store->values.insert(key, path);
    ZorelSettings settings(*m_store, StandardFolders::below(m_home->path()));
    settings.ensureFoldersExist();
    QCOMPARE(settings.trainingDataPath(), path);
    QCOMPARE(m_store->values.value(key).toString(), path);
    QVERIFY(m_store->writes.empty());
    QCOMPARE(settings.sidecarEnvironment().value(QStringLiteral("ZOREL_DATA_ROOT")),
             below(QStringLiteral("Corpora/Mine")));
    QVERIFY(QFileInfo(below(QStringLiteral("Corpora/Mine"))).isDir());
}

void ZorelSettingsFoldersTest::oneImpossibleFolderDoesNotKeepTheOthersFromBeingMade_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << QString();
    QTest::newRow("a file") << QStringLiteral("~/file");
    QTest::newRow("below a file") << QStringLiteral("~/file/folder");
    QTest::newRow("a dangling link") << QStringLiteral("~/dangling");
    QTest::newRow("a link to itself") << QStringLiteral("~/loop");
    QTest::newRow("a name of 4,000 characters") << QStringLiteral("~/") + QString(4000, u'x');
    QTest::newRow("a path of 8,000 characters")
        << QStringLiteral("~/") + QStringLiteral("folder/").repeated(1143);
    QTest::newRow("a NUL") << QStringLiteral("~/nul") + QChar(u'\0') + QStringLiteral("folder");
    QTest::newRow("where the system lets nobody") << QStringLiteral("/proc/folder");
}

void ZorelSettingsFoldersTest::oneImpossibleFolderDoesNotKeepTheOthersFromBeingMade()
{
    QFETCH(QString, path);
    QFile file(below(QStringLiteral("file")));
    QVERIFY(file.open(QFile::WriteOnly));
    file.write("kept");
    file.close();
    QVERIFY(QFile::link(QStringLiteral("nowhere"), below(QStringLiteral("dangling"))));
    QVERIFY(QFile::link(QStringLiteral("loop"), below(QStringLiteral("loop"))));

    m_settings->setTrainingDataPath(path);
    m_settings->setFinishedModelsPath(path);
    m_settings->ensureFoldersExist();

    QVERIFY(QFileInfo(m_settings->modelRootPath()).isDir());
    QVERIFY(!QFileInfo(m_settings->expanded(path)).isDir());
    QVERIFY(!QFileInfo::exists(below(QStringLiteral("nowhere"))));
    QVERIFY(!QFileInfo::exists(below(QStringLiteral("nul"))));
    QCOMPARE(m_settings->trainingDataPath(), path);
    QVERIFY(file.open(QFile::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("kept"));
}

void ZorelSettingsFoldersTest::foldersWithUnusualNamesAreMade_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("not Latin") << QStringLiteral("данные/学習/📚");
    QTest::newRow("a line break") << QStringLiteral("two\nlines");
    QTest::newRow("quotes") << QStringLiteral("it's \"mine\"");
    QTest::newRow("a shell's words") << QStringLiteral("$(touch x); `ls` *");
    QTest::newRow("spaces at the ends") << QStringLiteral(" spaced ");
    QTest::newRow("a path of 2,000 characters")
        << QStringLiteral("folder").append(QStringLiteral("/folder").repeated(285));
}

void ZorelSettingsFoldersTest::foldersWithUnusualNamesAreMade()
{
    QFETCH(QString, name);
    m_settings->setFinishedModelsPath(QStringLiteral("~/") + name);
    m_settings->ensureFoldersExist();
    QVERIFY(QFileInfo(below(name)).isDir());
    QVERIFY(QFileInfo(m_settings->trainingDataPath()).isDir());
    QVERIFY(QFileInfo(m_settings->modelRootPath()).isDir());
}

QTEST_GUILESS_MAIN(ZorelSettingsFoldersTest)
#include "ZorelSettingsFoldersTest.moc"
