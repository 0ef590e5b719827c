#pragma once

#include "library/RunList.h"

#include <QList>
#include <QString>

#include <vector>

namespace zorel::library {

/// The runs of one model name, in the library's order.
struct LibraryGroup
{
    QString name;
    RunList runs;

    bool operator==(const LibraryGroup &) const = default;
};

/// Runs grouped by name and ready to be searched at every key press.
class LibraryIndex
{
public:
    LibraryIndex() = default;
    /// `runs` in the library's order.
    explicit LibraryIndex(const QList<ArchivedModelRecord> &runs);

    /// By name, ascending, upper case before lower case.
    const QList<LibraryGroup> &groups() const { return m_groups; }

    /// The runs whose name, version or folder name contains `query`, in whatever case; everything when it is
    /// empty. Spaces count. Groups without such runs are left out.
    QList<LibraryGroup> matching(const QString &query) const;

private:
    /// What a run is searched by, in lower case.
    struct RunKeys
    {
        QString version;
        QString folderName;
        qsizetype place; ///< in m_runs
    };
    struct GroupKeys
    {
        QString name;
        std::vector<RunKeys> runs;
    };

    RunList matching(const GroupKeys &group, const QString &lowerQuery) const;

    QList<ArchivedModelRecord> m_runs;
    QList<LibraryGroup> m_groups;
    std::vector<GroupKeys> m_keys; ///< of each group
};

} // namespace zorel::library
