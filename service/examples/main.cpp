#include "service/CaldraClient.h"
#include "service/core/CaldraError.h"
#include "service/core/InfoPlistError.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace caldra;

namespace {

// The key comes from the environment: arguments are visible to every user of the machine.
CaldraClient clientFromEnvironment()
{
    QVariantMap information{{u"CaldraAPIKey"_s, qEnvironmentVariable("CALDRA_API_KEY")}};
    if (qEnvironmentVariableIsSet("CALDRA_ORGANIZATION_ID")) {
        information.insert(u"CaldraOrganizationId"_s, qEnvironmentVariable("CALDRA_ORGANIZATION_ID"));
    }
    if (qEnvironmentVariableIsSet("CALDRA_SERVICE_HOST")) {
        information.insert(u"CaldraServiceHost"_s, qEnvironmentVariable("CALDRA_SERVICE_HOST"));
    }
    return CaldraClient::fromInfoDictionary(information);
}

template <WireEnumeration Enumeration>
QString textOf(Enumeration value)
{
    const std::string_view text = wireText(value);
    return QString::fromLatin1(text.data(), qsizetype(text.size()));
}

void listApplications(const CaldraClient &client, QTextStream &out)
{
    const auto answer = client.distribution.listApplications().result();
    for (const DistributionApplication &application : answer.applications) {
        QStringList platforms;
        for (const DistributionPlatform platform : application.platforms) {
            platforms << textOf(platform);
        }
        out << application.slug << '\t' << application.name << '\t' << platforms.join(u' ') << '\n';
    }
}

void showLatest(const CaldraClient &client, const QString &application, QTextStream &out)
{
    const DistributionLookup lookup{DistributionPlatform::macos, DistributionChannel::stable,
                                    DistributionArtifactPurpose::install};
    const auto latest = client.distribution.latest(application, lookup).result();
    out << latest.release.version << '\t' << latest.artifact.fileName << '\t' << latest.artifact.sizeBytes
        << " bytes\n"
        << latest.artifact.downloadUrl << '\n';
}

void showStatus(const CaldraClient &client, QTextStream &out)
{
    const auto answer = client.systemStatus.overallStatus().result();
    const auto shown = [](const std::optional<SystemComponentStatus> &status) {
        return textOf(status.value_or(SystemComponentStatus::unknown));
    };
    out << shown(answer.status) << '\n';
    for (const SystemComponent &component : answer.components) {
        out << component.name.value_or(component.id) << '\t' << shown(component.status) << '\n';
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments().mid(1);
    QTextStream out(stdout);
    QTextStream errors(stderr);
    try {
        const CaldraClient client = clientFromEnvironment();
        if (arguments == QStringList{u"applications"_s}) {
            listApplications(client, out);
        } else if (arguments.size() == 2 && arguments.first() == u"latest"_s) {
            showLatest(client, arguments.last(), out);
        } else if (arguments == QStringList{u"status"_s}) {
            showStatus(client, out);
        } else {
            errors << "Usage: caldra_example applications | latest APPLICATION | status\n";
            return 2;
        }
    } catch (const CaldraError &error) {
        errors << error.description() << '\n';
        return 1;
    } catch (const InfoPlistError &error) {
        errors << error.description() << '\n';
        return 1;
    }
    return 0;
}
