#include <service/CaldraClient.h>
#include <service/core/CaldraVersion.h>

int main()
{
    caldra::CaldraConfiguration configuration;
    configuration.apiKey = QStringLiteral("key");
    configuration.organizationId = QStringLiteral("org");
    const caldra::CaldraClient client(configuration);
    const auto refused = client.distribution.getApplication(QStringLiteral(".."));
    return caldra::libraryVersion == "1.0.0" && refused.isFinished() ? 0 : 1;
}
