#include "updater/ZipInspection.h"
#include "tests/updater/Files.h"
#include "tests/updater/Outcome.h"
#include "tests/updater/ZipBuilder.h"
#include "updater/InstallSurroundings.h"

using namespace zorel::tests;
using namespace zorel::updater;

namespace {

std::optional<UpdateError> refusalOf(const QByteArray &archive, const InstallLimits &limits = {})
{
    const Folder folder;
    writeFile(folder / "a.zip", archive);
    return errorOf([&] { requireSafeZip(folder / "a.zip", limits); });
}

std::optional<UpdateError> unsafe(const char *name)
{
    return extractionFailed(QStringLiteral("a file in it has an unsafe name: ") + QString::fromUtf8(name));
}

const std::optional<UpdateError> damaged = extractionFailed(QStringLiteral("the archive is damaged"));

ZipBuilder honest()
{
    ZipBuilder zip;
    zip.add("New.app/Contents/Info.plist", "plist").add("New.app/Contents/MacOS/New", "program");
    zip.addLink("New.app/Current", "Contents");
    return zip;
}

} // namespace

class ZipInspectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anHonestArchiveIsAllowed();
    void anArchiveOfTheZipToolIsAllowed();
    void aWideArchiveIsAllowed();
    void namesMayNotLeadOutside_data();
    void namesMayNotLeadOutside();
    void nothingMayStandBelowALink_data();
    void nothingMayStandBelowALink();
    void anEntryMayNotCallItselfOtherwiseInItsPlace();
    void announcedSizesCountAgainstTheLimit();
    void damageIsRefused_data();
    void damageIsRefused();
    void everyCutIsRefusedOrAllowedWithoutHarm();
    void everyFlippedByteIsRefusedOrAllowedWithoutHarm();
};

void ZipInspectionTest::anHonestArchiveIsAllowed()
{
    QCOMPARE(refusalOf(honest().bytes()), std::nullopt);
    QCOMPARE(refusalOf(honest().bytes("a comment")), std::nullopt);
    QCOMPARE(refusalOf(ZipBuilder().bytes()), std::nullopt);
    // The mark of the end may stand in the comment as well.
    QCOMPARE(refusalOf(honest().bytes(QByteArray("PK\5\6") + QByteArray(40, 'x'))), std::nullopt);
}

void ZipInspectionTest::anArchiveOfTheZipToolIsAllowed()
{
    const Folder folder;
    writeFile(folder / "New.app/Contents/Info.plist", QByteArray(100'000, 'x'));
    makeLink(folder / "New.app/Current", "Contents");
    runProgram(QStringLiteral("zip"),
               {QStringLiteral("-qry"), QStringLiteral("a.zip"), QStringLiteral("New.app")}, folder.path());
    QCOMPARE(errorOf([&] { requireSafeZip(folder / "a.zip", {}); }), std::nullopt);
}

void ZipInspectionTest::aWideArchiveIsAllowed()
{
    // From a pipe the tool cannot know the sizes beforehand, and uses fields of 64 bits.
    const Folder folder;
    runProgram(QStringLiteral("bash"),
               {QStringLiteral("-c"), QStringLiteral("head -c 100000 /dev/zero | zip -q -fz a.zip -")},
               folder.path());
    QVERIFY(contentsOf(folder / "a.zip").contains("PK\6\6"));
    QCOMPARE(errorOf([&] { requireSafeZip(folder / "a.zip", {}); }), std::nullopt);
    InstallLimits limits;
    limits.unpackedBytes = 99'999;
    QVERIFY(errorOf([&] { requireSafeZip(folder / "a.zip", limits); }));
}

void ZipInspectionTest::namesMayNotLeadOutside_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"../x", "a/../../x", "a/..", "..", "/x", "//x"}) {
        QTest::newRow(name) << QByteArray(name);
    }
}

void ZipInspectionTest::namesMayNotLeadOutside()
{
    QFETCH(QByteArray, name);
    QCOMPARE(refusalOf(honest().add(name, "x").bytes()), unsafe(name.constData()));
}

void ZipInspectionTest::nothingMayStandBelowALink_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"link/x", "link/a/x", "./link/x", "link//x", "LINK/x", "./link/./x"}) {
        QTest::newRow(name) << QByteArray(name);
    }
}

void ZipInspectionTest::nothingMayStandBelowALink()
{
    QFETCH(QByteArray, name);
    QCOMPARE(refusalOf(honest().addLink("link", "/tmp").add(name, "x").bytes()), unsafe(name.constData()));
    // Also when the link comes last.
    QCOMPARE(refusalOf(honest().add(name, "x").addLink("link", "/tmp").bytes()), unsafe(name.constData()));
    QCOMPARE(refusalOf(honest().addLink("lin", "/tmp").add(name, "x").bytes()), std::nullopt);
}

void ZipInspectionTest::anEntryMayNotCallItselfOtherwiseInItsPlace()
{
    ZipBuilder::Entry entry{"innocent", "x"};
    entry.localName = "../../x";
    QCOMPARE(refusalOf(honest().add(entry).bytes()), unsafe("innocent"));
}

void ZipInspectionTest::announcedSizesCountAgainstTheLimit()
{
    InstallLimits limits;
    limits.unpackedBytes = 100;
    limits.unpackedItems = 2;
    ZipBuilder::Entry entry{"bomb", "x"};
    entry.announcedSize = 100;
    ZipBuilder zip;
    QCOMPARE(refusalOf(zip.add(entry).bytes(), limits), std::nullopt);
    const auto tooLarge = extractionFailed(QStringLiteral("it unpacks to more than 100 bytes or 2 files"));
    QCOMPARE(refusalOf(zip.add("b", "x").bytes(), limits), tooLarge);
    ZipBuilder many;
    many.add("a", "").add("b", "").add("c", "");
    QCOMPARE(refusalOf(many.bytes(), limits), tooLarge);
}

void ZipInspectionTest::damageIsRefused_data()
{
    QTest::addColumn<QByteArray>("archive");
    QByteArray farTable = honest().bytes();
    farTable[farTable.size() - 3] = '\x7f';
    QByteArray secondTable = honest().bytes();
    secondTable.replace("PK\1\2", "PK\1\3");
    QByteArray secondFile = honest().bytes();
    secondFile.replace("PK\3\4", "PK\3\5");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a text") << QByteArray("<html>not found</html>");
    QTest::newRow("an end alone, cut") << QByteArray("PK\5\6");
    QTest::newRow("its end cut off") << honest().bytes().chopped(1);
    QTest::newRow("something behind") << honest().bytes() + 'x';
    QTest::newRow("the table elsewhere") << farTable;
    QTest::newRow("no table there") << secondTable;
    QTest::newRow("no file there") << secondFile;
}

void ZipInspectionTest::damageIsRefused()
{
    QFETCH(QByteArray, archive);
    QCOMPARE(refusalOf(archive), damaged);
}

void ZipInspectionTest::everyCutIsRefusedOrAllowedWithoutHarm()
{
    const QByteArray archive = honest().bytes();
    for (qsizetype size = 0; size < archive.size(); ++size) {
        QCOMPARE(refusalOf(archive.left(size)), damaged);
    }
}

void ZipInspectionTest::everyFlippedByteIsRefusedOrAllowedWithoutHarm()
{
    const QByteArray archive = honest().bytes();
    int refused = 0;
    for (qsizetype at = 0; at < archive.size(); ++at) {
        QByteArray flipped = archive;
        flipped[at] = static_cast<char>(~flipped[at]);
        refused += refusalOf(flipped) ? 1 : 0;
    }
    QVERIFY(refused > 100);
}

QTEST_GUILESS_MAIN(ZipInspectionTest)
#include "ZipInspectionTest.moc"
