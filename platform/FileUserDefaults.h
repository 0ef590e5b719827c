#pragma once

#include "platform/UserDefaults.h"

#include <QJsonObject>
#include <QObject>

#include <cstdint>

namespace zorel::platform {

/// User defaults in a file of ours: one JSON object, keys sorted, a key a line.
///
/// What is set during one turn of the event loop is written together on the next, and never written in part:
/// a crash, a full disk or another instance leaves the old values or the new ones. Only keys that were set
/// are written over what the file holds by then, so that instances keep each other's values and those of a
/// later version. A file that is no JSON object is kept beside the new one. What cannot be written stays in
/// memory and is tried again with the next change.
class FileUserDefaults final : public UserDefaults
{
public:
    /// `filePath` is absolute; its folder is made when the first value is written.
    explicit FileUserDefaults(const QString &filePath);
    ~FileUserDefaults() override;

    std::optional<QString> string(const QString &key) const override;
    void setString(const QString &key, const QString &value) override;
    std::optional<bool> boolean(const QString &key) const override;
    void setBoolean(const QString &key, bool value) override;
    void synchronize() override;

private:
    enum class Outcome : std::uint8_t { written, lockedByOther, failed };

    void set(const QString &key, const QJsonValue &value);
    void persistOnThisTurn();
    Outcome persist();

    QString m_filePath;
    QJsonObject m_values;
    QJsonObject m_unwritten;
    /// Receives the calls for the next turn, and takes them with it when it goes.
    QObject m_nextTurn;
    bool m_scheduled = false;
    bool m_warned = false;
};

} // namespace zorel::platform
