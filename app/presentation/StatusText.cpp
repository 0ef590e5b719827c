#include "app/presentation/StatusText.h"

namespace zorel::app::presentation {

QString preparationDetail(const QString &detail, settings::ModelFamily family)
{
    if (!detail.isEmpty()) {
        return detail;
    }
    return family == settings::ModelFamily::textLanguage
               ? QStringLiteral("Working on your corpus…")
               : QStringLiteral("Indexing images in your training folder…");
}

QString throughputLabel(settings::ModelFamily family)
{
    return family == settings::ModelFamily::textLanguage ? QStringLiteral("Tokens/sec")
                                                         : QStringLiteral("Samples/sec");
}

} // namespace zorel::app::presentation
