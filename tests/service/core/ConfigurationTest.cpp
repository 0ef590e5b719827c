#include "service/CaldraClient.h"
#include "service/core/CaldraVersion.h"
#include "service/core/InfoPlistError.h"

#include <QtTest/QtTest>

using namespace Qt::StringLiterals;
using namespace caldra;

namespace {

QString failure(const QVariantMap &information, const InfoPlistKeys &keys = {},
                const std::optional<QString> &bundle = {})
{
    try {
        CaldraConfiguration::fromInfoDictionary(information, keys, bundle);
    } catch (const InfoPlistError &error) {
        return error.description();
    }
    return {};
}

} // namespace

class ConfigurationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheDictionary()
    {
        const auto configuration = CaldraConfiguration::fromInfoDictionary(
            {{u"CaldraAPIKey"_s, u"key"_s}, {u"CaldraOrganizationId"_s, u"org"_s}}, {}, {},
            ServiceEndpoints::production(), {{u"X-Client"_s, u"test"_s}}, 30);
        QCOMPARE(configuration.apiKey, u"key"_s);
        QCOMPARE(configuration.organizationId, u"org"_s);
        QCOMPARE(configuration.timeout, 30);
        QVERIFY(configuration.endpoints == ServiceEndpoints::production());
        QCOMPARE(configuration.defaultHeaders.at(u"X-Client"_s), u"test"_s);
    }

    void readsUnderOtherNames()
    {
        const InfoPlistKeys keys{u"MyKey"_s, u"MyOrganization"_s};
        const auto configuration = CaldraConfiguration::fromInfoDictionary(
            {{u"MyKey"_s, u"k"_s}, {u"MyOrganization"_s, u"o"_s}}, keys);
        QCOMPARE(configuration.apiKey, u"k"_s);
        QCOMPARE(configuration.organizationId, u"o"_s);
    }

    void fallsBackToTheDefaultOrganization()
    {
        const auto configuration = CaldraConfiguration::fromInfoDictionary({{u"CaldraAPIKey"_s, u"key"_s}});
        QCOMPARE(configuration.organizationId, u"XxXxXxXxXxXxXxXxXxXx"_s);
        QCOMPARE(configuration.organizationId.size(), 20);
    }

    void saysWhatIsMissing()
    {
        const QString withoutBundle =
            u"Caldra: missing API key. Add a `CaldraAPIKey` entry to your target's Info.plist"
            " (string value, no quotes)."_s;
        QCOMPARE(failure({}), withoutBundle);
        QCOMPARE(failure({{u"CaldraAPIKey"_s, u""_s}}), withoutBundle);
        QCOMPARE(failure({{u"CaldraAPIKey"_s, 12}}), withoutBundle);
        QCOMPARE(
            failure({}, {u"K"_s, u"O"_s}, u"com.example.app"_s),
            u"Caldra: missing API key. Add a `K` entry to your target's Info.plist in bundle com.example.app"
            " (string value, no quotes)."_s);
    }

    void leavesOutABundleIdentifierThatIsEmpty()
    {
        const QVariantMap emptyOrganization{{u"CaldraAPIKey"_s, u"key"_s},
                                            {u"CaldraOrganizationId"_s, u""_s}};
        for (const QVariantMap &information : {QVariantMap(), emptyOrganization}) {
            QCOMPARE(failure(information, {}, u""_s), failure(information));
        }
    }

    void saysThatTheOrganizationIsEmpty()
    {
        const QVariantMap empty{{u"CaldraAPIKey"_s, u"key"_s}, {u"CaldraOrganizationId"_s, u""_s}};
        QCOMPARE(failure(empty), u"Caldra: `CaldraOrganizationId` Info.plist entry is empty. Remove the key "
                                 u"to fall back to the default"
                                 " organization, or set a non-empty string."_s);
        QCOMPARE(failure(empty, {}, u"com.example.app"_s),
                 u"Caldra: `CaldraOrganizationId` Info.plist entry in bundle com.example.app is empty. "
                 u"Remove the key to"
                 " fall back to the default organization, or set a non-empty string."_s);
        const QVariantMap number{{u"CaldraAPIKey"_s, u"key"_s}, {u"CaldraOrganizationId"_s, 5}};
        QVERIFY(failure(number).contains(u"is empty"_s));
    }

    void knowsTheProductionAddresses()
    {
        const ServiceEndpoints endpoints = ServiceEndpoints::production();
        const QString host = u"https://services.caldra.example/"_s;
        QCOMPARE(endpoints.distribution.toString(), host + u"distributionApi"_s);
        QCOMPARE(endpoints.support.toString(), host + u"crmSupportApi"_s);
        QCOMPARE(endpoints.sales.toString(), host + u"crmSalesApi"_s);
        QCOMPARE(endpoints.careers.toString(), host + u"careersApi"_s);
        QCOMPARE(endpoints.newsroom.toString(), host + u"newsroomApi"_s);
        QCOMPARE(endpoints.developer.toString(), host + u"developerApi"_s);
        QCOMPARE(endpoints.systemStatus.toString(), host + u"systemStatusApi"_s);
        QCOMPARE(endpoints.legalPolicies.toString(), host + u"legalPoliciesApi"_s);
    }

    void replacesTheProductionHostOnly()
    {
        ServiceEndpoints mine = ServiceEndpoints::production();
        mine.sales = QUrl(u"https://sales.example/api"_s);
        const auto configuration = CaldraConfiguration::fromInfoDictionary(
            {{u"CaldraAPIKey"_s, u"key"_s}, {u"CaldraServiceHost"_s, u"https://staging.example:8443/"_s}}, {},
            {}, mine);
        QCOMPARE(configuration.endpoints.distribution.toString(),
                 u"https://staging.example:8443/distributionApi"_s);
        QCOMPARE(configuration.endpoints.sales.toString(), u"https://sales.example/api"_s);
        QCOMPARE(ServiceEndpoints::onHost(u"staging.example"_s).support.toString(),
                 u"https://staging.example/crmSupportApi"_s);
    }

    void allowsPlainAddressesOnThisMachineAlone()
    {
        for (const char *allowed : {"https://a.example", "http://127.0.0.1:80", "http://127.1.2.3",
                                    "http://localhost/x", "http://[::1]:8080/x", "https://127.0.0.1"}) {
            QVERIFY2(isAllowedAddress(QUrl(QString::fromLatin1(allowed))), allowed);
        }
        for (const char *refused :
             {"http://a.example", "http://localhost.a.example", "http://127.0.0.1.a.example",
              "http://0.0.0.0", "file:///etc/passwd", "data:text/plain,x", "ftp://a.example",
              "https://user:pw@a.example", "https:///x", ""}) {
            QVERIFY2(!isAllowedAddress(QUrl(QString::fromLatin1(refused))), refused);
        }
    }

    void givesEachServiceItsAddressAndOrganization()
    {
        const CaldraClient client = CaldraClient::fromInfoDictionary(
            {{u"CaldraAPIKey"_s, u"key"_s}, {u"CaldraOrganizationId"_s, u"org"_s}});
        const ServiceEndpoints endpoints = ServiceEndpoints::production();
        QCOMPARE(client.distribution.http.baseURL, endpoints.distribution);
        QCOMPARE(client.support.http.baseURL, endpoints.support);
        QCOMPARE(client.sales.http.baseURL, endpoints.sales);
        QCOMPARE(client.careers.http.baseURL, endpoints.careers);
        QCOMPARE(client.newsroom.http.baseURL, endpoints.newsroom);
        QCOMPARE(client.featureFlags.http.baseURL, endpoints.developer);
        QCOMPARE(client.systemStatus.http.baseURL, endpoints.systemStatus);
        QCOMPARE(client.legal.http.baseURL, endpoints.legalPolicies);
        QCOMPARE(client.legal.orgId, u"org"_s);
        QVERIFY(client.distribution.http.requiresAuth);
        QVERIFY(client.transport);
    }

    void knowsItsVersion()
    {
        QCOMPARE(QString::fromLatin1(libraryVersion.data(), qsizetype(libraryVersion.size())), u"1.0.0"_s);
    }

    void printsNoSecret()
    {
        QString printed;
        QDebug(&printed) << CaldraConfiguration{
            u"sk-secret"_s, u"org"_s, {}, {{u"X-Token"_s, u"other-secret"_s}}, 30};
        QVERIFY(printed.contains(u"org"_s));
        QVERIFY(!printed.contains(u"secret"_s));
    }
};

QTEST_GUILESS_MAIN(ConfigurationTest)
#include "ConfigurationTest.moc"
