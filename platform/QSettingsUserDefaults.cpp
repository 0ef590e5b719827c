#include "platform/QSettingsUserDefaults.h"

#include <QCoreApplication>
#include <QSettings>
#include <QVariant>

#include <utility>

namespace zorel::platform {

namespace {

/// The key under which QSettings reaches the system's key: it writes its own separator "/" there as ".".
QString settingsKey(QString key)
{
    return key.replace(u'.', u'/');
}

} // namespace

QSettingsUserDefaults::QSettingsUserDefaults(std::unique_ptr<QSettings> settings)
    : m_settings(std::move(settings))
{
    // Otherwise a key of another application of ours, or of the whole system, would read as our own.
    m_settings->setFallbacksEnabled(false);
    if (const QCoreApplication *const application = QCoreApplication::instance()) {
        m_settings->moveToThread(application->thread());
    }
}

QSettingsUserDefaults::~QSettingsUserDefaults() = default;

std::optional<QString> QSettingsUserDefaults::string(const QString &key) const
{
    const QVariant value = m_settings->value(settingsKey(key));
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

void QSettingsUserDefaults::setString(const QString &key, const QString &value)
{
    m_settings->setValue(settingsKey(key), value);
}

std::optional<bool> QSettingsUserDefaults::boolean(const QString &key) const
{
    const QVariant value = m_settings->value(settingsKey(key));
    return value.typeId() == QMetaType::Bool ? std::optional(value.toBool()) : std::nullopt;
}

void QSettingsUserDefaults::setBoolean(const QString &key, bool value)
{
    m_settings->setValue(settingsKey(key), value);
}

std::optional<QDateTime> QSettingsUserDefaults::date(const QString &key) const
{
    const QVariant value = m_settings->value(settingsKey(key));
    return value.typeId() == QMetaType::QDateTime && value.toDateTime().isValid()
               ? std::optional(value.toDateTime())
               : std::nullopt;
}

void QSettingsUserDefaults::setDate(const QString &key, const QDateTime &value)
{
    // Of any other zone it would be stored as a text.
    m_settings->setValue(settingsKey(key), value.toLocalTime());
}

void QSettingsUserDefaults::synchronize()
{
    m_settings->sync();
}

} // namespace zorel::platform
