#pragma once

#include "platform/UserDefaults.h"

class QSettings;

namespace zorel::platform {

/// User defaults in the system's own store, through a QSettings in its native format. Keys are given as the
/// system's store shows them ("zorel.modelName"). Only for systems whose QSettings hands writing over to a
/// service of the system: where it writes files itself, it reports success on a full disk and may wait half a
/// minute for the lock of a killed process.
class QSettingsUserDefaults final : public UserDefaults
{
public:
    explicit QSettingsUserDefaults(std::unique_ptr<QSettings> settings);
    ~QSettingsUserDefaults() override;

    std::optional<QString> string(const QString &key) const override;
    void setString(const QString &key, const QString &value) override;
    std::optional<bool> boolean(const QString &key) const override;
    void setBoolean(const QString &key, bool value) override;
    std::optional<QDateTime> date(const QString &key) const override;
    void setDate(const QString &key, const QDateTime &value) override;
    void synchronize() override;

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace zorel::platform
