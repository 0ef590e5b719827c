#pragma once

#include "library/ArchivedModelRecord.h"

#include <QList>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace zorel::library {

/// Some of the runs of a library, without copies of them: cheap to make and to hand on, and good beyond the
/// next scan.
class RunList
{
public:
    class Iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = ArchivedModelRecord;
        using difference_type = std::ptrdiff_t;
        using pointer = const ArchivedModelRecord *;
        using reference = const ArchivedModelRecord &;

        Iterator() = default;
        Iterator(const RunList &runs, qsizetype position)
            : m_runs(&runs)
            , m_position(position)
        {}
        reference operator*() const { return (*m_runs)[m_position]; }
        pointer operator->() const { return &**this; }
        Iterator &operator++()
        {
            ++m_position;
            return *this;
        }
        Iterator operator++(int) { return std::exchange(*this, Iterator(*m_runs, m_position + 1)); }
        bool operator==(const Iterator &) const = default;

    private:
        const RunList *m_runs = nullptr;
        qsizetype m_position = 0;
    };

    RunList() = default;
    /// `places` are positions in `library`.
    RunList(QList<ArchivedModelRecord> library, QList<qsizetype> places)
        : m_library(std::move(library))
        , m_places(std::move(places))
    {}

    qsizetype size() const { return m_places.size(); }
    bool isEmpty() const { return m_places.isEmpty(); }
    const ArchivedModelRecord &operator[](qsizetype position) const
    {
        return m_library.at(m_places.at(position));
    }
    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size()}; }

    /// Run by run.
    bool operator==(const RunList &other) const
    {
        return std::equal(begin(), end(), other.begin(), other.end());
    }

private:
    QList<ArchivedModelRecord> m_library;
    QList<qsizetype> m_places;
};

} // namespace zorel::library
