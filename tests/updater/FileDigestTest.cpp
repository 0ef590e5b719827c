#include "updater/FileDigest.h"
#include "tests/updater/Files.h"
#include "tests/updater/Outcome.h"
#include "updater/Cancellation.h"

#include <QCryptographicHash>

#include <fcntl.h>
#include <sys/stat.h>

using namespace zorel::tests;
using namespace zorel::updater;

class FileDigestTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void digestsAreLowerCaseHexadecimal_data();
    void digestsAreLowerCaseHexadecimal();
    void onlyRegularFilesAreRead_data();
    void onlyRegularFilesAreRead();
    void aCancelledDigestEnds();
    void anotherFileHasAnotherIdentity();
    void aChangedFileHasAnotherIdentity();
};

void FileDigestTest::digestsAreLowerCaseHexadecimal_data()
{
    QTest::addColumn<qsizetype>("size");
    for (const qsizetype size : {0, 1, 1'048'575, 1'048'576, 1'048'577, 3'000'000}) {
        QTest::addRow("%lld bytes", qlonglong(size)) << size;
    }
}

void FileDigestTest::digestsAreLowerCaseHexadecimal()
{
    QFETCH(qsizetype, size);
    const Folder folder;
    const QByteArray contents(size, 'z');
    writeFile(folder / "file", contents);
    QCOMPARE(digestOf(folder / "file", Cancellation()).hexadecimal,
             QString::fromLatin1(QCryptographicHash::hash(contents, QCryptographicHash::Sha256).toHex()));
}

void FileDigestTest::onlyRegularFilesAreRead_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"missing", "folder", "link", "pipe"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void FileDigestTest::onlyRegularFilesAreRead()
{
    QFETCH(QString, name);
    const Folder folder;
    writeFile(folder / "file", "x");
    QDir().mkpath(folder / "folder");
    makeLink(folder / "link", "file");
    QCOMPARE(::mkfifo(QFile::encodeName(folder / "pipe").constData(), 0600), 0);
    const auto error = errorOf([&] { digestOf(folder / name, Cancellation()); });
    QVERIFY(error);
    QCOMPARE(error->errorCase(), UpdateError::Case::extractionFailed);
}

void FileDigestTest::aCancelledDigestEnds()
{
    const Folder folder;
    writeFile(folder / "file", "x");
    Cancellation cancellation;
    cancellation.cancel();
    QCOMPARE(errorOf([&] { digestOf(folder / "file", cancellation); }), cancelled());
}

void FileDigestTest::anotherFileHasAnotherIdentity()
{
    const Folder folder;
    writeFile(folder / "file", "same");
    writeFile(folder / "other", "same");
    const FileIdentity before = FileIdentity::of(folder / "file");
    QVERIFY(before == FileIdentity::of(folder / "file"));
    QCOMPARE(::rename(QFile::encodeName(folder / "other").constData(),
                      QFile::encodeName(folder / "file").constData()),
             0);
    QVERIFY(!(before == FileIdentity::of(folder / "file")));
}

void FileDigestTest::aChangedFileHasAnotherIdentity()
{
    const Folder folder;
    const QByteArray name = QFile::encodeName(folder / "file");
    writeFile(folder / "file", "same");
    // Of the day before, so that any clock tells the two apart.
    const timespec yesterday[2] = {{86'400, 0}, {86'400, 0}};
    QCOMPARE(::utimensat(AT_FDCWD, name.constData(), yesterday, 0), 0);
    const FileIdentity before = FileIdentity::of(folder / "file");
    writeFile(folder / "file", "else");
    QVERIFY(!(before == FileIdentity::of(folder / "file")));
}

QTEST_GUILESS_MAIN(FileDigestTest)
#include "FileDigestTest.moc"
