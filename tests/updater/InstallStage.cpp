#include "tests/updater/InstallStage.h"

#include <QDirIterator>

namespace zorel::tests {

namespace {

constexpr int dataFiles = 40;

QByteArray dataOf(int number, const QByteArray &version)
{
    return (version + ' ' + QByteArray::number(number) + '\n').repeated(200 + number * 37);
}

QString dataName(int number)
{
    return QStringLiteral("Contents/Resources/part %1/data %2").arg(number % 5).arg(number);
}

QStringList treeAt(const QString &path)
{
    QStringList names;
    QDirIterator entries(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString name = entries.next().mid(path.size() + 1);
        if (!name.startsWith(QLatin1String("Contents/_CodeSignature"))) {
            names.append(name);
        }
    }
    names.sort();
    return names;
}

QByteArray pathWith(const QString &tools)
{
    return QFile::encodeName(tools) + "/clock:/usr/bin:/bin";
}

} // namespace

InstallStage::InstallStage(const QString &installedName)
    : m_installed(m_folder / installedName)
    , m_tools(QStringLiteral(ZOREL_STAND_INS))
    , environment{{"PATH", pathWith(m_tools)},
                  {"STANDIN_LOG", QFile::encodeName(m_folder / "calls")},
                  {"STANDIN_STATE", QFile::encodeName(m_folder.path())}}
{
    makeBundle(m_installed, "1");
}

void InstallStage::takeToolsAlong()
{
    const QString copy = m_folder / "tools";
    runProgram(QStringLiteral("cp"), {QStringLiteral("-R"), m_tools, copy});
    m_tools = copy;
    environment["PATH"] = pathWith(m_tools);
}

QStringList InstallStage::workingFolders() const
{
    QStringList names = namesIn(updaterFolder());
    names.removeAll(QStringLiteral(".lock"));
    return names;
}

void InstallStage::makeBundle(const QString &path, const QByteArray &version)
{
    writeFile(path + QLatin1String("/Contents/Info.plist"), "version " + version);
    writeExecutable(path + QLatin1String("/Contents/MacOS/Talvex LLM Trainer"),
                    "#!/bin/sh\nexit 0\n# " + version);
    makeLink(path + QLatin1String("/Contents/Current"), "Resources/part 1");
    for (int number = 0; number < dataFiles; ++number) {
        writeFile(path + u'/' + dataName(number), dataOf(number, version));
    }
}

QByteArray InstallStage::versionAt(const QString &path)
{
    const QByteArray plist = contentsOf(path + QLatin1String("/Contents/Info.plist"));
    const QByteArray version = plist.mid(QByteArray("version ").size());
    if (version.isEmpty()) {
        return "none";
    }
    const Folder folder;
    makeBundle(folder / "whole", version);
    const QStringList names = treeAt(folder / "whole");
    if (treeAt(path) != names) {
        return "another tree than version " + version;
    }
    for (const QString &name : names) {
        const QFileInfo ours(path + u'/' + name);
        const QFileInfo whole(folder / "whole" + u'/' + name);
        if (ours.isSymLink() != whole.isSymLink() || ours.isDir() != whole.isDir() ||
            ours.isExecutable() != whole.isExecutable() ||
            (whole.isFile() && contentsOf(ours.filePath()) != contentsOf(whole.filePath()))) {
            return "another " + name.toUtf8() + " than version " + version;
        }
    }
    return version;
}

QByteArray InstallStage::archive(const QString &folder, const QString &extension) const
{
    const QString file = m_folder / (QStringLiteral("archive.") + extension);
    if (extension == QLatin1String("zip")) {
        runProgram(QStringLiteral("zip"), {QStringLiteral("-qry"), file, QStringLiteral(".")}, folder);
    } else {
        const QString compression = extension == QLatin1String("gz") ? QStringLiteral("-z")
                                    : extension.startsWith(u't') || extension == QLatin1String("bz2")
                                        ? QStringLiteral("-j")
                                        : QString();
        const bool isPlain = compression.isEmpty() || extension == QLatin1String("tar");
        runProgram(QStringLiteral("tar"), (isPlain ? QStringList() : QStringList{compression}) +
                                              QStringList{QStringLiteral("-cf"), file, QStringLiteral("-C"),
                                                          folder, QStringLiteral(".")});
    }
    return contentsOf(file);
}

QByteArray InstallStage::newArchive(const QString &extension)
{
    makeBundle(m_folder / "new/Talvex LLM Trainer.app", "2");
    return archive(m_folder / "new", extension);
}

updater::InstallSurroundings InstallStage::surroundings() const
{
    updater::InstallSurroundings surroundings;
    surroundings.cachesFolder = m_folder / "Caches";
    surroundings.temporaryFolder = m_folder / "Temporary";
    surroundings.targetBundle = m_installed;
    surroundings.processId = endedProcess();
    surroundings.tools.ditto = tools() + QLatin1String("/ditto");
    surroundings.tools.hdiutil = tools() + QLatin1String("/hdiutil");
    surroundings.tools.bash = tools() + QLatin1String("/bash");
    surroundings.environment = environment;
    surroundings.userAgent = "Trainer/1";
    return surroundings;
}

QByteArrayList InstallStage::calls() const
{
    QByteArrayList lines = contentsOf(m_folder / "calls").split('\n');
    lines.removeLast();
    return lines;
}

QByteArrayList InstallStage::callsOf(const QByteArray &tool) const
{
    QByteArrayList found = calls();
    found.removeIf([&tool](const QByteArray &call) { return !call.startsWith(tool + '|'); });
    return found;
}

bool InstallStage::hasAttachedImage() const
{
    return !contentsOf(m_folder / "attached").isEmpty();
}

qint64 endedProcess()
{
    QProcess process;
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("exit 0")});
    process.waitForStarted();
    const qint64 processId = process.processId();
    process.waitForFinished();
    return processId;
}

} // namespace zorel::tests
