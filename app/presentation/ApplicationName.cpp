#include "app/presentation/ApplicationName.h"

#include <optional>

namespace zorel::app::presentation {

namespace {

/// Nothing when the value is absent or no text.
std::optional<QString> textOf(const platform::InformationDictionary &information, QLatin1String key)
{
    const QVariant value = information.value(key);
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

} // namespace

QString displayName(const platform::InformationDictionary &information)
{
    for (const QLatin1String key : {QLatin1String("CFBundleDisplayName"), QLatin1String("CFBundleName")}) {
        const std::optional<QString> name = textOf(information, key);
        if (name && !name->isEmpty()) {
            return *name;
        }
    }
    return QStringLiteral("Talvex LLM Trainer");
}

QString version(const platform::InformationDictionary &information)
{
    return textOf(information, QLatin1String("CFBundleShortVersionString"))
        .value_or(QStringLiteral("unknown"));
}

} // namespace zorel::app::presentation
