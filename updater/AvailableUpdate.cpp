#include "updater/AvailableUpdate.h"

#include "service/core/ServiceEndpoints.h"
#include "service/distribution/DistributionResponses.h"
#include "updater/ArchiveKind.h"
#include "updater/UpdateError.h"

#include <QFile>

#include <algorithm>

namespace zorel::updater {

namespace {

/// What every file system of ours takes for one name, in bytes.
constexpr qsizetype longestFileName = 255;

bool isDigest(const QString &text)
{
    constexpr qsizetype digits = 64;
    return text.size() == digits && std::all_of(text.begin(), text.end(), [](QChar character) {
               return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'f');
           });
}

bool isOnePathComponent(const QString &name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(u'/') && !name.contains(QChar(u'\0')) &&
           QFile::encodeName(name).size() <= longestFileName;
}

template <class Enumeration>
QString wireTextOf(Enumeration value)
{
    const std::string_view text = caldra::wireText(value);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

AvailableUpdate AvailableUpdate::from(const caldra::DistributionLatestResponse &latest)
{
    const caldra::DistributionRelease &release = latest.release;
    const caldra::DistributionArtifact &artifact = latest.artifact;
    const QUrl address(artifact.downloadUrl, QUrl::StrictMode);
    if (!address.isValid() || address.isRelative()) {
        throw UpdateError(UpdateError::Decode{});
    }
    AvailableUpdate update;
    update.version = artifact.version && !artifact.version->isEmpty() ? *artifact.version : release.version;
    update.channel = wireTextOf(release.channel);
    update.notes = release.notes.value_or(QString());
    update.releasedAt = release.releasedAt;
    update.downloadUrl = address;
    update.fileName = artifact.fileName;
    update.sizeBytes = artifact.sizeBytes;
    update.sha256 = artifact.sha256;
    update.minOsVersion = artifact.minOsVersion;
    if (artifact.architecture) {
        update.architecture = wireTextOf(*artifact.architecture);
    }
    return update;
}

void requireInstallable(const AvailableUpdate &update)
{
    if (!update.sha256 || !isDigest(*update.sha256) || !caldra::isAllowedAddress(update.downloadUrl) ||
        !isOnePathComponent(update.fileName) || update.sizeBytes <= 0) {
        throw UpdateError(UpdateError::Decode{});
    }
    archiveKindOf(update.fileName);
}

} // namespace zorel::updater
