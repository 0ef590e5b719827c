#include "updater/InstallTask.h"

#include "platform/AtomicFile.h"
#include "platform/ChildProcess.h"
#include "updater/ArtifactDownload.h"
#include "updater/Cancellation.h"
#include "updater/FileDigest.h"
#include "updater/FileTree.h"
#include "updater/InstallSurroundings.h"
#include "updater/InstallerScript.h"
#include "updater/ProgressThrottle.h"
#include "updater/ToolRunner.h"
#include "updater/Unpacker.h"
#include "updater/UpdateError.h"
#include "updater/WorkingFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <optional>
#include <utility>

namespace zorel::updater {

namespace {

[[noreturn]] void failUnpacking(const QString &reason)
{
    throw UpdateError(UpdateError::ExtractionFailed{reason});
}

[[noreturn]] void failRelaunching(const QString &reason)
{
    throw UpdateError(UpdateError::RelaunchFailed{reason});
}

/// Also of a volume of which the system cannot tell.
void requireRoom(const QString &folder, qint64 bytes)
{
    const qint64 free = QStorageInfo(folder).bytesAvailable();
    if (free >= 0 && free < bytes) {
        failUnpacking(QStringLiteral("%1 has room for %2 bytes only, and %3 are needed")
                          .arg(folder, QString::number(free), QString::number(bytes)));
    }
}

/// However the launcher fails, unpacking is over.
int statusOfLauncher(const ToolRunner &runner, const QString &bash, const QString &command)
{
    try {
        return runner.run(bash, {QStringLiteral("-c"), command}).status;
    } catch (const platform::LaunchError &error) {
        failRelaunching(QString::fromUtf8(error.what()));
    } catch (const UpdateError &error) {
        const auto *const hung = std::get_if<UpdateError::ExtractionFailed>(&error.payload());
        failRelaunching(hung != nullptr ? hung->text : error.message());
    }
}

} // namespace

InstallTask::InstallTask(const AvailableUpdate &update, const InstallSurroundings &surroundings,
                         const Cancellation &cancellation, Publish publish)
    : m_update(update)
    , m_surroundings(surroundings)
    , m_cancellation(cancellation)
    , m_publish(std::move(publish))
{}

RelaunchHandoff InstallTask::run()
{
    requireInstallable(m_update);
    if (m_surroundings.targetBundle.isEmpty()) {
        failRelaunching(QStringLiteral("this copy of the program is not an application bundle"));
    }
    WorkingFolder folder(m_surroundings);
    const QString archive = folder.path() + u'/' + m_update.fileName;

    m_publish(InstallState::Value(InstallState::Downloading{}));
    download(archive);

    m_publish(InstallState::Value(InstallState::Verifying{}));
    verify(archive);

    m_publish(InstallState::Value(InstallState::Installing{}));
    const QString newBundle = unpack(archive, folder);
    requireReplaceableTarget();
    requireRoomFor(requireSelfContained(newBundle, m_surroundings.limits, m_cancellation).bytes);

    m_publish(InstallState::Value(InstallState::Relaunching{}));
    RelaunchHandoff handoff = writeScript(newBundle, folder);
    launch(handoff);
    folder.keep();
    return handoff;
}

void InstallTask::download(const QString &archive) const
{
    const QFileInfo file(archive);
    requireRoom(file.path(), m_update.sizeBytes);
    ProgressThrottle throttle;
    const DownloadProgressDelegate delegate{[&](qint64 written, qint64 expectedTotal) {
        if (written == expectedTotal || throttle.lets(std::chrono::steady_clock::now())) {
            const auto total = expectedTotal < 0 ? std::nullopt : std::optional(expectedTotal);
            m_publish(InstallState::Value(InstallState::Downloading{written, total}));
        }
    }};
    const ArtifactDownload artifact{m_update.downloadUrl, m_update.sizeBytes, m_surroundings.userAgent,
                                    m_surroundings.limits.downloadInactivity,
                                    m_surroundings.trustedAuthorities};
    // Under the file's own name stands only what is whole.
    const QString partial = file.path() + QLatin1String("/download.part");
    artifact.run(partial, delegate, m_cancellation);
    QFile::remove(archive);
    if (!QFile::rename(partial, archive)) {
        failUnpacking(
            QStringLiteral("the downloaded file could not be renamed to %1").arg(m_update.fileName));
    }
}

void InstallTask::verify(const QString &archive) const
{
    const QString actual = digestOf(archive, m_cancellation).hexadecimal;
    if (actual != m_update.sha256) {
        throw UpdateError(UpdateError::ChecksumMismatch{*m_update.sha256, actual});
    }
}

QString InstallTask::unpack(const QString &archive, const WorkingFolder &folder) const
{
    // The unpacker takes the digest once more: minutes may have passed, and another file may be there.
    Unpacker(folder.path(), m_surroundings, m_cancellation)
        .unpack(archive, *m_update.sha256, folder.staged());
    requireSelfContained(folder.staged(), m_surroundings.limits, m_cancellation);
    const std::optional<QString> bundle = findBundle(folder.staged());
    if (!bundle) {
        throw UpdateError(UpdateError::AppNotFoundInArtifact{});
    }
    return *bundle;
}

void InstallTask::requireReplaceableTarget() const
{
    const QFileInfo folder(QFileInfo(m_surroundings.targetBundle).path());
    if (!folder.isDir() || !folder.isWritable()) {
        throw UpdateError(UpdateError::TargetNotWritable{folder.filePath()});
    }
}

/// The script copies the new bundle while the old one is still there.
void InstallTask::requireRoomFor(qint64 bytes) const
{
    requireRoom(QFileInfo(m_surroundings.targetBundle).path(), bytes);
}

RelaunchHandoff InstallTask::writeScript(const QString &newBundle, const WorkingFolder &folder) const
{
    if (!fitsAdministratorCommand(newBundle)) {
        failRelaunching(
            QStringLiteral("the path %1 holds a quotation mark, a backslash or a control character")
                .arg(newBundle));
    }
    RelaunchHandoff handoff = RelaunchHandoff::in(folder.path());
    const InstallerScript script{m_surroundings.processId, newBundle, targetForScript(folder),
                                 handoff.logPath, handoff.exitedSentinelPath};
    if (!platform::replaceFile(handoff.scriptPath, script.text().toUtf8())) {
        failRelaunching(
            QStringLiteral("the installer script could not be written to %1").arg(handoff.scriptPath));
    }
    return handoff;
}

/// The path of the installed bundle, or one to the same place that the script's administrator command can
/// carry: through a link in the working folder.
QString InstallTask::targetForScript(const WorkingFolder &folder) const
{
    if (fitsAdministratorCommand(m_surroundings.targetBundle)) {
        return m_surroundings.targetBundle;
    }
    const QFileInfo target(m_surroundings.targetBundle);
    const QString link = folder.path() + QLatin1String("/target");
    if (!fitsAdministratorCommand(target.fileName()) || !QFile::link(target.path(), link)) {
        failRelaunching(QStringLiteral("the name of the app holds a quotation mark, a backslash or a control "
                                       "character: %1")
                            .arg(target.fileName()));
    }
    return link + u'/' + target.fileName();
}

void InstallTask::launch(const RelaunchHandoff &handoff) const
{
    // Cutting off the launcher could leave the script running without its files.
    m_cancellation.throwIfCancelled();
    const Cancellation never;
    const ToolRunner runner(m_surroundings.environment, m_surroundings.limits.launcher, never);
    const QString command = QStringLiteral("(nohup /bin/bash ") + shellQuoted(handoff.scriptPath) +
                            QStringLiteral(" </dev/null >/dev/null 2>&1 &)");
    const int status = statusOfLauncher(runner, m_surroundings.tools.bash, command);
    if (status != 0) {
        failRelaunching(QStringLiteral("installer launcher exited %1").arg(status));
    }
}

} // namespace zorel::updater
