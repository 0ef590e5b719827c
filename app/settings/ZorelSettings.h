#pragma once

#include "app/settings/ModelFamily.h"
#include "app/settings/TrainingCapability.h"
#include "platform/StandardFolders.h"

#include <QMap>
#include <QObject>
#include <QString>

namespace zorel::platform {
class UserDefaults;
}

namespace zorel::app::settings {

/// The persisted settings: the three library folders, the identity of the model being trained and the
/// training profile. A change is announced by its signal; then, and also when the assigned value is the old
/// one, the value is written to the store at once. Main thread only, except for the creation of `shared`.
class ZorelSettings : public QObject
{
    Q_OBJECT

public:
    /// Loads from `store`, which must outlive this object. Repairs an impossible profile and writes nothing
    /// else.
    ZorelSettings(platform::UserDefaults &store, const platform::StandardFolders &folders);

    /// The application's one instance over the standard store, created on first use, by whichever thread
    /// comes first, and never destroyed.
    static ZorelSettings &shared();

    const QString &trainingDataPath() const { return m_trainingDataPath; }
    const QString &finishedModelsPath() const { return m_finishedModelsPath; }
    const QString &modelRootPath() const { return m_modelRootPath; }
    const QString &modelName() const { return m_modelName; }
    const QString &modelVersion() const { return m_modelVersion; }
    const QString &modelAuthor() const { return m_modelAuthor; }
    const QString &modelDescription() const { return m_modelDescription; }
    const QString &modelLicense() const { return m_modelLicense; }
    ModelFamily modelFamily() const { return m_modelFamily; }
    TrainingCapability trainingCapability() const { return m_trainingCapability; }

    void setTrainingDataPath(const QString &path);
    void setFinishedModelsPath(const QString &path);
    void setModelRootPath(const QString &path);
    void setModelName(const QString &name);
    void setModelVersion(const QString &version);
    void setModelAuthor(const QString &author);
    void setModelDescription(const QString &description);
    void setModelLicense(const QString &license);
    void setModelFamily(ModelFamily family);
    void setTrainingCapability(TrainingCapability capability);

    /// Documents/Zorel below the home folder.
    QString libraryRoot() const;
    QString defaultTrainingDataPath() const;
    QString defaultFinishedModelsPath() const;
    QString defaultModelRootPath() const;
    /// `path` with its leading "~" expanded to the home folder these settings were made with.
    QString expanded(const QString &path) const;

    /// Creates the three configured folders with their parents; failures are left to the access checker to
    /// show.
    void ensureFoldersExist() const;

    /// ZOREL_DATA_ROOT, ZOREL_FINISHED_MODELS_ROOT and ZOREL_MODEL_ROOT, expanded.
    QMap<QString, QString> sidecarEnvironment() const;
    /// "name", "version", "author", "description", "license", trimmed; empty ones are left out.
    QMap<QString, QString> modelIdentityPayload() const;
    /// "model_family" and "training_capability".
    QMap<QString, QString> trainingProfilePayload() const;

    /// Changes the family; a capability that it does not allow becomes its first one.
    void selectFamily(ModelFamily family);
    /// Ignored when the current family does not allow `capability`.
    void selectCapability(TrainingCapability capability);
    void resetModelIdentity();

Q_SIGNALS:
    void trainingDataPathChanged();
    void finishedModelsPathChanged();
    void modelRootPathChanged();
    void modelNameChanged();
    void modelVersionChanged();
    void modelAuthorChanged();
    void modelDescriptionChanged();
    void modelLicenseChanged();
    void modelFamilyChanged();
    void trainingCapabilityChanged();

private:
    template <typename Value>
    void assign(Value &property, const Value &value, void (ZorelSettings::*changed)(), QLatin1String key);

    platform::UserDefaults &m_store;
    platform::StandardFolders m_folders;

    QString m_trainingDataPath;
    QString m_finishedModelsPath;
    QString m_modelRootPath;
    QString m_modelName;
    QString m_modelVersion;
    QString m_modelAuthor;
    QString m_modelDescription;
    QString m_modelLicense;
    ModelFamily m_modelFamily;
    TrainingCapability m_trainingCapability;
};

} // namespace zorel::app::settings
