#include "ui/library/RunListModel.h"

#include "ui/library/RunTexts.h"

#include <algorithm>

namespace zorel::ui::library {

using zorel::library::ArchivedModelRecord;

void RunListModel::setGroups(QList<zorel::library::LibraryGroup> groups)
{
    beginResetModel();
    m_groups = std::move(groups);
    m_rows.clear();
    for (int group = 0; group < m_groups.size(); ++group) {
        m_rows.push_back({group, groupRow});
        const auto runs = static_cast<int>(m_groups[group].runs.size());
        for (int run = 0; run < runs; ++run) {
            m_rows.push_back({group, run});
        }
    }
    endResetModel();
}

void RunListModel::setBaseline(const QString &id)
{
    if (id == m_baseline) {
        return;
    }
    const QModelIndex before = indexOf(m_baseline);
    m_baseline = id;
    for (const QModelIndex &index : {before, indexOf(id)}) {
        if (index.isValid()) {
            Q_EMIT dataChanged(index, index);
        }
    }
}

bool RunListModel::isGroup(const QModelIndex &index) const
{
    return index.isValid() && m_rows[static_cast<std::size_t>(index.row())].run == groupRow;
}

const ArchivedModelRecord *RunListModel::run(const QModelIndex &index) const
{
    if (!index.isValid() || isGroup(index)) {
        return nullptr;
    }
    const Row row = m_rows[static_cast<std::size_t>(index.row())];
    return &m_groups[row.group].runs[row.run];
}

QString RunListModel::groupName(const QModelIndex &index) const
{
    return index.isValid() ? m_groups[m_rows[static_cast<std::size_t>(index.row())].group].name : QString();
}

QModelIndex RunListModel::indexOf(const QString &id) const
{
    if (id.isEmpty()) {
        return {};
    }
    const auto found = std::find_if(m_rows.begin(), m_rows.end(), [&](Row row) {
        return row.run != groupRow && m_groups[row.group].runs[row.run].id == id;
    });
    return found == m_rows.end() ? QModelIndex() : index(static_cast<int>(found - m_rows.begin()));
}

QModelIndex RunListModel::firstRun() const
{
    return m_rows.size() > 1 ? index(1) : QModelIndex();
}

int RunListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QString RunListModel::description(const ArchivedModelRecord &run) const
{
    QStringList parts{nameAndVersion(run), QStringLiteral("loss ") + rowLossText(run)};
    if (const QString date = shortDateText(run); !date.isEmpty()) {
        parts << date;
    }
    if (run.id == m_baseline) {
        parts << QStringLiteral("baseline");
    }
    return parts.join(QStringLiteral(", "));
}

QVariant RunListModel::data(const QModelIndex &index, int role) const
{
    const ArchivedModelRecord *record = run(index);
    switch (role) {
    case Qt::DisplayRole:
        return record ? nameAndVersion(*record) : groupName(index);
    case Qt::AccessibleTextRole:
        return record ? description(*record) : groupName(index);
    case IdRole:
        return record ? record->id : QString();
    case IsBaselineRole:
        return record && record->id == m_baseline;
    default:
        return {};
    }
}

Qt::ItemFlags RunListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags leaf = Qt::ItemNeverHasChildren;
    // The keyboard passes over what is not enabled.
    return isGroup(index) ? leaf : leaf | Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

} // namespace zorel::ui::library
