#pragma once

#include "library/LibraryIndex.h"

#include <QAbstractListModel>

#include <vector>

namespace zorel::ui::library {

/// The library's groups as one list: each group's name, a row that cannot be chosen, and its runs below it.
class RunListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        IdRole = Qt::UserRole, ///< of a run; empty for a group's row
        IsBaselineRole,
    };

    using QAbstractListModel::QAbstractListModel;

    void setGroups(QList<zorel::library::LibraryGroup> groups);
    /// Marks a run; an empty or unknown id marks none.
    void setBaseline(const QString &id);

    bool isGroup(const QModelIndex &index) const;
    /// Null for a group's row.
    const zorel::library::ArchivedModelRecord *run(const QModelIndex &index) const;
    QString groupName(const QModelIndex &index) const;
    /// Invalid when the list has no such run.
    QModelIndex indexOf(const QString &id) const;
    /// Invalid in an empty list.
    QModelIndex firstRun() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    static constexpr int groupRow = -1;
    struct Row
    {
        int group;
        int run; ///< groupRow for the group's own
    };

    QString description(const zorel::library::ArchivedModelRecord &run) const;

    QList<zorel::library::LibraryGroup> m_groups;
    std::vector<Row> m_rows;
    QString m_baseline;
};

} // namespace zorel::ui::library
