#pragma once

#include "platform/UserDefaults.h"

#include <QHash>

namespace zorel::terminal {

/// Reads through to another store and keeps what is written to itself: settings that hold for one run only.
class OverlayUserDefaults : public platform::UserDefaults
{
public:
    /// `base` must outlive this object.
    explicit OverlayUserDefaults(const platform::UserDefaults &base);

    std::optional<QString> string(const QString &key) const override;
    void setString(const QString &key, const QString &value) override;
    std::optional<bool> boolean(const QString &key) const override;
    void setBoolean(const QString &key, bool value) override;

private:
    const platform::UserDefaults &m_base;
    QHash<QString, QString> m_strings;
    QHash<QString, bool> m_booleans;
};

} // namespace zorel::terminal
