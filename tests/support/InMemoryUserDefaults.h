#pragma once

#include "platform/UserDefaults.h"

#include <QMap>
#include <QVariant>

#include <functional>
#include <utility>
#include <vector>

namespace zorel::tests {

/// A store without a disk. Holds values of any type, as the system's store may, and tells what was written in
/// which order.
class InMemoryUserDefaults final : public platform::UserDefaults
{
public:
    using Write = std::pair<QString, QVariant>;

    QMap<QString, QVariant> values;
    std::vector<Write> writes;
    int synchronizations = 0;
    /// Called after each write.
    std::function<void(const Write &)> onWrite;

    std::optional<QString> string(const QString &key) const override
    {
        const QVariant value = values.value(key);
        return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
    }
    void setString(const QString &key, const QString &value) override { write(key, value); }

    std::optional<bool> boolean(const QString &key) const override
    {
        const QVariant value = values.value(key);
        return value.typeId() == QMetaType::Bool ? std::optional(value.toBool()) : std::nullopt;
    }
    void setBoolean(const QString &key, bool value) override { write(key, value); }

    void synchronize() override { ++synchronizations; }

private:
    void write(const QString &key, const QVariant &value)
    {
        values.insert(key, value);
        writes.emplace_back(key, value);
        if (onWrite) {
            onWrite(writes.back());
        }
    }
};

} // namespace zorel::tests
