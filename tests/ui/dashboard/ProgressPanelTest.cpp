#include "ui/dashboard/ProgressPanel.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/Figure.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/SymbolLabel.h"

#include <QMap>

#include <cmath>
#include <limits>

namespace zorel::tests {

using app::settings::ModelFamily;
using ui::dashboard::LiveUpdates;
using ui::dashboard::ProgressPanel;

class ProgressPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isTitledByTheFamily_data();
    void isTitledByTheFamily();
    void showsTheFigures();
    void hidesAMeaninglessPerplexity_data();
    void hidesAMeaninglessPerplexity();
    void showsADashForWhatIsNotFinite();
    void showsTheSteps();
    void showsThePreparationWhilePreparing();
    void tellsTheTimesApart();
    void detailsThePreparation_data();
    void detailsThePreparation();
    void survivesAnyProgress_data();
    void survivesAnyProgress();

private:
    QString figure(const char *label) const;
    void apply(const backend::protocol::TrainStatusPayload &status);

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<LiveUpdates> m_updates;
    std::unique_ptr<ProgressPanel> m_panel;
};

void ProgressPanelTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_updates = std::make_unique<LiveUpdates>(m_stage->backend);
    m_panel = std::make_unique<ProgressPanel>(m_stage->backend, m_stage->settings, *m_updates);
    m_panel->show();
}

void ProgressPanelTest::cleanup()
{
    m_panel.reset();
    m_updates.reset();
    m_stage.reset();
}

QString ProgressPanelTest::figure(const char *label) const
{
    for (const ui::kit::Figure *candidate : m_panel->findChildren<ui::kit::Figure *>()) {
        if (candidate->label() == QLatin1String(label)) {
            return candidate->value();
        }
    }
    return QStringLiteral("no such figure");
}

void ProgressPanelTest::apply(const backend::protocol::TrainStatusPayload &status)
{
    m_stage->backend.apply(status);
    m_updates->publish();
}

void ProgressPanelTest::isTitledByTheFamily_data()
{
    QTest::addColumn<ModelFamily>("family");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("throughput");
    QTest::newRow("text") << ModelFamily::textLanguage << QStringLiteral("Pretraining progress")
                          << QStringLiteral("Tokens/sec");
    QTest::newRow("images") << ModelFamily::imageGeneration << QStringLiteral("Image training progress")
                            << QStringLiteral("Samples/sec");
    QTest::newRow("both") << ModelFamily::multimodal << QStringLiteral("Multimodal training progress")
                          << QStringLiteral("Samples/sec");
}

void ProgressPanelTest::isTitledByTheFamily()
{
    QFETCH(ModelFamily, family);
    QFETCH(QString, title);
    QFETCH(QString, throughput);
    m_stage->settings.selectFamily(family);
    QVERIFY(shows(m_panel.get(), title));
    QVERIFY(shows(m_panel.get(), throughput));
    const QString other = throughput == QLatin1String("Tokens/sec") ? QStringLiteral("Samples/sec")
                                                                    : QStringLiteral("Tokens/sec");
    QVERIFY(!shows(m_panel.get(), other));
}

void ProgressPanelTest::showsTheFigures()
{
    QCOMPARE(figure("Loss"), QStringLiteral("0.0000"));
    apply(Stage::runningStatus());
    QCOMPARE(figure("Loss"), QStringLiteral("2.3457"));
    QCOMPARE(figure("Perplexity"), QStringLiteral("10.4"));
    QCOMPARE(figure("Learning rate"), QStringLiteral("3.00e-04"));
    QCOMPARE(figure("Grad norm"), QStringLiteral("0.988"));
    QCOMPARE(figure("Tokens/sec"), QStringLiteral("12346"));
    for (const char *text : {"Loss", "Perplexity", "Learning rate", "Grad norm", "Tokens/sec"}) {
        QVERIFY2(shows(m_panel.get(), QString::fromLatin1(text)), text);
    }
}

void ProgressPanelTest::hidesAMeaninglessPerplexity_data()
{
    QTest::addColumn<double>("loss");
    QTest::addColumn<QString>("expected");
    QTest::newRow("0") << 0.0 << QStringLiteral("—");
    QTest::newRow("-1") << -1.0 << QStringLiteral("—");
    QTest::newRow("20") << 20.0 << QStringLiteral("—");
    QTest::newRow("1") << 1.0 << QStringLiteral("2.7");
    QTest::newRow("19.5") << 19.5 << QString::asprintf("%.1f", std::exp(19.5));
}

void ProgressPanelTest::hidesAMeaninglessPerplexity()
{
    QFETCH(double, loss);
    QFETCH(QString, expected);
    auto status = Stage::runningStatus();
    status.loss = loss;
    apply(status);
    QCOMPARE(figure("Perplexity"), expected);
}

void ProgressPanelTest::showsADashForWhatIsNotFinite()
{
    auto status = Stage::runningStatus();
    status.loss = std::numeric_limits<double>::quiet_NaN();
    status.lr = status.gradNorm = status.tokensPerSec = std::numeric_limits<double>::infinity();
    apply(status);
    for (const char *label : {"Loss", "Perplexity", "Learning rate", "Grad norm", "Tokens/sec"}) {
        QCOMPARE(figure(label), QStringLiteral("—"));
    }
}

void ProgressPanelTest::showsTheSteps()
{
    m_stage->applyStatus(QStringLiteral("running"), 120, 1000);
    m_updates->publish();
    QVERIFY(shows(m_panel.get(), QStringLiteral("120 / 1,000")));
    QCOMPARE(m_panel->findChild<ui::kit::ProgressMeter *>()->fraction(), std::optional(0.12));
}

void ProgressPanelTest::showsThePreparationWhilePreparing()
{
    auto status = Stage::runningStatus();
    status.state = QStringLiteral("preparing");
    status.prepProgress = 0.43;
    status.prepDetail = QStringLiteral("Tokenizing notes.txt");
    status.prepElapsedS = 42.9;
    status.prepEtaS = 3785;
    apply(status);
    QStringList texts;
    for (const auto *label : m_panel->findChildren<ui::kit::ElidedLabel *>()) {
        if (label->isVisible()) {
            texts << label->text();
        }
    }
    for (const char *text : {"Preparing data", "43%", "Tokenizing notes.txt", "42s", "1h03m"}) {
        QVERIFY2(texts.contains(QString::fromLatin1(text)), text);
    }
    status.prepEtaS = 0;
    apply(status);
    QVERIFY(!shows(m_panel.get(), QStringLiteral("0s")));
    apply(Stage::runningStatus());
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Preparing data")));
}

void ProgressPanelTest::tellsTheTimesApart()
{
    auto status = Stage::runningStatus();
    status.state = QStringLiteral("preparing");
    status.prepElapsedS = 61;
    status.prepEtaS = 3600;
    apply(status);
    QCOMPARE(symbols(m_panel.get()), QStringList({QStringLiteral("wand.and.stars"), QStringLiteral("clock"),
                                                  QStringLiteral("hourglass")}));
    QMap<QString, QString> times;
    for (const auto *symbol : m_panel->findChildren<ui::kit::SymbolLabel *>()) {
        if (const auto *time = symbol->parentWidget()->findChild<ui::kit::ElidedLabel *>(
                QString(), Qt::FindDirectChildrenOnly)) {
            times.insert(symbol->symbol(), time->text());
        }
    }
    QCOMPARE(times.value(QStringLiteral("clock")), QStringLiteral("1m01s"));
    QCOMPARE(times.value(QStringLiteral("hourglass")), QStringLiteral("1h00m"));
}

void ProgressPanelTest::detailsThePreparation_data()
{
    QTest::addColumn<ModelFamily>("family");
    QTest::addColumn<QString>("expected");
    QTest::newRow("text") << ModelFamily::textLanguage << QStringLiteral("Working on your corpus…");
    QTest::newRow("images") << ModelFamily::imageGeneration
                            << QStringLiteral("Indexing images in your training folder…");
    QTest::newRow("both") << ModelFamily::multimodal
                          << QStringLiteral("Indexing images in your training folder…");
}

void ProgressPanelTest::detailsThePreparation()
{
    QFETCH(ModelFamily, family);
    QFETCH(QString, expected);
    m_stage->settings.selectFamily(family);
    m_stage->applyStatus(QStringLiteral("preparing"));
    m_updates->publish();
    QVERIFY(shows(m_panel.get(), expected));
}

void ProgressPanelTest::survivesAnyProgress_data()
{
    QTest::addColumn<double>("progress");
    QTest::addColumn<QString>("percentage");
    QTest::newRow("below") << -1.0 << QStringLiteral("0%");
    QTest::newRow("beyond") << 17.0 << QStringLiteral("100%");
    QTest::newRow("huge") << 1e300 << QStringLiteral("100%");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << QStringLiteral("—");
}

void ProgressPanelTest::survivesAnyProgress()
{
    QFETCH(double, progress);
    QFETCH(QString, percentage);
    auto status = Stage::runningStatus();
    status.state = QStringLiteral("preparing");
    status.prepProgress = status.prepEtaS = status.prepElapsedS = progress;
    status.prepDetail = QString(10'000, QLatin1Char('x'));
    status.step = std::numeric_limits<std::int64_t>::min();
    status.maxSteps = std::numeric_limits<std::int64_t>::max();
    apply(status);
    QVERIFY(shows(m_panel.get(), percentage));
    QVERIFY(m_panel->minimumSizeHint().width() < 640);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ProgressPanelTest)
#include "ProgressPanelTest.moc"
