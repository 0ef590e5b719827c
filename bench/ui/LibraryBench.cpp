// What the library's screens cost with many runs and large models. All of it is done without a display.

#include "app/settings/ZorelSettings.h"
#include "bench/library/SampleLibrary.h"
#include "bench/support/RatioTable.h"
#include "library/ModelLibraryStore.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "ui/library/LibrarySidebar.h"
#include "ui/library/ModelLibraryView.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/NeuronHeatmapPanel.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPixmap>

#include <array>
#include <memory>

namespace {

using zorel::backend::protocol::NeuronActivityTier;
using zorel::backend::protocol::NeuronSnapshotPayload;
using zorel::library::ModelLibraryStore;
using zorel::ui::library::ModelLibraryView;
using zorel::ui::neurons::NeuronHeatmapPanel;

constexpr int manyRuns = 50'000;

/// A scanned library, and what its sheet needs besides.
struct Library
{
    Library()
        : settings(defaults,
                   zorel::platform::StandardFolders::below(QString::fromStdString(folder.path().string())))
    {
        settings.setFinishedModelsPath(QString::fromStdString(folder.path().string()));
        store.scan(settings.finishedModelsPath());
    }

    std::unique_ptr<ModelLibraryView> open()
    {
        auto view = std::make_unique<ModelLibraryView>(store, settings, zorel::ui::library::LibraryActions{},
                                                       nullptr);
        view->show();
        return view;
    }

    zorel::bench::SampleLibrary folder{manyRuns};
    zorel::tests::InMemoryUserDefaults defaults;
    zorel::app::settings::ZorelSettings settings;
    ModelLibraryStore store;
};

Library &library()
{
    static Library made;
    return made;
}

/// From nothing to the first picture. The scan that follows it is not in here.
void firstPaint(benchmark::State &state)
{
    Library &runs = library();
    for (auto _ : state) {
        const auto view = runs.open();
        benchmark::DoNotOptimize(view->grab());
    }
    state.SetItemsProcessed(state.iterations());
}

/// Until the list is filled, laid out and painted.
void keyPress(benchmark::State &state)
{
    const auto view = library().open();
    benchmark::DoNotOptimize(view->grab());
    auto *sidebar = view->sidebar();
    constexpr std::array queries{"2", "20", "202",    "2026",     "2026-",
                                 "p", "po", "poet-1", "poet-199", "nowhere"};
    std::size_t next = 0;
    for (auto _ : state) {
        sidebar->searchField()->setText(QString::fromLatin1(queries[next++ % queries.size()]));
        benchmark::DoNotOptimize(sidebar->grab());
    }
    state.SetItemsProcessed(state.iterations());
}

NeuronSnapshotPayload largeSnapshot(int step)
{
    constexpr int blocks = 96;
    constexpr int groups = 128;
    NeuronSnapshotPayload snapshot;
    snapshot.step = step;
    snapshot.nLayers = blocks;
    snapshot.neuronsPerLayer = groups;
    snapshot.hiddenDim = groups * 64;
    for (int block = 0; block < blocks; ++block) {
        auto &layer = snapshot.layers.emplace_back();
        layer.layer = block;
        for (int group = 0; group < groups; ++group) {
            const auto tier = static_cast<NeuronActivityTier>((block * 7 + group * 3 + step) % 3);
            layer.neurons.push_back({group, 0.25, group * 64, group * 64 + 63, tier});
        }
    }
    return snapshot;
}

/// Every cell is in sight and has changed.
void newSnapshot(benchmark::State &state)
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    const std::array snapshots{largeSnapshot(0), largeSnapshot(1)};
    panel.setSnapshot(snapshots[0]);
    panel.resize(panel.sizeHint());
    QImage image(panel.grid()->sizeHint(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    std::size_t next = 0;
    for (auto _ : state) {
        panel.setSnapshot(snapshots[++next % 2]);
        panel.grid()->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(firstPaint);
BENCHMARK(keyPress);
BENCHMARK(newSnapshot);

} // namespace

int main(int argc, char **argv)
{
    using Promise = zorel::bench::Row::Promise;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return zorel::bench::RatioTable(
               {
                   {"sheet of 50,000 runs, first picture (100 ms)",
                    "firstPaint",
                    {},
                    Promise::perSecondAtLeast,
                    1000.0 / 100},
                   {"sheet of 50,000 runs, a key press (16 ms)",
                    "keyPress",
                    {},
                    Promise::perSecondAtLeast,
                    1000.0 / 16},
                   {"heatmap of 96 x 128 cells, a snapshot (8 ms)",
                    "newSnapshot",
                    {},
                    Promise::perSecondAtLeast,
                    1000.0 / 8},
               },
               zorel::bench::RatioTable::Estimate::best)
        .run(argc, argv);
}
