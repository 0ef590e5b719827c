#include "ui/dashboard/LossChartPanel.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/LineChart.h"

#include <limits>

namespace zorel::tests {

using app::settings::ModelFamily;
using backend::bridge::BackendController;
using ui::dashboard::LiveUpdates;
using ui::dashboard::LossChartPanel;
using ui::kit::LineChart;

class LossChartPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isTitled();
    void hintsWhileItIsEmpty_data();
    void hintsWhileItIsEmpty();
    void losesTheHintWithTheFirstPoint();
    void isAsHighWithPointsAsWithout();
    void showsTheHistory();
    void showsTheHistoryOfBefore();
    void showsWhatWaitsOnce();
    void keepsTheNewest4000();
    void showsASecondRunAfterTheFirst();
    void showsAPointAsStepAndLoss();
    void survivesAnyLoss();

private:
    void make()
    {
        m_panel = std::make_unique<LossChartPanel>(m_stage->backend, m_stage->settings, *m_updates);
    }
    LineChart *chart() const { return m_panel->findChild<LineChart *>(); }
    void addPoints(int count)
    {
        for (int added = 0; added < count; ++added, ++m_step) {
            m_stage->applyStatus(QStringLiteral("running"), m_step, 100'000, 2.5 + m_step);
        }
    }
    void compareWithHistory() const;

    std::int64_t m_step = 1;
    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<LiveUpdates> m_updates;
    std::unique_ptr<LossChartPanel> m_panel;
};

void LossChartPanelTest::init()
{
    m_step = 1;
    m_stage = std::make_unique<Stage>();
    m_updates = std::make_unique<LiveUpdates>(m_stage->backend);
    make();
    m_panel->resize(600, 400);
    m_panel->show();
}

void LossChartPanelTest::cleanup()
{
    m_panel.reset();
    m_updates.reset();
    m_stage.reset();
}

void LossChartPanelTest::compareWithHistory() const
{
    const auto shown = chart()->points(0);
    const auto &history = m_stage->backend.lossHistory();
    QCOMPARE(shown.size(), history.size());
    for (std::size_t index = 0; index < history.size(); ++index) {
        QCOMPARE(shown[index].step, history[index].step);
        QCOMPARE(shown[index].value, history[index].loss);
    }
}

void LossChartPanelTest::isTitled()
{
    QVERIFY(shows(m_panel.get(), QStringLiteral("Loss curve")));
}

void LossChartPanelTest::hintsWhileItIsEmpty_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<ModelFamily>("family");
    QTest::addColumn<QString>("expected");
    QTest::newRow("preparing texts")
        << QStringLiteral("preparing") << ModelFamily::textLanguage
        << QStringLiteral("Preparing data — training tokenizer and tokenizing your corpus.\n"
                          "This runs once per Training Data folder.");
    const QString images = QStringLiteral("Preparing data — indexing images in your Training Data folder.\n"
                                          "This runs once per image corpus.");
    QTest::newRow("preparing images")
        << QStringLiteral("preparing") << ModelFamily::imageGeneration << images;
    QTest::newRow("preparing both") << QStringLiteral("preparing") << ModelFamily::multimodal << images;
    QTest::newRow("starting") << QStringLiteral("starting") << ModelFamily::textLanguage
                              << QStringLiteral("Warming up — first step takes ~15–20 s for JIT compile.");
    QTest::newRow("idle") << QStringLiteral("idle") << ModelFamily::textLanguage
                          << QStringLiteral("Press Start to begin training.");
    QTest::newRow("made up") << QStringLiteral("evaluating") << ModelFamily::multimodal
                             << QStringLiteral("Press Start to begin training.");
}

void LossChartPanelTest::hintsWhileItIsEmpty()
{
    QFETCH(QString, state);
    QFETCH(ModelFamily, family);
    QFETCH(QString, expected);
    m_stage->applyStatus(state);
    m_updates->publish();
    m_stage->settings.selectFamily(family);
    QVERIFY2(shows(m_panel.get(), expected), qPrintable(visibleTexts(m_panel.get()).join(QLatin1Char('|'))));
}

void LossChartPanelTest::isAsHighWithPointsAsWithout()
{
    const int empty = m_panel->sizeHint().height();
    addPoints(3);
    m_updates->publish();
    QVERIFY(chart()->toolRow()->isVisible());
    QCOMPARE(m_panel->sizeHint().height(), empty);
}

void LossChartPanelTest::losesTheHintWithTheFirstPoint()
{
    QVERIFY(shows(m_panel.get(), QStringLiteral("Press Start to begin training.")));
    addPoints(1);
    m_updates->publish();
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Press Start to begin training.")));
}

void LossChartPanelTest::showsTheHistory()
{
    for (const int count : {1, 500, 20}) {
        addPoints(count);
        m_updates->publish();
        compareWithHistory();
    }
}

void LossChartPanelTest::showsTheHistoryOfBefore()
{
    addPoints(100);
    m_updates->publish();
    make();
    compareWithHistory();
}

void LossChartPanelTest::showsWhatWaitsOnce()
{
    addPoints(100); // and no frame yet
    make();
    m_updates->publish();
    compareWithHistory();
}

void LossChartPanelTest::keepsTheNewest4000()
{
    for (const int count : {3900, 200, 9000, 1}) {
        addPoints(count);
        m_updates->publish();
        compareWithHistory();
    }
    QCOMPARE(chart()->points(0).size(), BackendController::maximumLossPoints);
}

void LossChartPanelTest::showsASecondRunAfterTheFirst()
{
    addPoints(100);
    m_step = 1;
    addPoints(50);
    m_updates->publish();
    compareWithHistory();
}

void LossChartPanelTest::showsAPointAsStepAndLoss()
{
    m_stage->applyStatus(QStringLiteral("running"), 120, 1000, 2.34567);
    m_updates->publish();
    QTest::keyClick(chart(), Qt::Key_End);
    const QString spoken = chart()->spokenDescription();
    QVERIFY2(spoken.contains(QStringLiteral("120")) && spoken.contains(QStringLiteral("2.3457")),
             qPrintable(spoken));
    QVERIFY(!spoken.contains(QStringLiteral("2.34567")));
}

void LossChartPanelTest::survivesAnyLoss()
{
    for (const double loss :
         {1e300, std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::infinity()}) {
        m_stage->applyStatus(QStringLiteral("running"), m_step++, 1000, loss);
    }
    m_stage->applyStatus(QStringLiteral("running"), std::numeric_limits<std::int64_t>::max(), 1000, 2.5);
    m_stage->applyStatus(QStringLiteral("running"), std::numeric_limits<std::int64_t>::min(), 1000, 2.5);
    m_updates->publish();
    compareWithHistory();
    QVERIFY(!m_panel->grab().isNull());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::LossChartPanelTest)
#include "LossChartPanelTest.moc"
