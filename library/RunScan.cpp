#include "library/RunScan.h"

#include "backend/protocol/Utf8Text.h"
#include "library/FolderWalk.h"
#include "library/ManifestReader.h"
#include "library/RunFiles.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace zorel::library {

namespace {

/// The absolute path, with one slash at its end.
QString rootOf(const QString &path)
{
    QString root = QDir::isAbsolutePath(path) ? path : QDir::current().absoluteFilePath(path);
    while (root.endsWith(u'/')) {
        root.chop(1);
    }
    return root + u'/';
}

std::optional<ArchiveDate> modificationDate(const QString &path)
{
    const QDateTime date = QFileInfo(path).lastModified();
    return date.isValid() ? std::optional<ArchiveDate>(std::chrono::milliseconds(date.toMSecsSinceEpoch()))
                          : std::nullopt;
}

class RunScan
{
public:
    explicit RunScan(const QString &path)
        : m_root(rootOf(path))
        , m_walk(path, FolderWalk::Hidden::skipped)
    {}

    std::vector<ArchivedModelRecord> run()
    {
        std::vector<ArchivedModelRecord> records;
        ArchivedModelRecord record;
        while (m_walk.next()) {
            if (readRun(record)) {
                records.push_back(std::move(record));
            }
        }
        return records;
    }

private:
    bool readRun(ArchivedModelRecord &record)
    {
        const std::string_view name = m_walk.name();
        const bool isText = QUtf8StringView(name.data(), qsizetype(name.size())).isValidUtf8();
        if (!isText || !m_walk.read(manifestFile, mostBytesOfAFile, m_manifest)) {
            return false;
        }
        record.folderName = backend::protocol::toQString(m_walk.name());
        if (!m_manifests.read(m_manifest.text(), m_manifest.readable(), record)) {
            return false;
        }
        record.path = m_root + record.folderName;
        record.id = record.path;
        if (!record.archivedAt) {
            record.archivedAt = modificationDate(record.path);
        }
        record.hasNeuronSnapshot = m_walk.has(neuronSnapshotFile);
        record.hasLossCurve = m_walk.has(lossCurveFile);
        return true;
    }

    QString m_root;
    FolderWalk m_walk;
    FileContent m_manifest;
    ManifestReader m_manifests;
};

} // namespace

QList<ArchivedModelRecord> scanRuns(const QString &finishedModelsPath)
{
    std::vector<ArchivedModelRecord> records = RunScan(finishedModelsPath).run();
    // Records are large, and lie far apart: their dates and places are quicker to compare and to move about.
    std::vector<std::pair<std::optional<ArchiveDate>, std::size_t>> order;
    order.reserve(records.size());
    for (const ArchivedModelRecord &record : records) {
        order.emplace_back(record.archivedAt, order.size());
    }
    std::ranges::sort(order, [&records](const auto &run, const auto &other) {
        return run.first != other.first ? run.first > other.first
                                        : comesBefore(records[run.second], records[other.second]);
    });
    QList<ArchivedModelRecord> sorted;
    sorted.reserve(qsizetype(records.size()));
    for (const auto &[date, place] : order) {
        sorted.append(std::move(records[place]));
    }
    return sorted;
}

} // namespace zorel::library
