#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

namespace zorel::tests {

/// A home folder in which zorel-train finds an interpreter "with MLX" and the scripted sidecar.
class TrainHome
{
public:
    TrainHome();

    QString pathOf(const QString &name) const { return m_folder.filePath(name); }
    QString scripts() const { return pathOf(QStringLiteral("scripts")); }
    QString interpreter() const { return pathOf(QStringLiteral("Library/Python/3.12/bin/python3")); }
    QString finishedModels() const { return pathOf(QStringLiteral("Documents/Zorel/Finished models")); }

    /// What the sidecar does; the default run when never called.
    void play(const QJsonArray &scenario);
    void setEnvironment(const QString &name, const QString &value) { m_environment.insert(name, value); }
    void unsetEnvironment(const QString &name) { m_environment.remove(name); }
    const QProcessEnvironment &environment() const { return m_environment; }

private:
    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};

void writeFile(const QString &path, const QByteArray &content);
QByteArray fileContent(const QString &path);

/// One step of a scenario.
QJsonObject does(const char *name, const QJsonValue &value);
QJsonObject says(const QJsonObject &event);
QJsonObject ready();
/// A "status" event.
QJsonObject status(const char *state, int step, int maxSteps, double loss, double elapsed);

} // namespace zorel::tests
