#include "app/presentation/RunTexts.h"

#include "app/settings/ModelFamily.h"
#include "app/settings/TrainingCapability.h"

namespace zorel::app::presentation {

namespace {

template <class Values>
QString titleOf(const QString &raw, const Values &values)
{
    for (const auto value : values) {
        if (rawValue(value) == raw) {
            return title(value);
        }
    }
    return raw;
}

} // namespace

QString familyTitle(const QString &rawValue)
{
    return titleOf(rawValue, settings::allModelFamilies);
}

QString capabilityTitle(const QString &rawValue)
{
    return titleOf(rawValue, settings::allTrainingCapabilities);
}

} // namespace zorel::app::presentation
