#include "app/folders/ConfiguredFolder.h"

#include "app/settings/ZorelSettings.h"

namespace zorel::app::folders {

using settings::ZorelSettings;

namespace {

/// What is said and stored about one folder.
struct Description
{
    QString displayName;
    QString symbolName;
    QString helpText;
    const QString &(ZorelSettings::*path)() const;
    void (ZorelSettings::*setPath)(const QString &);
    QString (ZorelSettings::*defaultPath)() const;
};

const Description &descriptionOf(ConfiguredFolder folder)
{
    static const std::array<Description, allConfiguredFolders.size()> descriptions{
        Description{QStringLiteral("Training Data"), QStringLiteral("folder"),
                    QStringLiteral("Drop pretraining and fine-tuning corpora into this folder. Each corpus "
                                   "should live in its own subfolder."),
                    &ZorelSettings::trainingDataPath, &ZorelSettings::setTrainingDataPath,
                    &ZorelSettings::defaultTrainingDataPath},
        Description{QStringLiteral("Finished Models"), QStringLiteral("shippingbox.fill"),
                    QStringLiteral("Every completed training run is archived here under a subfolder named "
                                   "with the date and time it finished."),
                    &ZorelSettings::finishedModelsPath, &ZorelSettings::setFinishedModelsPath,
                    &ZorelSettings::defaultFinishedModelsPath},
        Description{
            QStringLiteral("Model Working Directory"), QStringLiteral("internaldrive.fill"),
            QStringLiteral("Where Zorel keeps intermediate state during training — checkpoints, tokenizer "
                           "cache, prepared tokens, and logs. These files can be large; only change this "
                           "if you want to put them on a different disk."),
            &ZorelSettings::modelRootPath, &ZorelSettings::setModelRootPath,
            &ZorelSettings::defaultModelRootPath}};
    return descriptions.at(static_cast<std::size_t>(folder));
}

} // namespace

QString displayName(ConfiguredFolder folder)
{
    return descriptionOf(folder).displayName;
}

QString symbolName(ConfiguredFolder folder)
{
    return descriptionOf(folder).symbolName;
}

QString helpText(ConfiguredFolder folder)
{
    return descriptionOf(folder).helpText;
}

const QString &path(const ZorelSettings &settings, ConfiguredFolder folder)
{
    return (settings.*descriptionOf(folder).path)();
}

void setPath(ZorelSettings &settings, ConfiguredFolder folder, const QString &path)
{
    (settings.*descriptionOf(folder).setPath)(path);
}

QString defaultPath(const ZorelSettings &settings, ConfiguredFolder folder)
{
    return (settings.*descriptionOf(folder).defaultPath)();
}

bool isDefault(const ZorelSettings &settings, ConfiguredFolder folder)
{
    return path(settings, folder) == defaultPath(settings, folder);
}

} // namespace zorel::app::folders
