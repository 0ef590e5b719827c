#pragma once

#include "backend/bridge/BackendController.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <functional>
#include <utility>
#include <vector>

namespace zorel::tests {

/// A scripts root with the scripted sidecar in a temporary folder, and the surroundings that make a
/// controller run it.
class FakeSidecar
{
public:
    FakeSidecar();

    QString root() const { return m_folder.path(); }
    QString pathOf(const QString &name) const { return m_folder.filePath(name); }

    /// What the child does, in order; the default run when never called.
    void play(const QJsonArray &scenario);
    void setEnvironment(const QString &name, const QString &value)
    {
        m_environment.insert(name.toLatin1(), value.toUtf8());
    }

    /// Finds the scripted sidecar and the system's Python; timers are recorded instead of run.
    backend::bridge::BackendController::Surroundings surroundings();

    struct Timer
    {
        std::chrono::milliseconds delay;
        std::function<void()> action;
    };

    std::vector<Timer> timers;
    /// Whether the search finds the scripts.
    bool scriptsExist = true;
    /// Where the search looks first.
    QString scriptsRoot;
    /// The one interpreter that the search finds.
    QString interpreter = QStringLiteral("/usr/bin/python3");

private:
    QTemporaryDir m_folder;
    platform::Environment m_environment;
};

/// One step of a scenario.
inline QJsonObject step(const QString &name, const QJsonValue &value)
{
    return {{name, value}};
}

} // namespace zorel::tests
