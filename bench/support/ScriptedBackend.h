#pragma once

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "platform/UserDefaults.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace zorel::bench {

/// Remembers nothing; every switch that is asked for is `all`.
class SameForAllDefaults : public platform::UserDefaults
{
public:
    explicit SameForAllDefaults(std::optional<bool> all)
        : m_all(all)
    {}

    std::optional<QString> string(const QString &) const override { return std::nullopt; }
    void setString(const QString &, const QString &) override {}
    std::optional<bool> boolean(const QString &) const override { return m_all; }
    void setBoolean(const QString &, bool) override {}

private:
    std::optional<bool> m_all;
};

/// Writes a shell script where the program looks first for an interpreter below a home folder. Ends the
/// process when that fails.
void writeInterpreter(const QString &home, const QByteArray &script);

/// A controller whose "interpreter" is a shell script.
class ScriptedBackend
{
public:
    explicit ScriptedBackend(const QByteArray &script, std::optional<bool> switches = std::nullopt);

    backend::bridge::BackendController &controller() { return m_controller; }
    app::settings::ZorelSettings &settings() { return m_settings; }
    platform::UserDefaults &defaults() { return m_defaults; }

    /// Returns when the script, once launched, has said that it is ready.
    void waitForReady();
    /// Returns when the script has ended and everything it wrote has been applied.
    void launchAndWaitForExit();

private:
    backend::bridge::BackendController::Surroundings surroundings();

    QTemporaryDir m_folder;
    SameForAllDefaults m_defaults;
    app::settings::ZorelSettings m_settings;
    backend::bridge::BackendController m_controller;
};

} // namespace zorel::bench
