#pragma once

#include <QString>

#include <exception>
#include <optional>

namespace caldra {

/// Why the bundle's information dictionary holds no configuration.
class InfoPlistError : public std::exception
{
public:
    enum class Case { missingAPIKey, emptyOrganizationId };

    InfoPlistError(Case errorCase, QString key, std::optional<QString> bundleIdentifier);

    Case errorCase() const { return m_case; }
    const QString &key() const { return m_key; }
    const std::optional<QString> &bundleIdentifier() const { return m_bundleIdentifier; }
    QString description() const;
    const char *what() const noexcept override { return m_what.constData(); }

private:
    Case m_case;
    QString m_key;
    std::optional<QString> m_bundleIdentifier;
    QByteArray m_what;
};

} // namespace caldra
