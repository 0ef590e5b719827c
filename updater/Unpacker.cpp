#include "updater/Unpacker.h"

#include "updater/ArchiveKind.h"
#include "updater/Cancellation.h"
#include "updater/FileTree.h"
#include "updater/InstallSurroundings.h"
#include "updater/ToolRunner.h"
#include "updater/UpdateError.h"
#include "updater/ZipInspection.h"

#include <QFile>
#include <QUuid>

#include <exception>
#include <utility>

#include <sys/stat.h>

namespace zorel::updater {

Unpacker::Unpacker(QString workingFolder, const InstallSurroundings &surroundings,
                   const Cancellation &cancellation)
    : m_workingFolder(std::move(workingFolder))
    , m_surroundings(surroundings)
    , m_cancellation(cancellation)
{}

void Unpacker::unpack(const QString &archive, const QString &sha256, const QString &staged) const
{
    const FileDigest handedOver = digestOf(archive, m_cancellation);
    if (handedOver.hexadecimal != sha256) {
        throw UpdateError(UpdateError::ChecksumMismatch{sha256, handedOver.hexadecimal});
    }
    run(archive, staged);
    if (FileIdentity::of(archive) != handedOver.identity) {
        throw UpdateError(UpdateError::ExtractionFailed{
            QStringLiteral("the downloaded file was changed while it was unpacked")});
    }
}

void Unpacker::run(const QString &archive, const QString &staged) const
{
    const ToolPaths &tools = m_surroundings.tools;
    switch (archiveKindOf(archive)) {
    case ArchiveKind::zip:
        requireSafeZip(archive, m_surroundings.limits);
        unpackWith(tools.ditto, {QStringLiteral("-x"), QStringLiteral("-k"), archive, staged}, staged);
        break;
    case ArchiveKind::diskImage:
        copyFromDiskImage(archive, staged);
        break;
    case ArchiveKind::tape:
        unpackWith(tools.tar, {QStringLiteral("-xf"), archive, QStringLiteral("-C"), staged}, staged);
        break;
    }
}

void Unpacker::copyFromDiskImage(const QString &image, const QString &staged) const
{
    const QString mountPoint = m_workingFolder + QLatin1String("/.mount-") +
                               QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    if (::mkdir(QFile::encodeName(mountPoint).constData(), S_IRWXU) != 0) {
        throw UpdateError(UpdateError::ExtractionFailed{qt_error_string(errno)});
    }
    std::exception_ptr failure;
    try {
        unpackWith(m_surroundings.tools.hdiutil,
                   {QStringLiteral("attach"), QStringLiteral("-nobrowse"), QStringLiteral("-noautoopen"),
                    QStringLiteral("-readonly"), QStringLiteral("-mountpoint"), mountPoint, image},
                   staged);
        copyBundle(mountPoint, staged);
    } catch (const UpdateError &) {
        failure = std::current_exception();
    }
    // Also when attaching failed or was cut off, which may leave the image attached; and not cut off itself.
    const Cancellation never;
    const ToolRunner runner(m_surroundings.environment, m_surroundings.limits.detach, never);
    try {
        runner.unpackWith(m_surroundings.tools.hdiutil, {QStringLiteral("detach"), QStringLiteral("-quiet"),
                                                         QStringLiteral("-force"), mountPoint});
    } catch (const UpdateError &) {
        if (!failure) {
            throw;
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void Unpacker::copyBundle(const QString &mountPoint, const QString &staged) const
{
    const std::optional<QString> bundle = findBundle(mountPoint);
    if (!bundle) {
        throw UpdateError(UpdateError::AppNotFoundInArtifact{});
    }
    unpackWith(m_surroundings.tools.cp, {QStringLiteral("-R"), *bundle, staged}, staged);
}

void Unpacker::unpackWith(const QString &tool, const QStringList &arguments, const QString &staged) const
{
    ToolRunner runner(m_surroundings.environment, m_surroundings.limits.tool, m_cancellation);
    // A small archive can unpack to more than the disk holds.
    runner.setWatch([this, &staged] { requireWithinLimits(staged, m_surroundings.limits); });
    runner.unpackWith(tool, arguments);
}

} // namespace zorel::updater
