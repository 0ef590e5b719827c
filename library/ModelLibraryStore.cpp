#include "library/ModelLibraryStore.h"

#include "backend/protocol/SnapshotDecoder.h"
#include "library/LossCurveReader.h"
#include "library/RegularFile.h"
#include "library/RunFiles.h"
#include "library/RunScan.h"

#include <QFile>

#include <algorithm>
#include <utility>

#include <fcntl.h>

namespace zorel::library {

namespace {

QByteArray pathOf(const ArchivedModelRecord &run, const char *file)
{
    return QFile::encodeName(run.path) + '/' + file;
}

} // namespace

ModelLibraryStore::ModelLibraryStore(QObject *parent)
    : RunLibrary(parent)
{}

const ArchivedModelRecord *ModelLibraryStore::modelWithId(const QString &id) const
{
    const auto model = std::ranges::find(m_models, id, &ArchivedModelRecord::id);
    return model != m_models.end() ? &*model : nullptr;
}

void ModelLibraryStore::scan(const QString &finishedModelsPath)
{
    setLoading(true);
    if (m_lastScanPath != finishedModelsPath) {
        m_lastScanPath = finishedModelsPath;
        Q_EMIT lastScanPathChanged();
    }
    setModels(scanRuns(finishedModelsPath));
    setLoading(false);
}

std::vector<backend::protocol::LossPoint>
ModelLibraryStore::loadLossCurve(const ArchivedModelRecord &run) const
{
    return readLossCurve(pathOf(run, lossCurveFile).constData());
}

std::optional<backend::protocol::NeuronSnapshotPayload>
ModelLibraryStore::loadNeuronSnapshot(const ArchivedModelRecord &run) const
{
    FileContent content;
    const bool isRead = content.read(AT_FDCWD, pathOf(run, neuronSnapshotFile).constData(), mostBytesOfAFile);
    return isRead ? backend::protocol::decodeSnapshot(content.text(), content.readable()) : std::nullopt;
}

void ModelLibraryStore::setLoading(bool loading)
{
    if (std::exchange(m_isLoading, loading) != loading) {
        Q_EMIT isLoadingChanged();
    }
}

void ModelLibraryStore::setModels(QList<ArchivedModelRecord> models)
{
    if (models != m_models) {
        m_models = std::move(models);
        m_index = LibraryIndex(m_models);
        Q_EMIT modelsChanged();
    }
}

} // namespace zorel::library
