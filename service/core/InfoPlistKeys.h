#pragma once

#include <QString>

namespace caldra {

/// The names of the keys in the bundle's information dictionary.
struct InfoPlistKeys
{
    QString apiKey = QStringLiteral("CaldraAPIKey");
    QString organizationId = QStringLiteral("CaldraOrganizationId");
};

} // namespace caldra
