#include "terminal/RunSettings.h"

#include <QFileInfo>

namespace zorel::terminal {

namespace {

using app::settings::ZorelSettings;

void requireTrainingData(const ZorelSettings &settings, const QString &path)
{
    const QString expanded = settings.expanded(path);
    // Otherwise a misspelt folder would be created, and the run would find it empty.
    if (!QFileInfo(expanded).isDir()) {
        throw UsageError(QStringLiteral("--training-data: there is no folder %1.").arg(expanded));
    }
}

void applyProfile(const TerminalOptions &options, ZorelSettings &settings)
{
    if (options.family) {
        settings.selectFamily(*options.family);
    }
    if (!options.capability) {
        return;
    }
    if (!app::settings::supports(settings.modelFamily(), *options.capability)) {
        QStringList allowed;
        for (const auto capability : app::settings::supportedCapabilities(settings.modelFamily())) {
            allowed << app::settings::rawValue(capability);
        }
        throw UsageError(
            QStringLiteral("--capability %1 does not go with the model type %2, which allows: %3.")
                .arg(app::settings::rawValue(*options.capability),
                     app::settings::rawValue(settings.modelFamily()), allowed.join(QStringLiteral(", "))));
    }
    settings.selectCapability(*options.capability);
}

void applyOptions(const TerminalOptions &options, ZorelSettings &settings)
{
    const auto apply = [&settings](const std::optional<QString> &value,
                                   void (ZorelSettings::*set)(const QString &)) {
        if (value) {
            (settings.*set)(*value);
        }
    };
    if (options.trainingData) {
        requireTrainingData(settings, *options.trainingData);
    }
    applyProfile(options, settings);
    apply(options.trainingData, &ZorelSettings::setTrainingDataPath);
    apply(options.finishedModels, &ZorelSettings::setFinishedModelsPath);
    apply(options.modelRoot, &ZorelSettings::setModelRootPath);
    apply(options.modelName, &ZorelSettings::setModelName);
    apply(options.modelVersion, &ZorelSettings::setModelVersion);
    apply(options.author, &ZorelSettings::setModelAuthor);
    apply(options.description, &ZorelSettings::setModelDescription);
    apply(options.license, &ZorelSettings::setModelLicense);
}

} // namespace

RunSettings::RunSettings(platform::UserDefaults &store, const platform::StandardFolders &folders,
                         const TerminalOptions &options)
    : m_overlay(store)
    , m_settings(m_overlay, folders)
{
    applyOptions(options, m_settings);
    if (options.keep == TerminalOptions::Keep::saved) {
        ZorelSettings stored(store, folders);
        applyOptions(options, stored);
        // The run may take days and end by force.
        store.synchronize();
    }
}

} // namespace zorel::terminal
