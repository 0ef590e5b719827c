#include "platform/InformationDictionary.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

using zorel::platform::Bundle;
using zorel::platform::InformationDictionary;

/// The bundle that this build has made.
class BuiltBundleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsItsThreePartsAndTheTwoPrograms();
    void tellsWhatItIs();
    void namesNoWebServiceUnlessTheBuildIsToldOne();
    void holdsTheScriptsThatTrainAndNothingElse();
    void iconIsAPictureOnATransparentGround();
    void iconHoldsEverySizeThatTheSystemAsksFor();
    void programRunsTheScriptsOfItsOwnBundleAndLeavesItAsItIs();
    void programRunsThroughALink();

private:
    static QString text(const char *bytes) { return QString::fromUtf8(bytes); }
    static QString contents() { return text(ZOREL_BUNDLE) + text("/Contents"); }
    static InformationDictionary information()
    {
        return zorel::platform::informationDictionaryOf(Bundle{text(ZOREL_BUNDLE), {}, {}});
    }
    static QStringList entriesOf(const QString &folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    /// Relative paths of every file below, sorted.
    static QStringList filesBelow(const QString &folder, const QStringList &names = {});
    static QByteArray contentsOf(const QString &path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    static void copy(const QString &from, const QString &to);
};

QStringList BuiltBundleTest::filesBelow(const QString &folder, const QStringList &names)
{
    QStringList files;
    QDirIterator iterator(folder, names, QDir::Files | QDir::Hidden | QDir::System,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        files.append(QDir(folder).relativeFilePath(iterator.next()));
    }
    files.sort();
    return files;
}

void BuiltBundleTest::copy(const QString &from, const QString &to)
{
    for (const QString &file : filesBelow(from)) {
        const QString target = to + u'/' + file;
        QVERIFY(QDir().mkpath(QFileInfo(target).path()));
        QVERIFY(QFile::copy(from + u'/' + file, target));
    }
}

void BuiltBundleTest::holdsItsThreePartsAndTheTwoPrograms()
{
    QCOMPARE(entriesOf(text(ZOREL_BUNDLE)), QStringList(text("Contents")));
    QCOMPARE(entriesOf(contents()), QStringList({text("Info.plist"), text("MacOS"), text("Resources")}));
    const QStringList programs = entriesOf(contents() + text("/MacOS"));
    QCOMPARE(programs, QStringList({text("Talvex LLM Trainer"), text("zorel-train")}));
    for (const QString &program : programs) {
        QVERIFY(QFileInfo(contents() + text("/MacOS/") + program).isExecutable());
    }
    QCOMPARE(entriesOf(contents() + text("/Resources")),
             QStringList({text("AppIcon.icns"), text("AppIcon.png"), text("sidecar")}));
}

void BuiltBundleTest::tellsWhatItIs()
{
    const InformationDictionary told = information();
    const QString name = text("Talvex LLM Trainer");
    QCOMPARE(told.value(text("CFBundleIdentifier")), text("com.talvex.zorel"));
    QCOMPARE(told.value(text("CFBundleDisplayName")), name);
    QCOMPARE(told.value(text("CFBundleName")), name);
    QCOMPARE(told.value(text("CFBundleShortVersionString")), text(ZOREL_VERSION));
    QCOMPARE(told.value(text("CFBundleVersion")), text(ZOREL_VERSION));
    QCOMPARE(told.value(text("CFBundlePackageType")), text("APPL"));
    QVERIFY(QFileInfo(contents() + text("/MacOS/") + told.value(text("CFBundleExecutable")).toString())
                .isExecutable());
    QVERIFY(QFileInfo(contents() + text("/Resources/") + told.value(text("CFBundleIconFile")).toString() +
                      text(".icns"))
                .isFile());
}

void BuiltBundleTest::namesNoWebServiceUnlessTheBuildIsToldOne()
{
    QVERIFY(!information().contains(text("CaldraAPIKey")));
    QVERIFY(!information().contains(text("CaldraOrganizationId")));
}

void BuiltBundleTest::holdsTheScriptsThatTrainAndNothingElse()
{
    const QString source = text(ZOREL_SOURCE) + text("/sidecar");
    const QString shipped = contents() + text("/Resources/sidecar");
    QStringList expected;
    for (const QString &file : filesBelow(source + text("/src"))) {
        // What an interpreter leaves in the checkout.
        if (!file.contains(text("__pycache__"))) {
            expected.append(text("src/") + file);
        }
    }
    QVERIFY(expected.contains(text("src/app_backend.py")));
    expected += {text("generate"), text("requirements.txt")};
    expected.sort();
    QCOMPARE(filesBelow(shipped), expected);
    for (const QString &file : expected) {
        QCOMPARE(contentsOf(shipped + u'/' + file), contentsOf(source + u'/' + file));
    }
    QVERIFY(QFileInfo(shipped + text("/generate")).isExecutable());
}

void BuiltBundleTest::iconIsAPictureOnATransparentGround()
{
    const QImage icon(contents() + text("/Resources/AppIcon.png"));
    QCOMPARE(icon.size(), QSize(256, 256));
    QCOMPARE(qAlpha(icon.pixel(2, 2)), 0);
    QCOMPARE(qAlpha(icon.pixel(128, 128)), 255);
    QVERIFY(icon.pixel(128, 40) != icon.pixel(76, 71));
}

void BuiltBundleTest::iconHoldsEverySizeThatTheSystemAsksFor()
{
    const QByteArray file = contentsOf(contents() + text("/Resources/AppIcon.icns"));
    QVERIFY(file.startsWith("icns"));
    QCOMPARE(qFromBigEndian<quint32>(file.constData() + 4), quint32(file.size()));
    QMap<QByteArray, int> sizes;
    for (qsizetype position = 8; position + 8 <= file.size();) {
        const auto length = qsizetype(qFromBigEndian<quint32>(file.constData() + position + 4));
        QVERIFY(length > 8 && position + length <= file.size());
        const QImage image = QImage::fromData(file.mid(position + 8, length - 8), "PNG");
        QCOMPARE(image.width(), image.height());
        sizes.insert(file.mid(position, 4), image.width());
        position += length;
    }
    const QMap<QByteArray, int> expected{{"ic07", 128}, {"ic08", 256}, {"ic09", 512}, {"ic10", 1024},
                                         {"ic11", 32},  {"ic12", 64},  {"ic13", 256}, {"ic14", 512}};
    QCOMPARE(sizes, expected);
}

void BuiltBundleTest::programRunsTheScriptsOfItsOwnBundleAndLeavesItAsItIs()
{
    const QTemporaryDir folder;
    const QString root = QDir(folder.path()).canonicalPath();
    const QString bundle = root + text("/Moved here/It's new.app");
    copy(text(ZOREL_BUNDLE), bundle);
    const QStringList before = filesBelow(bundle);

    // Notes where it runs, imports what a run would import first, and fails.
    const QString home = root + text("/home");
    const QString interpreter = home + text("/Library/Python/3.12/bin/python3");
    QVERIFY(QDir().mkpath(QFileInfo(interpreter).path()));
    QFile script(interpreter);
    QVERIFY(script.open(QFile::WriteOnly));
    script.write("#!/bin/sh\n"
                 "[ \"$1\" = -c ] && exit 0\n"
                 "pwd > \"$HOME/place\"\n"
                 "/usr/bin/python3 -c 'import src.wire' && touch \"$HOME/imported\"\n"
                 "exit 1\n");
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::ExeOwner));

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(text("ZOREL_SCRIPTS_ROOT"));
    environment.remove(text("PYTHONDONTWRITEBYTECODE"));
    environment.insert(text("HOME"), home);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(bundle + text("/Contents/MacOS/zorel-train"), {});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 1);

    QCOMPARE(contentsOf(home + text("/place")).trimmed(),
             QFile::encodeName(bundle + text("/Contents/Resources/sidecar")));
    QVERIFY(QFile::exists(home + text("/imported")));
    QCOMPARE(filesBelow(bundle), before);
    QVERIFY(!filesBelow(home + text("/Library/Caches/com.talvex.zorel/Python")).isEmpty());
}

void BuiltBundleTest::programRunsThroughALink()
{
    const QTemporaryDir folder;
    const QString link = folder.filePath(text("train"));
    QVERIFY(QFile::link(contents() + text("/MacOS/zorel-train"), link));
    QProcess program;
    program.start(link, {text("--version")});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 0);
    QVERIFY(program.readAllStandardOutput().startsWith("zorel-train " ZOREL_VERSION));
}

QTEST_GUILESS_MAIN(BuiltBundleTest)
#include "BuiltBundleTest.moc"
