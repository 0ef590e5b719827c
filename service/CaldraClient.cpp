#include "service/CaldraClient.h"

#include "service/core/NetworkTransport.h"

namespace caldra {

namespace {

template <class Service>
Service serviceAt(const QUrl &baseURL, const CaldraClient &client)
{
    return {HTTPClient{baseURL, client.configuration, client.transport}, client.configuration.organizationId};
}

} // namespace

CaldraClient::CaldraClient(CaldraConfiguration clientConfiguration,
                           std::shared_ptr<CaldraTransport> clientTransport)
    : configuration(std::move(clientConfiguration))
    , transport(clientTransport ? std::move(clientTransport) : std::make_shared<NetworkTransport>())
    , distribution(serviceAt<DistributionService>(configuration.endpoints.distribution, *this))
    , support(serviceAt<SupportService>(configuration.endpoints.support, *this))
    , sales(serviceAt<SalesService>(configuration.endpoints.sales, *this))
    , careers(serviceAt<CareersService>(configuration.endpoints.careers, *this))
    , newsroom(serviceAt<NewsroomService>(configuration.endpoints.newsroom, *this))
    , featureFlags(serviceAt<FeatureFlagService>(configuration.endpoints.developer, *this))
    , systemStatus(serviceAt<SystemStatusService>(configuration.endpoints.systemStatus, *this))
    , legal(serviceAt<LegalService>(configuration.endpoints.legalPolicies, *this))
{}

CaldraClient CaldraClient::fromInfoDictionary(const QVariantMap &information, const InfoPlistKeys &keys,
                                              const std::optional<QString> &bundleIdentifier,
                                              const ServiceEndpoints &endpoints,
                                              const std::map<QString, QString> &defaultHeaders,
                                              double timeout, std::shared_ptr<CaldraTransport> transport)
{
    return CaldraClient(CaldraConfiguration::fromInfoDictionary(information, keys, bundleIdentifier,
                                                                endpoints, defaultHeaders, timeout),
                        std::move(transport));
}

} // namespace caldra
