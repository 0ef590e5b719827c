#pragma once

#include "service/CaldraClient.h"
#include "tests/service/support/LoopbackServer.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "updater/UpdateChecker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include <deque>
#include <mutex>
#include <vector>

namespace zorel::tests {

/// A release as the distribution service would tell it.
struct PublishedRelease
{
    QString version = QStringLiteral("2.0");
    QString notes = QStringLiteral("# Faster");
    QString downloadUrl = QStringLiteral("https://files.example/Trainer.zip");
    QString fileName = QStringLiteral("Trainer.zip");
    qint64 sizeBytes = 1234;
    QString sha256 = QString(64, u'a');
    std::optional<QString> minOsVersion;
    std::optional<QString> architecture;

    QByteArray answer() const
    {
        QJsonObject artifact{{QStringLiteral("platform"), QStringLiteral("macos")},
                             {QStringLiteral("fileName"), fileName},
                             {QStringLiteral("downloadUrl"), downloadUrl},
                             {QStringLiteral("sizeBytes"), sizeBytes},
                             {QStringLiteral("contentType"), QStringLiteral("application/zip")},
                             {QStringLiteral("sha256"), sha256}};
        if (minOsVersion) {
            artifact.insert(QStringLiteral("minOsVersion"), *minOsVersion);
        }
        if (architecture) {
            artifact.insert(QStringLiteral("architecture"), *architecture);
        }
        const QJsonObject release{{QStringLiteral("id"), QStringLiteral("r1")},
                                  {QStringLiteral("version"), version},
                                  {QStringLiteral("channel"), QStringLiteral("stable")},
                                  {QStringLiteral("notes"), notes},
                                  {QStringLiteral("isYanked"), false},
                                  {QStringLiteral("artifacts"), QJsonArray()}};
        const QJsonObject latest{{QStringLiteral("appId"), QStringLiteral("a1")},
                                 {QStringLiteral("channel"), QStringLiteral("stable")},
                                 {QStringLiteral("platform"), QStringLiteral("macos")},
                                 {QStringLiteral("release"), release},
                                 {QStringLiteral("artifact"), artifact}};
        return QJsonDocument(QJsonObject{{QStringLiteral("data"), latest}}).toJson(QJsonDocument::Compact);
    }
};

/// An UpdateChecker of version 1.0 with a distribution service on the loopback, a clock that stands still and
/// timers that fire when told to.
class CheckerFixture
{
public:
    struct Timer
    {
        std::chrono::milliseconds delay;
        bool repeats;
        std::function<void()> action;
    };

    CheckerFixture()
        : service([this](const caldra::tests::ReceivedRequest &) {
            const std::lock_guard lock(m_mutex);
            return m_answer;
        })
    {
        publish({});
        caldra::CaldraConfiguration configuration;
        configuration.apiKey = QStringLiteral("key");
        configuration.organizationId = QStringLiteral("org");
        configuration.endpoints = caldra::ServiceEndpoints::onHost(service.host());
        surroundings.caldra = std::make_shared<const caldra::CaldraClient>(configuration);
        surroundings.defaults = &defaults;
        surroundings.currentVersion = QStringLiteral("1.0");
        surroundings.now = [this] {
            return now;
        };
        surroundings.runAfter = [this](std::chrono::milliseconds delay, QObject *,
                                       std::function<void()> action) {
            timers.push_back({delay, false, std::move(action)});
        };
        surroundings.runEvery = [this](std::chrono::milliseconds delay, std::function<void()> action) {
            timers.push_back({delay, true, std::move(action)});
            return std::make_unique<QObject>();
        };
        surroundings.exitProcess = [this](int status) {
            exitStatuses.push_back(status);
        };
    }

    void answer(const caldra::tests::Answer &answer)
    {
        const std::lock_guard lock(m_mutex);
        m_answer = answer;
    }
    void publish(const PublishedRelease &release) { answer(caldra::tests::Answer::json(release.answer())); }

    updater::UpdateChecker &checker()
    {
        if (!m_checker) {
            m_checker = std::make_unique<updater::UpdateChecker>(surroundings);
            QObject::connect(m_checker.get(), &updater::UpdateChecker::alertRequested, m_checker.get(),
                             [this](const updater::UpdateAlert &alert) { alerts.push_back(alert); });
        }
        return *m_checker;
    }
    void destroyChecker() { m_checker.reset(); }

    /// Runs a check of the user's, or the first automatic one, to its end.
    bool checkManually()
    {
        checker().checkForUpdates();
        return waitForCheck();
    }
    bool checkAutomatically()
    {
        if (timers.empty()) {
            checker().startSchedule();
        }
        timers.back().action();
        return waitForCheck();
    }
    bool waitForCheck()
    {
        return QTest::qWaitFor([this] { return !checker().isChecking(); }, 30'000);
    }

    caldra::tests::LoopbackServer service;
    InMemoryUserDefaults defaults;
    QDateTime now{QDate(2026, 1, 2), QTime(3, 4, 5, 678), Qt::UTC};
    /// Not a vector: an action may add a timer while it runs.
    std::deque<Timer> timers;
    std::vector<int> exitStatuses;
    std::vector<updater::UpdateAlert> alerts;
    updater::UpdateChecker::Surroundings surroundings;

private:
    std::mutex m_mutex;
    caldra::tests::Answer m_answer;
    std::unique_ptr<updater::UpdateChecker> m_checker;
};

} // namespace zorel::tests
