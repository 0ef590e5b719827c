#pragma once

#include "backend/protocol/LossPoint.h"
#include "backend/protocol/NeuronSnapshotPayload.h"
#include "library/ArchivedModelRecord.h"
#include "library/LibraryIndex.h"
#include "library/RunLibrary.h"

#include <QList>

#include <optional>
#include <vector>

namespace zorel::library {

/// The archived runs as the last scan found them. Lives on the main thread, which scans and loads; reports no
/// errors: what cannot be read is not there.
class ModelLibraryStore : public RunLibrary
{
    Q_OBJECT

public:
    explicit ModelLibraryStore(QObject *parent = nullptr);

    /// In the library's order.
    const QList<ArchivedModelRecord> &models() const { return m_models; }
    bool isLoading() const { return m_isLoading; }
    /// The folder of the last scan as it was given; empty before the first.
    const QString &lastScanPath() const { return m_lastScanPath; }

    /// Null when no run of the last scan has this id; valid until the next scan.
    const ArchivedModelRecord *modelWithId(const QString &id) const;

    /// Replaces `models` by the runs in the folder, before it returns. A folder that does not exist or cannot
    /// be listed has none.
    void scan(const QString &finishedModelsPath) override;

    const QList<LibraryGroup> &groupedByName() const { return m_index.groups(); }
    /// LibraryIndex::matching; fast enough for every key press.
    QList<LibraryGroup> filteredGroups(const QString &searchText) const
    {
        return m_index.matching(searchText);
    }

    /// What the run's files hold now, whatever was there when it was scanned; not kept. The points of the
    /// curve come in the file's order, without the lines that hold none; empty when the file cannot be read
    /// or is not UTF-8.
    std::vector<backend::protocol::LossPoint> loadLossCurve(const ArchivedModelRecord &run) const;
    std::optional<backend::protocol::NeuronSnapshotPayload>
    loadNeuronSnapshot(const ArchivedModelRecord &run) const;

Q_SIGNALS:
    /// Not after a scan that has found what was there before.
    void modelsChanged();
    void isLoadingChanged();
    void lastScanPathChanged();

private:
    void setLoading(bool loading);
    void setModels(QList<ArchivedModelRecord> models);

    QList<ArchivedModelRecord> m_models;
    LibraryIndex m_index;
    QString m_lastScanPath;
    bool m_isLoading = false;
};

} // namespace zorel::library
