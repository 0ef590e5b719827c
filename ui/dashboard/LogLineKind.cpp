#include "ui/dashboard/LogLineKind.h"

namespace zorel::ui::dashboard {

LogLineKind logLineKind(const QString &line)
{
    if (line.contains(QLatin1String("ERROR"))) {
        return LogLineKind::error;
    }
    if (line.contains(QLatin1String("WARN"))) {
        return LogLineKind::warning;
    }
    return line.contains(QLatin1String("step=")) ? LogLineKind::step : LogLineKind::ordinary;
}

} // namespace zorel::ui::dashboard
