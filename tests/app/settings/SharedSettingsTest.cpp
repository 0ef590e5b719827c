#include "app/settings/ZorelSettings.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QTest>
#include <QThread>

#include <array>
#include <barrier>
#include <thread>
#include <vector>

using zorel::app::settings::ZorelSettings;

class SharedSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eightThreadsAtOnceGetOneInstanceThatLivesOnTheMainThread();
    void worksOnTheStandardStoreAndTheHomeFolder();
};

void SharedSettingsTest::eightThreadsAtOnceGetOneInstanceThatLivesOnTheMainThread()
{
    constexpr std::size_t threadCount = 8;
    std::array<ZorelSettings *, threadCount> instances{};
    std::barrier start(threadCount);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < threadCount; ++index) {
        threads.emplace_back([&, index] {
            start.arrive_and_wait();
            instances[index] = &ZorelSettings::shared();
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (const ZorelSettings *const instance : instances) {
        QCOMPARE(instance, &ZorelSettings::shared());
    }
    QCOMPARE(ZorelSettings::shared().thread(), QThread::currentThread());
}

void SharedSettingsTest::worksOnTheStandardStoreAndTheHomeFolder()
{
    ZorelSettings &settings = ZorelSettings::shared();
    QCOMPARE(settings.libraryRoot(), QDir::homePath() + QStringLiteral("/Documents/Zorel"));

    const QString previous = settings.modelName();
    settings.setModelName(previous + QStringLiteral("+"));
    QCOMPARE(zorel::platform::standardUserDefaults().string(QStringLiteral("zorel.modelName")),
             settings.modelName());
    settings.setModelName(previous);
}

QTEST_GUILESS_MAIN(SharedSettingsTest)
#include "SharedSettingsTest.moc"
