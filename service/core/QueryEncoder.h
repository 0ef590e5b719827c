#pragma once

#include "service/core/HTTPClient.h"
#include "service/core/RecordFields.h"

namespace caldra {

/// The query items of a record whose fields are all optional texts, integers or enumerations.
template <Record T>
QueryItems queryItems(const T &record)
{
    QueryItems items;
    const auto add = [&]<class Entry>(const Entry &entry) {
        using Value = typename Entry::ValueType::value_type;
        const auto &value = record.*entry.member;
        if (!value) {
            return;
        }
        const QString name = QString::fromLatin1(entry.name.data(), qsizetype(entry.name.size()));
        if constexpr (std::is_same_v<Value, QString>) {
            items.emplace_back(name, *value);
        } else if constexpr (std::is_same_v<Value, qint64>) {
            items.emplace_back(name, QString::number(*value));
        } else {
            const std::string_view text = wireText(*value);
            items.emplace_back(name, QString::fromLatin1(text.data(), qsizetype(text.size())));
        }
    };
    std::apply([&](const auto &...entry) { (add(entry), ...); }, T::fields);
    return items;
}

} // namespace caldra
