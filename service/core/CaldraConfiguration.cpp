#include "service/core/CaldraConfiguration.h"

#include "service/core/InfoPlistError.h"

#include <QDebug>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

// A value of another type reads as an empty text.
QString textIn(const QVariantMap &information, const QString &key)
{
    const QVariant value = information.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

} // namespace

QString defaultOrganizationId()
{
    return u"XxXxXxXxXxXxXxXxXxXx"_s;
}

CaldraConfiguration CaldraConfiguration::fromInfoDictionary(
    const QVariantMap &information, const InfoPlistKeys &keys, const std::optional<QString> &bundleIdentifier,
    const ServiceEndpoints &endpoints, const std::map<QString, QString> &defaultHeaders, double timeout)
{
    CaldraConfiguration configuration{{}, defaultOrganizationId(), endpoints, defaultHeaders, timeout};
    configuration.apiKey = textIn(information, keys.apiKey);
    if (configuration.apiKey.isEmpty()) {
        throw InfoPlistError(InfoPlistError::Case::missingAPIKey, keys.apiKey, bundleIdentifier);
    }

    if (information.contains(keys.organizationId)) {
        configuration.organizationId = textIn(information, keys.organizationId);
        if (configuration.organizationId.isEmpty()) {
            throw InfoPlistError(InfoPlistError::Case::emptyOrganizationId, keys.organizationId,
                                 bundleIdentifier);
        }
    }

    const QString hostKey = u"CaldraServiceHost"_s;
    if (information.contains(hostKey)) {
        configuration.endpoints = endpoints.withProductionHostReplaced(textIn(information, hostKey));
    }
    return configuration;
}

QDebug operator<<(QDebug debug, const CaldraConfiguration &configuration)
{
    const QDebugStateSaver saver(debug);
    QStringList headerNames;
    for (const auto &header : configuration.defaultHeaders) {
        headerNames << header.first;
    }
    return debug.nospace() << "CaldraConfiguration(apiKey: [redacted], organizationId: "
                           << configuration.organizationId
                           << ", distribution: " << configuration.endpoints.distribution.toString()
                           << ", headers: " << headerNames << ", timeout: " << configuration.timeout << ')';
}

} // namespace caldra
