#include "service/core/ServiceEndpoints.h"

#include <QHostAddress>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

struct Segment
{
    QUrl ServiceEndpoints::*endpoint;
    QLatin1StringView name;
};

constexpr Segment segments[] = {
    {&ServiceEndpoints::distribution, "distributionApi"_L1},
    {&ServiceEndpoints::support, "crmSupportApi"_L1},
    {&ServiceEndpoints::sales, "crmSalesApi"_L1},
    {&ServiceEndpoints::careers, "careersApi"_L1},
    {&ServiceEndpoints::newsroom, "newsroomApi"_L1},
    {&ServiceEndpoints::developer, "developerApi"_L1},
    {&ServiceEndpoints::systemStatus, "systemStatusApi"_L1},
    {&ServiceEndpoints::legalPolicies, "legalPoliciesApi"_L1},
};

} // namespace

QString productionHost()
{
    return u"https://services.caldra.example"_s;
}

ServiceEndpoints ServiceEndpoints::onHost(const QString &host)
{
    QString root = host.trimmed();
    while (root.endsWith(u'/')) {
        root.chop(1);
    }
    if (!root.contains("://"_L1)) {
        root.prepend("https://"_L1);
    }
    ServiceEndpoints endpoints;
    for (const Segment &segment : segments) {
        endpoints.*segment.endpoint = QUrl(root + u'/' + segment.name, QUrl::StrictMode);
    }
    return endpoints;
}

ServiceEndpoints ServiceEndpoints::production()
{
    return onHost(productionHost());
}

ServiceEndpoints ServiceEndpoints::withProductionHostReplaced(const QString &host) const
{
    const ServiceEndpoints before = production();
    const ServiceEndpoints after = onHost(host);
    ServiceEndpoints result = *this;
    for (const Segment &segment : segments) {
        if (result.*segment.endpoint == before.*segment.endpoint) {
            result.*segment.endpoint = after.*segment.endpoint;
        }
    }
    return result;
}

bool isLoopback(const QUrl &url)
{
    const QString host = url.host();
    return host == "localhost"_L1 || QHostAddress(host).isLoopback();
}

bool isAllowedAddress(const QUrl &url)
{
    if (!url.isValid() || url.host().isEmpty() || !url.userInfo().isEmpty()) {
        return false;
    }
    return url.scheme() == "https"_L1 || (url.scheme() == "http"_L1 && isLoopback(url));
}

} // namespace caldra
