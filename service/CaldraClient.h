#pragma once

#include "service/careers/CareersService.h"
#include "service/core/CaldraConfiguration.h"
#include "service/distribution/DistributionService.h"
#include "service/featureflags/FeatureFlagService.h"
#include "service/legal/LegalService.h"
#include "service/newsroom/NewsroomService.h"
#include "service/sales/SalesService.h"
#include "service/support/SupportService.h"
#include "service/systemstatus/SystemStatusService.h"

#include <memory>

namespace caldra {

class CaldraTransport;

/// Every service of the platform for one organization.
///
/// Holds no state that changes: calls may come from any thread, and those in progress outlive the client.
class CaldraClient
{
public:
    /// Without a transport the client uses a NetworkTransport of its own.
    explicit CaldraClient(CaldraConfiguration clientConfiguration,
                          std::shared_ptr<CaldraTransport> clientTransport = nullptr);

    /// A client for what the bundle's information dictionary says. Throws InfoPlistError.
    static CaldraClient fromInfoDictionary(const QVariantMap &information, const InfoPlistKeys &keys = {},
                                           const std::optional<QString> &bundleIdentifier = {},
                                           const ServiceEndpoints &endpoints = ServiceEndpoints::production(),
                                           const std::map<QString, QString> &defaultHeaders = {},
                                           double timeout = 60,
                                           std::shared_ptr<CaldraTransport> transport = nullptr);

    const CaldraConfiguration configuration;
    const std::shared_ptr<CaldraTransport> transport;

    const DistributionService distribution;
    const SupportService support;
    const SalesService sales;
    const CareersService careers;
    const NewsroomService newsroom;
    const FeatureFlagService featureFlags;
    const SystemStatusService systemStatus;
    const LegalService legal;
};

} // namespace caldra
