#pragma once

#include "app/settings/ModelFamily.h"

#include <QString>

namespace zorel::app::presentation {

/// What is being prepared: the sidecar's own words, or a sentence that suits the family when it gives none.
QString preparationDetail(const QString &detail, settings::ModelFamily family);
/// What a family's throughput figure counts: "Tokens/sec" or "Samples/sec".
QString throughputLabel(settings::ModelFamily family);
/// The title of the progress panel.
QString progressTitle(settings::ModelFamily family);
/// What to expect where no loss curve can be drawn yet; may have two lines.
QString emptyChartHint(const QString &state, settings::ModelFamily family);
/// What the start control says between runs.
QString startLabel(bool ready);

} // namespace zorel::app::presentation
