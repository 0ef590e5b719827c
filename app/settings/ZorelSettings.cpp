#include "app/settings/ZorelSettings.h"

#include "platform/UserDefaults.h"

#include <QCoreApplication>
#include <QDir>

namespace zorel::app::settings {

namespace {

constexpr QLatin1String trainingDataPathKey("zorel.trainingDataPath");
constexpr QLatin1String finishedModelsPathKey("zorel.finishedModelsPath");
constexpr QLatin1String modelRootPathKey("zorel.modelRootPath");
constexpr QLatin1String modelNameKey("zorel.modelName");
constexpr QLatin1String modelVersionKey("zorel.modelVersion");
constexpr QLatin1String modelAuthorKey("zorel.modelAuthor");
constexpr QLatin1String modelDescriptionKey("zorel.modelDescription");
constexpr QLatin1String modelLicenseKey("zorel.modelLicense");
constexpr QLatin1String modelFamilyKey("zorel.modelFamily");
constexpr QLatin1String trainingCapabilityKey("zorel.trainingCapability");

constexpr QLatin1String defaultModelName("MyModel");
constexpr QLatin1String defaultModelVersion("1.0.0");
constexpr QLatin1String defaultModelLicense("MIT");

const QString &stored(const QString &text)
{
    return text;
}
QString stored(ModelFamily family)
{
    return rawValue(family);
}
QString stored(TrainingCapability capability)
{
    return rawValue(capability);
}

ZorelSettings *makeShared()
{
    auto *settings =
        new ZorelSettings(platform::standardUserDefaults(), platform::StandardFolders::current());
    // The first user may be any thread; what is connected to the settings lives on the main one.
    if (const QCoreApplication *const application = QCoreApplication::instance()) {
        settings->moveToThread(application->thread());
    }
    return settings;
}

} // namespace

ZorelSettings::ZorelSettings(platform::UserDefaults &store, const platform::StandardFolders &folders)
    : m_store(store)
    , m_folders(folders)
    , m_trainingDataPath(store.string(trainingDataPathKey).value_or(defaultTrainingDataPath()))
    , m_finishedModelsPath(store.string(finishedModelsPathKey).value_or(defaultFinishedModelsPath()))
    , m_modelRootPath(store.string(modelRootPathKey).value_or(defaultModelRootPath()))
    , m_modelName(store.string(modelNameKey).value_or(defaultModelName))
    , m_modelVersion(store.string(modelVersionKey).value_or(defaultModelVersion))
    , m_modelAuthor(store.string(modelAuthorKey).value_or(QString()))
    , m_modelDescription(store.string(modelDescriptionKey).value_or(QString()))
    , m_modelLicense(store.string(modelLicenseKey).value_or(defaultModelLicense))
    , m_modelFamily(modelFamilyFromRawValue(store.string(modelFamilyKey).value_or(QString())))
    , m_trainingCapability(
          trainingCapabilityFromRawValue(store.string(trainingCapabilityKey).value_or(QString())))
{
    if (!supports(m_modelFamily, m_trainingCapability)) {
        setTrainingCapability(supportedCapabilities(m_modelFamily).front());
    }
}

ZorelSettings &ZorelSettings::shared()
{
    static ZorelSettings *const settings = makeShared();
    return *settings;
}

template <typename Value>
void ZorelSettings::assign(Value &property, const Value &value, void (ZorelSettings::*changed)(),
                           QLatin1String key)
{
    if (property != value) {
        property = value;
        Q_EMIT(this->*changed)();
    }
    // Not `value`: a listener may have assigned again, and the store must end with what the property holds.
    m_store.setString(key, stored(property));
}

void ZorelSettings::setTrainingDataPath(const QString &path)
{
    assign(m_trainingDataPath, path, &ZorelSettings::trainingDataPathChanged, trainingDataPathKey);
}

void ZorelSettings::setFinishedModelsPath(const QString &path)
{
    assign(m_finishedModelsPath, path, &ZorelSettings::finishedModelsPathChanged, finishedModelsPathKey);
}

void ZorelSettings::setModelRootPath(const QString &path)
{
    assign(m_modelRootPath, path, &ZorelSettings::modelRootPathChanged, modelRootPathKey);
}

void ZorelSettings::setModelName(const QString &name)
{
    assign(m_modelName, name, &ZorelSettings::modelNameChanged, modelNameKey);
}

void ZorelSettings::setModelVersion(const QString &version)
{
    assign(m_modelVersion, version, &ZorelSettings::modelVersionChanged, modelVersionKey);
}

void ZorelSettings::setModelAuthor(const QString &author)
{
    assign(m_modelAuthor, author, &ZorelSettings::modelAuthorChanged, modelAuthorKey);
}

void ZorelSettings::setModelDescription(const QString &description)
{
    assign(m_modelDescription, description, &ZorelSettings::modelDescriptionChanged, modelDescriptionKey);
}

void ZorelSettings::setModelLicense(const QString &license)
{
    assign(m_modelLicense, license, &ZorelSettings::modelLicenseChanged, modelLicenseKey);
}

void ZorelSettings::setModelFamily(ModelFamily family)
{
    assign(m_modelFamily, family, &ZorelSettings::modelFamilyChanged, modelFamilyKey);
}

void ZorelSettings::setTrainingCapability(TrainingCapability capability)
{
    assign(m_trainingCapability, capability, &ZorelSettings::trainingCapabilityChanged,
           trainingCapabilityKey);
}

QString ZorelSettings::libraryRoot() const
{
    return m_folders.documents + QLatin1String("/Zorel");
}

QString ZorelSettings::defaultTrainingDataPath() const
{
    return libraryRoot() + QLatin1String("/Training Data");
}

QString ZorelSettings::defaultFinishedModelsPath() const
{
    return libraryRoot() + QLatin1String("/Finished models");
}

QString ZorelSettings::defaultModelRootPath() const
{
    return m_folders.applicationSupport + QLatin1String("/Zorel/Model");
}

QString ZorelSettings::expanded(const QString &path) const
{
    return platform::expandTilde(path, m_folders.home);
}

void ZorelSettings::ensureFoldersExist() const
{
    for (const QString &path : {m_trainingDataPath, m_finishedModelsPath, m_modelRootPath}) {
        // Unusable folders show in the access flags, so a failure here says nothing new.
        if (!path.isEmpty()) {
            QDir().mkpath(expanded(path));
        }
    }
}

QMap<QString, QString> ZorelSettings::sidecarEnvironment() const
{
    return {{QStringLiteral("ZOREL_DATA_ROOT"), expanded(m_trainingDataPath)},
            {QStringLiteral("ZOREL_FINISHED_MODELS_ROOT"), expanded(m_finishedModelsPath)},
            {QStringLiteral("ZOREL_MODEL_ROOT"), expanded(m_modelRootPath)}};
}

QMap<QString, QString> ZorelSettings::modelIdentityPayload() const
{
    QMap<QString, QString> payload{{QStringLiteral("name"), m_modelName.trimmed()},
                                   {QStringLiteral("version"), m_modelVersion.trimmed()},
                                   {QStringLiteral("author"), m_modelAuthor.trimmed()},
                                   {QStringLiteral("description"), m_modelDescription.trimmed()},
                                   {QStringLiteral("license"), m_modelLicense.trimmed()}};
    payload.removeIf([](const auto &entry) { return entry.value().isEmpty(); });
    return payload;
}

QMap<QString, QString> ZorelSettings::trainingProfilePayload() const
{
    return {{QStringLiteral("model_family"), rawValue(m_modelFamily)},
            {QStringLiteral("training_capability"), rawValue(m_trainingCapability)}};
}

void ZorelSettings::selectFamily(ModelFamily family)
{
    if (family == m_modelFamily) {
        return;
    }
    setModelFamily(family);
    if (!supports(family, m_trainingCapability)) {
        setTrainingCapability(supportedCapabilities(family).front());
    }
}

void ZorelSettings::selectCapability(TrainingCapability capability)
{
    if (supports(m_modelFamily, capability) && capability != m_trainingCapability) {
        setTrainingCapability(capability);
    }
}

void ZorelSettings::resetModelIdentity()
{
    setModelName(defaultModelName);
    setModelVersion(defaultModelVersion);
    setModelAuthor(QString());
    setModelDescription(QString());
    setModelLicense(defaultModelLicense);
}

} // namespace zorel::app::settings
