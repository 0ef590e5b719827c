#include "updater/InstallState.h"
#include "updater/ProgressThrottle.h"

#include <QLocale>
#include <QTest>

using zorel::updater::InstallState;
using zorel::updater::ProgressThrottle;

class InstallStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void itIsIdleAtFirst();
    void everyStateHasItsText_data();
    void everyStateHasItsText();
    void byteCountsFollowTheLocale();
    void aSecondLetsThroughThirtyNotificationsAtMost();
};

void InstallStateTest::itIsIdleAtFirst()
{
    const InstallState state;
    QVERIFY(state.is<InstallState::Idle>());
    QVERIFY(!state.isUnderWay());
    QCOMPARE(state.text(), QString());
}

void InstallStateTest::everyStateHasItsText_data()
{
    QTest::addColumn<InstallState>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("underWay");
    const auto row = [](const char *name, const InstallState::Value &state, const char *text, bool underWay) {
        QTest::newRow(name) << InstallState(state) << QString::fromUtf8(text) << underWay;
    };
    row("downloading", InstallState::Downloading{12'345'678, 98'765'432}, "Downloading 12.3 MB of 98.8 MB",
        true);
    row("nothing yet", InstallState::Downloading{0, 98'765'432}, "Downloading 0 bytes of 98.8 MB", true);
    row("of an unknown total", InstallState::Downloading{512, std::nullopt}, "Downloading 512 bytes", true);
    row("verifying", InstallState::Verifying{}, "Verifying download…", true);
    row("installing", InstallState::Installing{}, "Installing update…", true);
    row("relaunching", InstallState::Relaunching{}, "Restarting Talvex LLM Trainer…", true);
    row("failed", InstallState::Failed{QStringLiteral("Update cancelled.")}, "Update cancelled.", false);
}

void InstallStateTest::everyStateHasItsText()
{
    QFETCH(InstallState, state);
    QFETCH(QString, text);
    QFETCH(bool, underWay);
    QCOMPARE(state.text(), text);
    QCOMPARE(state.isUnderWay(), underWay);
}

void InstallStateTest::byteCountsFollowTheLocale()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const InstallState state(InstallState::Downloading{12'345'678, std::nullopt});
    QCOMPARE(state.text(), QStringLiteral("Downloading 12,3 MB"));
}

void InstallStateTest::aSecondLetsThroughThirtyNotificationsAtMost()
{
    using namespace std::chrono_literals;
    const ProgressThrottle::Time start{};
    for (const auto step : {1us, 100us, 35'000us}) {
        ProgressThrottle throttle;
        int told = 0;
        for (auto now = start; now < start + 1s; now += step) {
            told += throttle.lets(now) ? 1 : 0;
        }
        // The first and the last are told besides.
        QVERIFY2(told + 2 <= 30, qPrintable(QString::number(told)));
        QVERIFY(told >= 14);
    }
}

QTEST_GUILESS_MAIN(InstallStateTest)
#include "InstallStateTest.moc"
