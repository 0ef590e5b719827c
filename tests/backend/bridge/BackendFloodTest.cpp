#include "tests/backend/bridge/ControllerFixture.h"

#include <QSignalSpy>

#include <sys/resource.h>

namespace zorel::tests {

using backend::bridge::BackendController;

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

QJsonArray flood()
{
    const QJsonObject status{{QStringLiteral("event"), QStringLiteral("status")},
                             {QStringLiteral("state"), QStringLiteral("running")},
                             {QStringLiteral("step"), 0},
                             {QStringLiteral("max_steps"), 500'000},
                             {QStringLiteral("loss"), 2.5},
                             {QStringLiteral("lr"), 0.001},
                             {QStringLiteral("grad_norm"), 1},
                             {QStringLiteral("tokens_per_sec"), 5000},
                             {QStringLiteral("elapsed_s"), 10}};
    return {step(QStringLiteral("flood"), QJsonObject{{QStringLiteral("emit"), status},
                                                      {QStringLiteral("count"), double(floodLines)},
                                                      {QStringLiteral("counter"), QStringLiteral("step")},
                                                      {QStringLiteral("stderr"), double(floodLines)}}),
            step(QStringLiteral("exit"), 0)};
}

} // namespace

/// A million lines on both outputs at once.
class BackendFloodTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }
    void everyLineIsAppliedInOrderInBoundedMemory();

private:
    void watchOrder();

    std::int64_t m_nextStep = 0;
    std::int64_t m_nextLine = 0;
    bool m_inOrder = true;
};

void BackendFloodTest::watchOrder()
{
    connect(m_controller.get(), &BackendController::statusChanged, this, [this] {
        m_inOrder = m_inOrder && m_controller->status().step == m_nextStep;
        ++m_nextStep;
    });
    connect(m_controller.get(), &BackendController::logLineAppended, this, [this](const QString &line) {
        if (line.startsWith(QLatin1String("[py stderr] line "))) {
            m_inOrder = m_inOrder && line.mid(17).toLongLong() == m_nextLine;
            ++m_nextLine;
        }
    });
}

void BackendFloodTest::everyLineIsAppliedInOrderInBoundedMemory()
{
    watchOrder();
    QSignalSpy exited(m_controller.get(), &BackendController::backendExited);
    const std::int64_t before = peakMemory();
    play(flood());
    QVERIFY(exited.wait(100'000));
    QVERIFY(m_inOrder);
    QCOMPARE(m_nextStep, floodLines);
    QCOMPARE(m_nextLine, floodLines);
    QCOMPARE(m_controller->lossHistory().size(), BackendController::maximumLossPoints);
    QCOMPARE(m_controller->lossHistory().back().step, floodLines - 1);
#if !defined(__SANITIZE_ADDRESS__)
    const std::int64_t growth = peakMemory() - before;
    QVERIFY2(growth < std::int64_t{64} * 1024 * 1024, qPrintable(QString::number(growth)));
#else
    Q_UNUSED(before)
#endif
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendFloodTest)
#include "BackendFloodTest.moc"
