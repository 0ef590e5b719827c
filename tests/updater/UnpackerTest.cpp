#include "updater/Unpacker.h"
#include "tests/updater/InstallStage.h"
#include "tests/updater/Outcome.h"
#include "tests/updater/ZipBuilder.h"
#include "updater/Cancellation.h"

#include <QCryptographicHash>

#include <thread>

using namespace zorel::tests;
using namespace zorel::updater;
using namespace std::chrono_literals;

namespace {

/// One archive that is unpacked on a stage.
class Unpacking
{
public:
    Unpacking(const QString &fileName, const QByteArray &archive)
        : archivePath(stage / ("work/" + fileName.toUtf8()).constData())
        , sha256(QString::fromLatin1(QCryptographicHash::hash(archive, QCryptographicHash::Sha256).toHex()))
    {
        writeFile(archivePath, archive);
        QDir().mkpath(staged());
    }

    QString work() const { return stage / "work"; }
    QString staged() const { return stage / "work/staged"; }
    std::optional<UpdateError> run()
    {
        InstallSurroundings surroundings = stage.surroundings();
        surroundings.limits = limits;
        if (!tool.isEmpty()) {
            surroundings.tools = {tool, tool, tool, tool, tool};
        }
        return errorOf(
            [&] { Unpacker(work(), surroundings, cancellation).unpack(archivePath, sha256, staged()); });
    }
    /// In place of every tool.
    void useTool(const QByteArray &script)
    {
        tool = stage / "tool";
        writeExecutable(tool, "#!/bin/bash\n" + script + "\n");
    }

    InstallStage stage;
    QString archivePath;
    QString sha256;
    QString tool;
    InstallLimits limits;
    Cancellation cancellation;
};

QByteArray anyArchive(const QString &extension)
{
    return InstallStage().newArchive(extension);
}

const QString bundleName = QStringLiteral("Talvex LLM Trainer.app");

} // namespace

class UnpackerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindIsUnpackedWhole_data();
    void everyKindIsUnpackedWhole();
    void zipArgumentsAreExact();
    void tarArgumentsAreExact_data();
    void tarArgumentsAreExact();
    void diskImageArgumentsAreExact();
    void theVolumesBundleAloneIsCopied();
    void aVolumeWithoutABundleIsDetached();
    void anImageWhoseCopyFailsIsDetached();
    void anImageWhoseAttachingFailsIsDetached();
    void anImageIsDetachedWhenCancelled();
    void anImageIsDetachedWhenAttachingHangs();
    void aFailingDetachFails();
    void aFailingToolTellsItsOutput_data();
    void aFailingToolTellsItsOutput();
    void aMissingToolFails_data();
    void aMissingToolFails();
    void anotherFileIsNotUnpacked_data();
    void anotherFileIsNotUnpacked();
    void aFileThatChangesWhileItIsUnpackedFails();
    void aDangerousZipNeverReachesTheTool();
    void aTarNeverWritesOutside_data();
    void aTarNeverWritesOutside();
    void aBombIsStopped();
};

void UnpackerTest::everyKindIsUnpackedWhole_data()
{
    QTest::addColumn<QString>("extension");
    for (const char *extension : {"zip", "dmg", "tar", "gz", "tbz", "bz2"}) {
        QTest::newRow(extension) << QString::fromUtf8(extension);
    }
}

void UnpackerTest::everyKindIsUnpackedWhole()
{
    QFETCH(QString, extension);
    Unpacking unpacking(QStringLiteral("Trainer 2.0.") + extension, anyArchive(extension));
    QCOMPARE(unpacking.run(), std::nullopt);
    QCOMPARE(InstallStage::versionAt(unpacking.staged() + u'/' + bundleName), QByteArray("2"));
    QVERIFY(!unpacking.stage.hasAttachedImage());
}

void UnpackerTest::zipArgumentsAreExact()
{
    Unpacking unpacking(QStringLiteral("-x'$(touch pwned).zip"), anyArchive(QStringLiteral("zip")));
    QCOMPARE(unpacking.run(), std::nullopt);
    QCOMPARE(unpacking.stage.calls(), QByteArrayList{"ditto|-x|-k|" + unpacking.archivePath.toUtf8() + '|' +
                                                     unpacking.staged().toUtf8() + '|'});
}

void UnpackerTest::tarArgumentsAreExact_data()
{
    QTest::addColumn<QString>("extension");
    for (const char *extension : {"tar", "gz", "tbz", "bz2"}) {
        QTest::newRow(extension) << QString::fromUtf8(extension);
    }
}

void UnpackerTest::tarArgumentsAreExact()
{
    QFETCH(QString, extension);
    Unpacking unpacking(QStringLiteral("a.") + extension, "anything");
    unpacking.useTool(R"(printf '%s|' "$@" > ")" + (unpacking.stage / "arguments").toUtf8() + '"');
    QCOMPARE(unpacking.run(), std::nullopt);
    QCOMPARE(contentsOf(unpacking.stage / "arguments"),
             "-xf|" + unpacking.archivePath.toUtf8() + "|-C|" + unpacking.staged().toUtf8() + '|');
}

void UnpackerTest::diskImageArgumentsAreExact()
{
    Unpacking unpacking(QStringLiteral("a.dmg"), anyArchive(QStringLiteral("dmg")));
    QCOMPARE(unpacking.run(), std::nullopt);
    const QByteArrayList calls = unpacking.stage.calls();
    QCOMPARE(calls.size(), 2);
    const QByteArrayList attach = calls[0].split('|');
    QCOMPARE(attach.mid(0, 6),
             (QByteArrayList{"hdiutil", "attach", "-nobrowse", "-noautoopen", "-readonly", "-mountpoint"}));
    const QByteArray mountPoint = attach[6];
    QVERIFY(mountPoint.startsWith(unpacking.work().toUtf8() + "/.mount-"));
    QVERIFY(mountPoint.size() > unpacking.work().toUtf8().size() + 30);
    QCOMPARE(attach[7], unpacking.archivePath.toUtf8());
    QCOMPARE(attach.size(), 9);
    QCOMPARE(calls[1], "hdiutil|detach|-quiet|-force|" + mountPoint + '|');
}

void UnpackerTest::theVolumesBundleAloneIsCopied()
{
    const InstallStage source;
    InstallStage::makeBundle(source / "volume/Trainer.app", "2");
    makeLink(source / "volume/Applications", "/Applications");
    writeFile(source / "volume/.background/picture.png", "x");
    Unpacking unpacking(QStringLiteral("a.dmg"), source.archive(source / "volume", QStringLiteral("dmg")));
    QCOMPARE(unpacking.run(), std::nullopt);
    QCOMPARE(namesIn(unpacking.staged()), QStringList{QStringLiteral("Trainer.app")});
    QCOMPARE(InstallStage::versionAt(unpacking.staged() + QStringLiteral("/Trainer.app")), QByteArray("2"));
}

void UnpackerTest::aVolumeWithoutABundleIsDetached()
{
    const InstallStage source;
    writeFile(source / "volume/read me", "x");
    Unpacking unpacking(QStringLiteral("a.dmg"), source.archive(source / "volume", QStringLiteral("dmg")));
    QCOMPARE(unpacking.run(), std::optional(UpdateError(UpdateError::AppNotFoundInArtifact{})));
    QVERIFY(!unpacking.stage.hasAttachedImage());
    QCOMPARE(unpacking.stage.calls().size(), 2);
}

void UnpackerTest::anImageWhoseCopyFailsIsDetached()
{
    Unpacking unpacking(QStringLiteral("a.dmg"), anyArchive(QStringLiteral("dmg")));
    // The copy has nowhere to go.
    QVERIFY(QDir().rmdir(unpacking.staged()));
    writeFile(unpacking.staged(), "in the way");
    const auto error = unpacking.run();
    QVERIFY(error);
    QVERIFY2(
        error->message().startsWith(QStringLiteral("Couldn't unpack the update: cp exited with code 1: ")),
        qPrintable(error->message()));
    QVERIFY(!unpacking.stage.hasAttachedImage());
    QCOMPARE(unpacking.stage.calls().last().left(15), QByteArray("hdiutil|detach|"));
}

void UnpackerTest::anImageWhoseAttachingFailsIsDetached()
{
    Unpacking unpacking(QStringLiteral("a.dmg"), "no image");
    const auto error = unpacking.run();
    QVERIFY(error);
    QVERIFY2(error->message().startsWith(
                 QStringLiteral("Couldn't unpack the update: hdiutil exited with code 1: ")),
             qPrintable(error->message()));
    QVERIFY(error->message().contains(QStringLiteral("hdiutil: attach failed - image not recognized")));
    QVERIFY(!unpacking.stage.hasAttachedImage());
    QCOMPARE(unpacking.stage.calls().last().left(15), QByteArray("hdiutil|detach|"));
}

void UnpackerTest::anImageIsDetachedWhenCancelled()
{
    Unpacking unpacking(QStringLiteral("a.dmg"), anyArchive(QStringLiteral("dmg")));
    unpacking.useTool(
        R"(printf '%s ' "$@" >> "$STANDIN_STATE/tool.calls"; [ "$1" = attach ] && exec sleep 1000)");
    // The real one: the stand-in would not sleep.
    unpacking.stage.environment["PATH"] = "/usr/bin:/bin";
    std::thread canceller([&] {
        while (contentsOf(unpacking.stage / "tool.calls").isEmpty()) {
            std::this_thread::yield();
        }
        unpacking.cancellation.cancel();
    });
    QCOMPARE(unpacking.run(), cancelled());
    canceller.join();
    QVERIFY(contentsOf(unpacking.stage / "tool.calls")
                .contains("detach -quiet -force " + unpacking.work().toUtf8()));
}

void UnpackerTest::anImageIsDetachedWhenAttachingHangs()
{
    Unpacking unpacking(QStringLiteral("a.dmg"), anyArchive(QStringLiteral("dmg")));
    unpacking.useTool(
        R"(printf '%s ' "$@" >> "$STANDIN_STATE/tool.calls"; [ "$1" = attach ] && exec sleep 1000)");
    unpacking.stage.environment["PATH"] = "/usr/bin:/bin";
    unpacking.limits.tool = 300ms;
    QCOMPARE(unpacking.run(), extractionFailed(QStringLiteral("tool did not finish within 0.3 seconds: ")));
    QVERIFY(contentsOf(unpacking.stage / "tool.calls")
                .contains("detach -quiet -force " + unpacking.work().toUtf8()));
}

void UnpackerTest::aFailingDetachFails()
{
    Unpacking unpacking(QStringLiteral("a.dmg"), anyArchive(QStringLiteral("dmg")));
    unpacking.stage.environment["STANDIN_FAIL"] = "hdiutil detach";
    QCOMPARE(unpacking.run(), extractionFailed(QStringLiteral(
                                  "hdiutil exited with code 1: hdiutil: this was to be expected")));
}

void UnpackerTest::aFailingToolTellsItsOutput_data()
{
    everyKindIsUnpackedWhole_data();
}

void UnpackerTest::aFailingToolTellsItsOutput()
{
    QFETCH(QString, extension);
    Unpacking unpacking(QStringLiteral("a.") + extension, anyArchive(extension));
    unpacking.useTool("echo ' out '; echo ' err ' >&2; exit 7");
    QCOMPARE(unpacking.run(), extractionFailed(QStringLiteral("tool exited with code 7: out\nerr")));
}

void UnpackerTest::aMissingToolFails_data()
{
    everyKindIsUnpackedWhole_data();
}

void UnpackerTest::aMissingToolFails()
{
    QFETCH(QString, extension);
    Unpacking unpacking(QStringLiteral("a.") + extension, anyArchive(extension));
    unpacking.tool = unpacking.stage / "missing";
    QCOMPARE(unpacking.run(),
             extractionFailed(unpacking.tool + QStringLiteral(": No such file or directory")));
}

void UnpackerTest::anotherFileIsNotUnpacked_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<bool>("isLink");
    for (const char *extension : {"zip", "dmg", "tar"}) {
        QTest::addRow("%s, another file", extension) << QString::fromUtf8(extension) << false;
        QTest::addRow("%s, a link", extension) << QString::fromUtf8(extension) << true;
    }
}

void UnpackerTest::anotherFileIsNotUnpacked()
{
    QFETCH(QString, extension);
    QFETCH(bool, isLink);
    const QByteArray archive = anyArchive(extension);
    Unpacking unpacking(QStringLiteral("a.") + extension, archive);
    unpacking.useTool("touch \"$STANDIN_STATE/unpacked\"");
    QVERIFY(QFile::remove(unpacking.archivePath));
    if (isLink) {
        // The contents are right; what stands in their place a moment later need not be.
        writeFile(unpacking.stage / "elsewhere", archive);
        makeLink(unpacking.archivePath, QFile::encodeName(unpacking.stage / "elsewhere"));
        QVERIFY(unpacking.run());
    } else {
        writeFile(unpacking.archivePath, archive + 'x');
        const auto actual = QCryptographicHash::hash(archive + 'x', QCryptographicHash::Sha256).toHex();
        QCOMPARE(unpacking.run(), std::optional(UpdateError(UpdateError::ChecksumMismatch{
                                      unpacking.sha256, QString::fromLatin1(actual)})));
    }
    QVERIFY(!QFile::exists(unpacking.stage / "unpacked"));
}

void UnpackerTest::aFileThatChangesWhileItIsUnpackedFails()
{
    for (const char *change :
         {"echo more >> \"$2\"", "cp \"$2\" \"$2.new\" && mv \"$2.new\" \"$2\"", "rm \"$2\""}) {
        Unpacking unpacking(QStringLiteral("a.tar"), anyArchive(QStringLiteral("tar")));
        unpacking.useTool(change);
        const auto error = unpacking.run();
        QVERIFY2(error, change);
        QCOMPARE(error->errorCase(), UpdateError::Case::extractionFailed);
    }
}

void UnpackerTest::aDangerousZipNeverReachesTheTool()
{
    ZipBuilder upwards;
    upwards.add("../../pwned", "x").add("New.app/x", "x");
    ZipBuilder throughLink;
    throughLink.addLink("New.app/out", "../../..").add("New.app/out/pwned", "x");
    for (const QByteArray &archive : {upwards.bytes(), throughLink.bytes()}) {
        Unpacking unpacking(QStringLiteral("a.zip"), archive);
        const auto error = unpacking.run();
        QVERIFY(error);
        QCOMPARE(error->errorCase(), UpdateError::Case::extractionFailed);
        QVERIFY(unpacking.stage.calls().isEmpty());
        QVERIFY(!QFile::exists(unpacking.stage / "pwned"));
        QCOMPARE(namesIn(unpacking.staged()), QStringList());
    }
}

void UnpackerTest::aTarNeverWritesOutside_data()
{
    QTest::addColumn<QString>("script");
    // Each makes the entry with Python's writer of archives, which takes what it is given.
    const auto row = [](const char *name, const char *script) {
        QTest::newRow(name) << QString::fromUtf8(script);
    };
    row("upwards", "add('../../pwned', b'x')");
    row("absolute", "add(outside + '/pwned', b'x')");
    row("below a link", "link('out', '../..'); add('out/pwned', b'x')");
    row("below an absolute link", "link('out', outside); add('out/pwned', b'x')");
    row("over a link", "link('New.app', outside + '/pwned'); add('New.app', b'x')");
    row("a hard link to outside", "add('New.app/x', b'x'); hard('New.app/hard', outside + '/kept')");
    row("a hard link upwards", "hard('New.app/hard', '../../kept')");
    row("writing through a hard link", "hard('hard', outside + '/kept'); add('hard', b'changed')");
}

void UnpackerTest::aTarNeverWritesOutside()
{
    QFETCH(QString, script);
    const InstallStage source;
    const QString program = QStringLiteral(R"(
import io, sys, tarfile
outside = sys.argv[2]
archive = tarfile.open(sys.argv[1], "w")
def entry(name, kind, target="", contents=b""):
    info = tarfile.TarInfo(name)
    info.type, info.linkname, info.size = kind, target, len(contents)
    archive.addfile(info, io.BytesIO(contents))
def add(name, contents): entry(name, tarfile.REGTYPE, contents=contents)
def link(name, target): entry(name, tarfile.SYMTYPE, target)
def hard(name, target): entry(name, tarfile.LNKTYPE, target)
%1
archive.close()
)")
                                .arg(script);
    Unpacking unpacking(QStringLiteral("a.tar"), "to be replaced");
    writeFile(unpacking.stage / "kept", "untouched");
    runProgram(QStringLiteral("python3"),
               {QStringLiteral("-c"), program, unpacking.archivePath, unpacking.stage / "."});
    unpacking.sha256 = QString::fromLatin1(
        QCryptographicHash::hash(contentsOf(unpacking.archivePath), QCryptographicHash::Sha256).toHex());
    unpacking.run();
    QVERIFY(!QFile::exists(unpacking.stage / "pwned"));
    QCOMPARE(contentsOf(unpacking.stage / "kept"), QByteArray("untouched"));
    QCOMPARE(namesIn(unpacking.work()), (QStringList{QStringLiteral("a.tar"), QStringLiteral("staged")}));
}

void UnpackerTest::aBombIsStopped()
{
    // Grows for as long as it is let, up to 300 MB.
    Unpacking unpacking(QStringLiteral("a.gz"), "a bomb");
    unpacking.useTool("for _ in {1..3000}; do head -c 100000 /dev/zero >> \"$4/grown\"; done");
    unpacking.limits.unpackedBytes = 1'000'000;
    QCOMPARE(unpacking.run(),
             extractionFailed(QStringLiteral("it unpacks to more than 1000000 bytes or 500000 files")));
    const qint64 grown = QFileInfo(unpacking.staged() + QStringLiteral("/grown")).size();
    QVERIFY(grown > 1'000'000);
    // The tool is gone.
    QCOMPARE(QFileInfo(unpacking.staged() + QStringLiteral("/grown")).size(), grown);
}

QTEST_GUILESS_MAIN(UnpackerTest)
#include "UnpackerTest.moc"
