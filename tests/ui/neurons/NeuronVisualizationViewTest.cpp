#include "ui/neurons/NeuronVisualizationView.h"
#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "tests/support/Snapshots.h"
#include "ui/kit/TextLabel.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/CellGridView.h"
#include "ui/neurons/NeuronHeatmapPanel.h"

#include <QRadioButton>
#include <QTest>

namespace zorel::tests {

using app::settings::ModelFamily;
using backend::protocol::NeuronSelection;
using ui::neurons::CellPosition;
using ui::neurons::NeuronVisualizationView;

class NeuronVisualizationViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void saysWhyThereIsNoSnapshot_data();
    void saysWhyThereIsNoSnapshot();
    void otherFamiliesGetTheirMessageEvenWithASnapshot();
    void drawsTheLiveSnapshot();
    void switchesToTheFinalSnapshotAndBack();
    void theSwitchIsDisabledWithoutAFinalSnapshot();
    void theFinalSnapshotStaysChosenForTheNextRun();
    void messagesHaveRoom();
    void aHighHeatmapScrolls();
    void aSelectedCellFollowsTheSnapshots();
    void manySnapshotsBeforeAFrameAreDrawnOnce();

private:
    void applyState(const QString &state);
    void applySnapshot(int layers, int neurons, bool final);
    QRadioButton *button(const QString &text) const;
    bool shows(const QString &text) const;

    std::unique_ptr<FakeSidecar> m_sidecar;
    std::unique_ptr<InMemoryUserDefaults> m_store;
    std::unique_ptr<app::settings::ZorelSettings> m_settings;
    std::unique_ptr<backend::bridge::BackendController> m_backend;
    std::unique_ptr<NeuronVisualizationView> m_view;
};

void NeuronVisualizationViewTest::init()
{
    m_sidecar = std::make_unique<FakeSidecar>();
    m_store = std::make_unique<InMemoryUserDefaults>();
    m_settings = std::make_unique<app::settings::ZorelSettings>(
        *m_store, platform::StandardFolders::below(m_sidecar->pathOf(QStringLiteral("home"))));
    m_backend = std::make_unique<backend::bridge::BackendController>(*m_settings, m_sidecar->surroundings());
    m_view = std::make_unique<NeuronVisualizationView>(*m_backend, *m_settings);
}

void NeuronVisualizationViewTest::cleanup()
{
    m_view.reset();
    m_backend.reset();
}

void NeuronVisualizationViewTest::applyState(const QString &state)
{
    backend::protocol::TrainStatusPayload status;
    status.state = state;
    m_backend->apply(status);
}

void NeuronVisualizationViewTest::applySnapshot(int layers, int neurons, bool final)
{
    auto snapshot = makeSnapshot(layers, neurons);
    snapshot.final = final;
    m_backend->apply(snapshot);
}

QRadioButton *NeuronVisualizationViewTest::button(const QString &text) const
{
    const auto buttons = m_view->findChildren<QRadioButton *>();
    for (auto *candidate : buttons) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    return nullptr;
}

bool NeuronVisualizationViewTest::shows(const QString &text) const
{
    const auto labels = m_view->findChildren<ui::kit::TextLabel *>();
    return std::any_of(labels.begin(), labels.end(), [&](const auto *label) {
        return label->isVisibleTo(m_view.get()) && label->text() == text;
    });
}

void NeuronVisualizationViewTest::saysWhyThereIsNoSnapshot_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("text");
    QTest::newRow("preparing") << QStringLiteral("preparing")
                               << QStringLiteral("Neuron activity will appear once training begins.");
    QTest::newRow("paused") << QStringLiteral("paused") << QStringLiteral("Capturing first neuron snapshot…");
    QTest::newRow("done") << QStringLiteral("done")
                          << QStringLiteral("Start training to visualize neuron activations.");
    QTest::newRow("stopping") << QStringLiteral("stopping")
                              << QStringLiteral("Press Start to begin neuron monitoring.");
}

void NeuronVisualizationViewTest::saysWhyThereIsNoSnapshot()
{
    QFETCH(QString, state);
    QFETCH(QString, text);
    applyState(state);
    QTRY_VERIFY(shows(text));
    QVERIFY(!m_view->panel()->isVisibleTo(m_view.get()));
}

void NeuronVisualizationViewTest::otherFamiliesGetTheirMessageEvenWithASnapshot()
{
    applySnapshot(2, 4, false);
    m_settings->selectFamily(ModelFamily::imageGeneration);
    QTRY_VERIFY(shows(QStringLiteral("Neuron visualization is available for text language models.\n"
                                     "Image and multimodal models use convolutional feature maps.")));
    QVERIFY(!m_view->panel()->isVisibleTo(m_view.get()));
    m_settings->selectFamily(ModelFamily::textLanguage);
    QTRY_VERIFY(m_view->panel()->isVisibleTo(m_view.get()));
}

void NeuronVisualizationViewTest::drawsTheLiveSnapshot()
{
    applySnapshot(3, 8, false);
    QTRY_VERIFY(m_view->panel()->isVisibleTo(m_view.get()));
    QVERIFY(shows(QStringLiteral("Neuron activity")));
    QVERIFY(shows(QStringLiteral("live")));
    QVERIFY(shows(QStringLiteral("step 120")));
    QVERIFY(m_view->panel()->grid()->hasCell({2, 7}));
}

void NeuronVisualizationViewTest::switchesToTheFinalSnapshotAndBack()
{
    applySnapshot(3, 8, false);
    applySnapshot(5, 8, true);
    QTRY_VERIFY(button(QStringLiteral("Final"))->isEnabled());
    QVERIFY(!m_view->panel()->grid()->hasCell({4, 0}));
    button(QStringLiteral("Final"))->click();
    QVERIFY(m_view->panel()->grid()->hasCell({4, 0}));
    QVERIFY(shows(QStringLiteral("final")));
    button(QStringLiteral("Live"))->click();
    QVERIFY(!m_view->panel()->grid()->hasCell({4, 0}));
    QVERIFY(shows(QStringLiteral("live")));
}

void NeuronVisualizationViewTest::theSwitchIsDisabledWithoutAFinalSnapshot()
{
    QVERIFY(!button(QStringLiteral("Final"))->isEnabled());
    QVERIFY(button(QStringLiteral("Live"))->isChecked());
    applySnapshot(3, 8, false);
    QCoreApplication::processEvents();
    QVERIFY(!button(QStringLiteral("Final"))->isEnabled());
}

void NeuronVisualizationViewTest::theFinalSnapshotStaysChosenForTheNextRun()
{
    applySnapshot(2, 8, true);
    QTRY_VERIFY(button(QStringLiteral("Final"))->isEnabled());
    button(QStringLiteral("Final"))->click();

    m_sidecar->play(
        {step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")}}),
         step(QStringLiteral("wait_for_eof"), true)});
    m_backend->launch();
    QTRY_VERIFY_WITH_TIMEOUT(m_backend->ready(), 30'000);
    m_backend->startTraining(false);
    QVERIFY(!m_backend->finalNeurons());
    applySnapshot(3, 8, false);
    QTRY_VERIFY(shows(QStringLiteral("live")));
    QVERIFY(!button(QStringLiteral("Final"))->isEnabled());
    QVERIFY(button(QStringLiteral("Live"))->isChecked());

    applySnapshot(4, 8, true);
    QTRY_VERIFY(shows(QStringLiteral("final")));
    QVERIFY(button(QStringLiteral("Final"))->isChecked());
    QVERIFY(m_view->panel()->grid()->hasCell({3, 0}));
}

void NeuronVisualizationViewTest::messagesHaveRoom()
{
    const auto roomOf = [this](const QString &beginning) {
        const auto labels = m_view->findChildren<ui::kit::TextLabel *>();
        for (const auto *label : labels) {
            if (label->isVisibleTo(m_view.get()) && label->text().startsWith(beginning)) {
                return label->minimumHeight();
            }
        }
        return 0;
    };
    QCOMPARE(roomOf(QStringLiteral("Start training")), 160);
    m_settings->selectFamily(ModelFamily::multimodal);
    QTRY_COMPARE(roomOf(QStringLiteral("Neuron visualization")), 120);
}

void NeuronVisualizationViewTest::aHighHeatmapScrolls()
{
    const auto heightOfView = [this] {
        const auto *view = m_view->findChild<ui::neurons::CellGridView *>();
        return view->maximumHeight();
    };
    applySnapshot(4, 8, false);
    QTRY_VERIFY(m_view->panel()->grid()->hasCell({3, 0}));
    QVERIFY(heightOfView() < 220);
    applySnapshot(96, 8, false);
    QTRY_VERIFY(m_view->panel()->grid()->hasCell({95, 0}));
    QCOMPARE(heightOfView(), 220);
}

void NeuronVisualizationViewTest::aSelectedCellFollowsTheSnapshots()
{
    applySnapshot(3, 8, false);
    QTRY_VERIFY(m_view->panel()->grid()->hasCell({1, 2}));
    m_view->panel()->grid()->pressCell({1, 2});
    QVERIFY(m_backend->selectedNeuron().has_value());
    QCOMPARE(m_view->panel()->grid()->selectedCell(), (CellPosition{1, 2}));
    QVERIFY(shows(QStringLiteral("0.1200")));

    auto snapshot = makeSnapshot(3, 8);
    snapshot.layers[1].neurons[2].activation = 0.75;
    m_backend->apply(snapshot);
    QTRY_VERIFY(shows(QStringLiteral("0.7500")));

    m_view->panel()->grid()->pressCell({1, 2});
    QVERIFY(!m_backend->selectedNeuron().has_value());
}

void NeuronVisualizationViewTest::manySnapshotsBeforeAFrameAreDrawnOnce()
{
    applySnapshot(3, 8, false);
    QTRY_VERIFY(m_view->panel()->isVisibleTo(m_view.get()));
    const auto *before = m_view->panel()->grid()->source();
    for (int count = 0; count < 5; ++count) {
        applySnapshot(3, 8, false);
        QCOMPARE(m_view->panel()->grid()->source(), before);
    }
    QTRY_VERIFY(m_view->panel()->grid()->source() != before);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::NeuronVisualizationViewTest)
#include "NeuronVisualizationViewTest.moc"
