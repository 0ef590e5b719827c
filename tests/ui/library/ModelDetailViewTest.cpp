#include "ui/library/ModelDetailView.h"
#include "tests/ui/library/Stage.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Badge.h"
#include "ui/kit/LineChart.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/NeuronHeatmapPanel.h"

#include <QTest>

namespace zorel::tests {

using library::ModelLibraryStore;
using ui::library::ModelDetailView;
using ui::neurons::CellPosition;
using ui::neurons::NeuronHeatmapPanel;

class ModelDetailViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theHeaderSaysWhoAndWhat();
    void aVeryLongNameLeavesRoomForTheRest();
    void anUnknownFamilyIsShownAsItStands();
    void anEmptyAuthorIsLeftOut();
    void showsTheFigures();
    void roundsTiesToTheEvenDigit();
    void leavesOutAValidationLossThatIsNone();
    void namesTheSavedArtefacts();
    void drawsTheCurve();
    void drawsTheArchivedSnapshotAndItsSelection();
    void aRunWithoutASnapshotSaysSo();
    void anotherFamilyHasNoPathwaysEvenWithASnapshot();
    void anotherRunClearsTheSelection();
    void aRunThatComesBackIsLoadedAnew();
    void revealsTheRunsFolder();
    void namesAreNeverMarkup();

private:
    void show(const QByteArray &manifest, const QByteArray &curve = {}, const QByteArray &snapshot = {});
    QStringList texts() const { return visibleTexts(*m_view); }
    QStringList badges() const;
    NeuronHeatmapPanel *heatmap() const;

    std::unique_ptr<RunFolders> m_folders;
    std::unique_ptr<ModelLibraryStore> m_store;
    std::unique_ptr<ModelDetailView> m_view;
    QStringList m_revealed;
    int m_runs = 0;
};

void ModelDetailViewTest::init()
{
    m_folders = std::make_unique<RunFolders>();
    m_store = std::make_unique<ModelLibraryStore>();
    m_revealed.clear();
    m_view = std::make_unique<ModelDetailView>(*m_store, [this](const QString &path) { m_revealed << path; });
}

void ModelDetailViewTest::show(const QByteArray &manifest, const QByteArray &curve,
                               const QByteArray &snapshot)
{
    const QString folder = QStringLiteral("run-%1").arg(++m_runs);
    m_folders->addRun(folder, manifest, curve, snapshot);
    m_store->scan(m_folders->path());
    m_view->setModel(*m_store->modelWithId(m_folders->pathOf(folder)));
}

QStringList ModelDetailViewTest::badges() const
{
    QStringList found;
    const auto all = m_view->findChildren<ui::kit::Badge *>();
    for (const auto *badge : all) {
        if (badge->isVisibleTo(m_view.get())) {
            found << badge->text();
        }
    }
    return found;
}

NeuronHeatmapPanel *ModelDetailViewTest::heatmap() const
{
    const auto panels = m_view->findChildren<NeuronHeatmapPanel *>();
    for (auto *panel : panels) {
        if (panel->isVisibleTo(m_view.get())) {
            return panel;
        }
    }
    return nullptr;
}

void ModelDetailViewTest::theHeaderSaysWhoAndWhat()
{
    show(
        R"({"model_identity":{"name":"poet","version":"1.2.0","author":"Ada"},"model_family":"image_generation",
             "training_capability":"finetune","archived_at":"2026-06-01T21:44:12Z"})");
    const QStringList found = texts();
    QVERIFY(found.contains(QStringLiteral("poet v1.2.0")));
    QVERIFY(found.contains(QStringLiteral("by Ada")));
    QVERIFY(found.contains(QStringLiteral("Image Generation")));
    QVERIFY(found.contains(QStringLiteral("Fine-tune existing weights")));
    QStringList symbols;
    const auto labels = m_view->findChildren<ui::kit::SymbolLabel *>();
    for (const auto *label : labels) {
        symbols << label->symbol();
    }
    QCOMPARE(symbols,
             QStringList({QStringLiteral("cube"), QStringLiteral("gearshape"), QStringLiteral("calendar")}));
}

void ModelDetailViewTest::aVeryLongNameLeavesRoomForTheRest()
{
    const QByteArray name = QByteArray("long ").repeated(60).trimmed();
    show(R"({"model_identity":{"name":")" + name + R"(","version":"1"}})");
    m_view->resize(500, 600);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    const auto labels = m_view->findChildren<ui::kit::TextLabel *>();
    const auto shown = std::ranges::find(labels, QString::fromLatin1(name) + QStringLiteral(" v1"),
                                         &ui::kit::TextLabel::text);
    QVERIFY(shown != labels.end());
    const int line = (*shown)->fontMetrics().lineSpacing();
    QTRY_VERIFY((*shown)->height() > 4 * line);
    QTRY_VERIFY((*shown)->visibleRegion().boundingRect().height() <= 4 * line);
}

void ModelDetailViewTest::anUnknownFamilyIsShownAsItStands()
{
    show(R"({"model_family":"vision","training_capability":"distil"})");
    QVERIFY(texts().contains(QStringLiteral("vision")));
    QVERIFY(texts().contains(QStringLiteral("distil")));
}

void ModelDetailViewTest::anEmptyAuthorIsLeftOut()
{
    show(R"({"model_identity":{"name":"poet","author":"  "}})");
    QVERIFY(texts().filter(QStringLiteral("by ")).isEmpty());
}

void ModelDetailViewTest::showsTheFigures()
{
    show(
        R"({"step":1500,"max_steps":2000,"final_loss":2.34567,"val_loss":2.5,"elapsed_seconds":754.6,"tokens_per_sec":12345.6})");
    const QStringList found = texts();
    const qsizetype start = found.indexOf(QStringLiteral("1500 / 2000"));
    QVERIFY(start >= 0);
    for (const auto &[label, value] : std::vector<std::pair<QString, QString>>{
             {QStringLiteral("Steps"), QStringLiteral("1500 / 2000")},
             {QStringLiteral("Final loss"), QStringLiteral("2.3457")},
             {QStringLiteral("Val loss"), QStringLiteral("2.5000")},
             {QStringLiteral("Elapsed"), QStringLiteral("755 s")},
             {QStringLiteral("Throughput"), QStringLiteral("12346 tok/s")}}) {
        QVERIFY2(found.contains(label), qPrintable(label));
        QVERIFY2(found.contains(value), qPrintable(value));
    }
}

void ModelDetailViewTest::roundsTiesToTheEvenDigit()
{
    show(R"({"final_loss":2.03125,"val_loss":2.15625,"elapsed_seconds":42.5,"tokens_per_sec":1234.5})");
    const QStringList found = texts();
    for (const char *value : {"2.0312", "2.1562", "42 s", "1234 tok/s"}) {
        QVERIFY2(found.contains(QString::fromLatin1(value)), value);
    }
}

void ModelDetailViewTest::leavesOutAValidationLossThatIsNone()
{
    show(R"({"final_loss":2.3})");
    QVERIFY(!texts().contains(QStringLiteral("Val loss")));
}

void ModelDetailViewTest::namesTheSavedArtefacts()
{
    show(R"({})", curveText(3), snapshotText(2, 4));
    QCOMPARE(badges(),
             QStringList({QStringLiteral("Loss curve saved"), QStringLiteral("Neuron snapshot saved")}));
    show(R"({})", curveText(3));
    QCOMPARE(badges(), QStringList{QStringLiteral("Loss curve saved")});
    show(R"({})");
    QCOMPARE(badges(), QStringList{});
}

void ModelDetailViewTest::drawsTheCurve()
{
    show(R"({})", curveText(5) + "no point\n");
    const auto charts = m_view->findChildren<ui::kit::LineChart *>();
    QCOMPARE(charts.size(), 1);
    QCOMPARE(charts.first()->accessibleName(), QStringLiteral("Training loss curve"));
    QCOMPARE(charts.first()->points(0).size(), std::size_t{5});
    QCOMPARE(charts.first()->points(0)[4].step, std::int64_t{5});
}

void ModelDetailViewTest::drawsTheArchivedSnapshotAndItsSelection()
{
    show(R"({})", {}, snapshotText(3, 4));
    QVERIFY(heatmap());
    QVERIFY(texts().contains(QStringLiteral("archived snapshot")));
    QVERIFY(texts().contains(QStringLiteral("Neuron pathways")));
    heatmap()->grid()->pressCell({2, 1});
    QCOMPARE(heatmap()->grid()->selectedCell(), (CellPosition{2, 1}));
    QVERIFY(texts().contains(QStringLiteral("Selected neuron")));
    heatmap()->grid()->pressCell({2, 1});
    QVERIFY(!heatmap()->grid()->selectedCell());
}

void ModelDetailViewTest::aRunWithoutASnapshotSaysSo()
{
    show(R"({})", curveText(3));
    QVERIFY(!heatmap());
    QCOMPARE(badges(), QStringList{QStringLiteral("Loss curve saved")});
    QVERIFY(texts().contains(
        QStringLiteral("No neuron snapshot was saved for this run. Complete a new text-language training "
                       "run to capture pathway activations at archive time.")));
}

void ModelDetailViewTest::anotherFamilyHasNoPathwaysEvenWithASnapshot()
{
    show(R"({"model_family":"multimodal"})", {}, snapshotText(3, 4));
    QVERIFY(!heatmap());
}

void ModelDetailViewTest::anotherRunClearsTheSelection()
{
    show(R"({})", {}, snapshotText(3, 4));
    heatmap()->grid()->pressCell({1, 1});
    show(R"({"step":2})", {}, snapshotText(3, 4));
    QVERIFY(!heatmap()->grid()->selectedCell());
    QVERIFY(!texts().contains(QStringLiteral("Selected neuron")));
}

void ModelDetailViewTest::aRunThatComesBackIsLoadedAnew()
{
    show(R"({})", curveText(3));
    const library::ArchivedModelRecord run = *m_view->model();
    m_view->clear();
    QVERIFY(!m_view->model());
    QVERIFY(texts().isEmpty());
    m_folders->write(run.folderName + QStringLiteral("/loss_curve.jsonl"), curveText(5));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_view->setModel(run);
    QCOMPARE(m_view->findChild<ui::kit::LineChart *>()->points(0).size(), std::size_t{5});
}

void ModelDetailViewTest::revealsTheRunsFolder()
{
    show(R"({})");
    auto *reveal = m_view->findChild<ui::kit::ActionButton *>();
    QCOMPARE(reveal->title(), QStringLiteral("Reveal in Finder"));
    QCOMPARE(reveal->symbol(), QStringLiteral("folder"));
    reveal->click();
    QCOMPARE(m_revealed, QStringList{m_folders->pathOf(QStringLiteral("run-%1").arg(m_runs))});
}

void ModelDetailViewTest::namesAreNeverMarkup()
{
    show(R"({"model_identity":{"name":"<b>bold</b> *a*","version":"&amp;","author":"<img src=x>"}})");
    QVERIFY(texts().contains(QStringLiteral("<b>bold</b> *a* v&amp;")));
    QVERIFY(texts().contains(QStringLiteral("by <img src=x>")));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ModelDetailViewTest)
#include "ModelDetailViewTest.moc"
