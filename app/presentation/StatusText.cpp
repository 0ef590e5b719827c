#include "app/presentation/StatusText.h"

#include "app/presentation/RunState.h"

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

QString progressTitle(settings::ModelFamily family)
{
    switch (family) {
    case settings::ModelFamily::textLanguage:
        return QStringLiteral("Pretraining progress");
    case settings::ModelFamily::imageGeneration:
        return QStringLiteral("Image training progress");
    case settings::ModelFamily::multimodal:
        return QStringLiteral("Multimodal training progress");
    }
    return {};
}

QString emptyChartHint(const QString &state, settings::ModelFamily family)
{
    switch (runState(state)) {
    case RunState::preparing:
        return family == settings::ModelFamily::textLanguage
                   ? QStringLiteral("Preparing data — training tokenizer and tokenizing your corpus.\n"
                                    "This runs once per Training Data folder.")
                   : QStringLiteral("Preparing data — indexing images in your Training Data folder.\n"
                                    "This runs once per image corpus.");
    case RunState::starting:
        return QStringLiteral("Warming up — first step takes ~15–20 s for JIT compile.");
    default:
        return QStringLiteral("Press Start to begin training.");
    }
}

QString startLabel(bool ready)
{
    return ready ? QStringLiteral("Begin training")
                 : QStringLiteral("Waiting for the Python backend — check Recent activity");
}

} // namespace zorel::app::presentation
