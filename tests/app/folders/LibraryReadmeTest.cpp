#include "app/folders/LibraryReadme.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using zorel::app::folders::installLibraryReadme;
using zorel::app::folders::libraryReadmeText;

class LibraryReadmeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyLineIsTheOneUsersKnow();
    void makesTheLibraryAndTheReadme();
    void existingReadmeStays_data();
    void existingReadmeStays();
    void readmeThatIsALinkToNothingStays();
    void folderThatCannotBeMadeDoesNotKeepTheRestFromBeingMade();
    void libraryThatCannotBeMadeIsNoConcern();

private:
    QString library() const { return m_home->filePath(QStringLiteral("Documents/Zorel")); }
    QString readme() const { return library() + QStringLiteral("/README.md"); }
    static QByteArray contentsOf(const QString &path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    std::unique_ptr<QTemporaryDir> m_home;
};

void LibraryReadmeTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
}

void LibraryReadmeTest::everyLineIsTheOneUsersKnow()
{
    const QStringList expected{
        QStringLiteral("# Zorel Library"),
        QString(),
        QStringLiteral("This folder is automatically managed by the **Zorel** app."),
        QString(),
        QStringLiteral("## Training Data"),
        QStringLiteral("Drop pretraining and fine-tuning corpora here. Each corpus should"),
        QStringLiteral("live in its own subfolder. The app's data-prep stage will index"),
        QStringLiteral("everything inside this directory automatically."),
        QString(),
        QStringLiteral("## Finished models"),
        QStringLiteral("Every completed training run is archived into its own dated subfolder"),
        QStringLiteral("here. The folder name is the date and time the run completed, e.g."),
        QStringLiteral("`2026-06-01_21-44-12/`. Each archive contains:"),
        QStringLiteral("- the final weights (`.safetensors`)"),
        QStringLiteral("- the tokenizer (`tokenizer.json`)"),
        QStringLiteral("- the run config (`config.json`)"),
        QStringLiteral("- a `manifest.json` summary (loss, steps, tokens/sec, etc.)"),
        QString(),
        QStringLiteral("You can move, rename, or copy these archives anywhere \u2014 they're"),
        QStringLiteral("self-contained and not referenced by the trainer once finished."),
    };
    QCOMPARE(libraryReadmeText().split(u'\n'), expected);
}

void LibraryReadmeTest::makesTheLibraryAndTheReadme()
{
    installLibraryReadme(library());
    QVERIFY(QFileInfo(library() + QStringLiteral("/Training Data")).isDir());
    QVERIFY(QFileInfo(library() + QStringLiteral("/Finished models")).isDir());
    QCOMPARE(contentsOf(readme()), libraryReadmeText().toUtf8());
    QCOMPARE(QDir(library()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 3);
}

void LibraryReadmeTest::existingReadmeStays_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("of an earlier version") << QByteArray("# Zorel");
    QTest::newRow("empty") << QByteArray("");
}

void LibraryReadmeTest::existingReadmeStays()
{
    QFETCH(QByteArray, contents);
    QVERIFY(QDir().mkpath(library()));
    QFile file(readme());
    QVERIFY(file.open(QFile::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
    file.close();
    installLibraryReadme(library());
    QCOMPARE(contentsOf(readme()), contents);
    QVERIFY(QFileInfo(library() + QStringLiteral("/Training Data")).isDir());
}

void LibraryReadmeTest::readmeThatIsALinkToNothingStays()
{
    QVERIFY(QDir().mkpath(library()));
    const QString target = m_home->filePath(QStringLiteral("unmounted"));
    QVERIFY(QFile::link(target, readme()));
    installLibraryReadme(library());
    QVERIFY(QFileInfo(readme()).isSymLink());
    QVERIFY(!QFile::exists(target));
}

void LibraryReadmeTest::folderThatCannotBeMadeDoesNotKeepTheRestFromBeingMade()
{
    QVERIFY(QDir().mkpath(library()));
    QFile file(library() + QStringLiteral("/Training Data"));
    QVERIFY(file.open(QFile::WriteOnly));
    installLibraryReadme(library());
    QVERIFY(QFileInfo(library() + QStringLiteral("/Training Data")).isFile());
    QVERIFY(QFileInfo(library() + QStringLiteral("/Finished models")).isDir());
    QCOMPARE(contentsOf(readme()), libraryReadmeText().toUtf8());
}

void LibraryReadmeTest::libraryThatCannotBeMadeIsNoConcern()
{
    installLibraryReadme(QStringLiteral("/dev/null/Zorel"));
    QVERIFY(QDir(m_home->path()).isEmpty());
}

QTEST_GUILESS_MAIN(LibraryReadmeTest)
#include "LibraryReadmeTest.moc"
