#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QSignalSpy>
#include <QTest>

#include <sys/resource.h>

using namespace zorel;
using namespace zorel::backend;
using backend::bridge::BackendController;
using tests::step;

namespace {

constexpr std::int64_t floodLines = 500'000; // on each output

/// The most memory this process has ever held, in bytes.
std::int64_t peakMemory()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
#if defined(__APPLE__)
    return usage.ru_maxrss;
#else
    return std::int64_t{usage.ru_maxrss} * 1024;
#endif
}

} // namespace

/// A million lines on both outputs at once.
class BackendFloodTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLineIsAppliedInOrderInBoundedMemory();
};

void BackendFloodTest::everyLineIsAppliedInOrderInBoundedMemory()
{
    tests::FakeSidecar sidecar;
    tests::InMemoryUserDefaults store;
    app::settings::ZorelSettings settings(store, platform::StandardFolders::below(sidecar.root()));
    BackendController controller(settings, sidecar.surroundings());

    const QJsonObject status{{QStringLiteral("event"), QStringLiteral("status")},
                             {QStringLiteral("state"), QStringLiteral("running")},
                             {QStringLiteral("step"), 0},
                             {QStringLiteral("max_steps"), 500'000},
                             {QStringLiteral("loss"), 2.5},
                             {QStringLiteral("lr"), 0.001},
                             {QStringLiteral("grad_norm"), 1},
                             {QStringLiteral("tokens_per_sec"), 5000},
                             {QStringLiteral("elapsed_s"), 10}};
    sidecar.play(
        {step(QStringLiteral("flood"), QJsonObject{{QStringLiteral("emit"), status},
                                                   {QStringLiteral("count"), double(floodLines)},
                                                   {QStringLiteral("counter"), QStringLiteral("step")},
                                                   {QStringLiteral("stderr"), double(floodLines)}}),
         step(QStringLiteral("exit"), 0)});

    std::int64_t nextStep = 0;
    std::int64_t nextLine = 0;
    bool inOrder = true;
    connect(&controller, &BackendController::statusChanged, this, [&] {
        inOrder = inOrder && controller.status().step == nextStep;
        ++nextStep;
    });
    connect(&controller, &BackendController::logLineAppended, this, [&](const QString &line) {
        if (line.startsWith(QLatin1String("[py stderr] line "))) {
            inOrder = inOrder && line.mid(17).toLongLong() == nextLine;
            ++nextLine;
        }
    });

    QSignalSpy exited(&controller, &BackendController::backendExited);
    const std::int64_t before = peakMemory();
    controller.launch();
    QVERIFY(exited.wait(100'000));
    QVERIFY(inOrder);
    QCOMPARE(nextStep, floodLines);
    QCOMPARE(nextLine, floodLines);
    QCOMPARE(controller.lossHistory().size(), BackendController::maximumLossPoints);
    QCOMPARE(controller.lossHistory().back().step, floodLines - 1);
#if !defined(__SANITIZE_ADDRESS__)
    const std::int64_t growth = peakMemory() - before;
    QVERIFY2(growth < std::int64_t{64} * 1024 * 1024, qPrintable(QString::number(growth)));
#else
    Q_UNUSED(before)
#endif
}

QTEST_GUILESS_MAIN(BackendFloodTest)
#include "BackendFloodTest.moc"
