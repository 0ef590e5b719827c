#pragma once

#include <QUrl>

namespace caldra {

/// The base address of each service.
struct ServiceEndpoints
{
    QUrl distribution;
    QUrl support;
    QUrl sales;
    QUrl careers;
    QUrl newsroom;
    QUrl developer; ///< feature flags
    QUrl systemStatus;
    QUrl legalPolicies;

    bool operator==(const ServiceEndpoints &) const = default;

    /// The services' addresses on one host, such as "https://staging.example:8443"; a bare name means https.
    /// A host that is no address, or that is plain http on another machine, yields addresses that every call
    /// refuses.
    static ServiceEndpoints onHost(const QString &host);
    static ServiceEndpoints production();

    /// The same endpoints, those on the production host moved to `host`.
    ServiceEndpoints withProductionHostReplaced(const QString &host) const;
};

/// Where the services run unless the configuration says otherwise.
QString productionHost();

/// Whether requests may go to `url`: https with a host, or plain http on a loopback address; no user
/// information.
bool isAllowedAddress(const QUrl &url);
bool isLoopback(const QUrl &url);

} // namespace caldra
