#include "library/LibraryIndex.h"

#include <QMap>

namespace zorel::library {

LibraryIndex::LibraryIndex(const QList<ArchivedModelRecord> &runs)
    : m_runs(runs)
{
    QMap<QString, QList<qsizetype>> placesByName;
    for (qsizetype place = 0; place < runs.size(); ++place) {
        placesByName[runs[place].name].append(place);
    }
    m_groups.reserve(placesByName.size());
    m_keys.reserve(static_cast<std::size_t>(placesByName.size()));
    for (auto group = placesByName.cbegin(); group != placesByName.cend(); ++group) {
        m_groups.append({group.key(), RunList(m_runs, group.value())});
        GroupKeys &keys = m_keys.emplace_back(GroupKeys{group.key().toLower(), {}});
        keys.runs.reserve(static_cast<std::size_t>(group->size()));
        for (const qsizetype place : *group) {
            keys.runs.push_back({runs[place].version.toLower(), runs[place].folderName.toLower(), place});
        }
    }
}

QList<LibraryGroup> LibraryIndex::matching(const QString &query) const
{
    if (query.isEmpty()) {
        return m_groups;
    }
    const QString lowerQuery = query.toLower();
    QList<LibraryGroup> found;
    for (qsizetype place = 0; place < m_groups.size(); ++place) {
        const GroupKeys &keys = m_keys[static_cast<std::size_t>(place)];
        if (keys.name.contains(lowerQuery)) {
            found.append(m_groups[place]);
        } else if (RunList runs = matching(keys, lowerQuery); !runs.isEmpty()) {
            found.append({m_groups[place].name, std::move(runs)});
        }
    }
    return found;
}

RunList LibraryIndex::matching(const GroupKeys &group, const QString &lowerQuery) const
{
    QList<qsizetype> places;
    for (const RunKeys &run : group.runs) {
        if (run.version.contains(lowerQuery) || run.folderName.contains(lowerQuery)) {
            places.append(run.place);
        }
    }
    return {m_runs, std::move(places)};
}

} // namespace zorel::library
