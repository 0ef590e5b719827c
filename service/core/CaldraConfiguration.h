#pragma once

#include "service/core/InfoPlistKeys.h"
#include "service/core/ServiceEndpoints.h"

#include <QString>
#include <QVariantMap>

#include <map>
#include <optional>

class QDebug;

namespace caldra {

/// What a client needs to know before its first call.
struct CaldraConfiguration
{
    QString apiKey;
    QString organizationId;
    ServiceEndpoints endpoints = ServiceEndpoints::production();
    /// Added to every request, last, so that they win over the library's own.
    std::map<QString, QString> defaultHeaders;
    /// Seconds that a whole call may take, redirects included; what is no positive number counts as 60.
    double timeout = 60;

    bool operator==(const CaldraConfiguration &) const = default;

    /// Reads the API key and the organization id from a bundle's information dictionary. The key
    /// "CaldraServiceHost" there replaces the production host of `endpoints`. Throws InfoPlistError.
    static CaldraConfiguration
    fromInfoDictionary(const QVariantMap &information, const InfoPlistKeys &keys = {},
                       const std::optional<QString> &bundleIdentifier = {},
                       const ServiceEndpoints &endpoints = ServiceEndpoints::production(),
                       const std::map<QString, QString> &defaultHeaders = {}, double timeout = 60);
};

/// The organization of a bundle that names none.
QString defaultOrganizationId();

/// Without the API key and without the values of the headers.
QDebug operator<<(QDebug debug, const CaldraConfiguration &configuration);

} // namespace caldra
