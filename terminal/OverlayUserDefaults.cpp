#include "terminal/OverlayUserDefaults.h"

namespace zorel::terminal {

OverlayUserDefaults::OverlayUserDefaults(const platform::UserDefaults &base)
    : m_base(base)
{}

std::optional<QString> OverlayUserDefaults::string(const QString &key) const
{
    if (const auto written = m_strings.constFind(key); written != m_strings.constEnd()) {
        return *written;
    }
    return m_booleans.contains(key) ? std::nullopt : m_base.string(key);
}

void OverlayUserDefaults::setString(const QString &key, const QString &value)
{
    m_booleans.remove(key);
    m_strings.insert(key, value);
}

std::optional<bool> OverlayUserDefaults::boolean(const QString &key) const
{
    if (const auto written = m_booleans.constFind(key); written != m_booleans.constEnd()) {
        return *written;
    }
    return m_strings.contains(key) ? std::nullopt : m_base.boolean(key);
}

void OverlayUserDefaults::setBoolean(const QString &key, bool value)
{
    m_strings.remove(key);
    m_booleans.insert(key, value);
}

} // namespace zorel::terminal
