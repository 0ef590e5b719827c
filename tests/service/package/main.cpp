#include <service/CaldraClient.h>
#include <service/core/CaldraVersion.h>

int main()
{
    const caldra::CaldraClient client({QStringLiteral("key"), QStringLiteral("org")});
    const auto refused = client.distribution.getApplication(QStringLiteral(".."));
    return caldra::libraryVersion == "1.0.0" && refused.isFinished() ? 0 : 1;
}
