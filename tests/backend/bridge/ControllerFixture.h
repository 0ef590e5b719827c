#pragma once

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "platform/BrokenPipe.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QFile>
#include <QTest>

#include <memory>

namespace zorel::tests {

/// Milliseconds that a child is given on a loaded machine.
inline constexpr int patience = 60'000;

/// What the tests of the controller share: a child that follows a script, settings of its own, and a
/// controller for each test.
class ControllerFixture : public QObject
{
protected:
    void makeController()
    {
        platform::ignoreBrokenPipe();
        m_sidecar = std::make_unique<FakeSidecar>();
        m_store = std::make_unique<InMemoryUserDefaults>();
        m_settings = std::make_unique<app::settings::ZorelSettings>(
            *m_store, platform::StandardFolders::below(m_sidecar->root()));
        m_controller =
            std::make_unique<backend::bridge::BackendController>(*m_settings, m_sidecar->surroundings());
    }

    void endController()
    {
        if (m_controller && m_controller->isRunning()) {
            m_controller->killSidecar();
            QTRY_VERIFY_WITH_TIMEOUT(!m_controller->isRunning(), patience);
        }
        m_controller.reset();
        m_settings.reset();
    }

    /// Launches a child that does this.
    void play(const QJsonArray &scenario)
    {
        m_sidecar->play(scenario);
        m_controller->launch();
        QVERIFY2(m_controller->isRunning(), qPrintable(m_controller->fatalError().value_or(QString())));
    }

    QStringList log() const { return {m_controller->logLines().begin(), m_controller->logLines().end()}; }
    int countOf(const QString &line) const { return int(log().count(line)); }

    std::unique_ptr<FakeSidecar> m_sidecar;
    std::unique_ptr<InMemoryUserDefaults> m_store;
    std::unique_ptr<app::settings::ZorelSettings> m_settings;
    std::unique_ptr<backend::bridge::BackendController> m_controller;
};

/// Steps of a scenario: to be ready, with 300 steps; to write a line of the log; to read up to a command.
inline QJsonObject emitReady()
{
    return step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")},
                                                    {QStringLiteral("default_max_steps"), 300}});
}

inline QJsonObject emitLog(const QString &message)
{
    return step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("log")},
                                                    {QStringLiteral("msg"), message}});
}

inline QJsonObject await(const QString &command)
{
    return step(QStringLiteral("await"), command);
}

/// Empty where there is no such file.
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Makes an empty file.
inline void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

} // namespace zorel::tests
