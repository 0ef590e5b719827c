// Draws the library and the comparison in their states, in a light and a dark palette and in two sizes, as
// files of a folder.

#include "app/settings/ZorelSettings.h"
#include "library/ModelLibraryStore.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "tests/support/RunFolders.h"
#include "ui/kit/Palettes.h"
#include "ui/library/ComparisonSheet.h"
#include "ui/library/LibrarySidebar.h"
#include "ui/library/ModelLibraryView.h"
#include "ui/neurons/CellGrid.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTest>

#include <cmath>
#include <cstdio>

using namespace zorel;
using library::ModelRunComparison;
using ui::library::ModelLibraryView;

namespace {

QByteArray manifest(const char *name, const char *version, const char *family, int day, int step, double loss)
{
    return QStringLiteral(
               R"({"model_identity":{"name":"%1","version":"%2","author":"ada@example.org"},)"
               R"("archived_at":"2026-03-%3T09:26:53Z","step":%4,"max_steps":12000,"final_loss":%5,)"
               R"("val_loss":%6,"elapsed_seconds":%7,"tokens_per_sec":15321.4,"model_family":"%8"})")
        .arg(QString::fromUtf8(name), QString::fromUtf8(version))
        .arg(day, 2, 10, QLatin1Char('0'))
        .arg(step)
        .arg(loss)
        .arg(loss + 0.12)
        .arg(step * 0.42)
        .arg(QString::fromUtf8(family))
        .toUtf8();
}

QByteArray curve(int steps, double end)
{
    QByteArray text;
    for (int step = 10; step <= steps; step += 10) {
        const double noise = 0.12 * std::sin(step * 1.29898) * std::cos(step * 0.37);
        const double loss = end + 6 * std::exp(-step / 1500.0) + noise;
        text += QStringLiteral("{\"step\":%1,\"loss\":%2}\n").arg(step).arg(loss).toUtf8();
    }
    return text;
}

QByteArray snapshot(int blocks, int groups, int phase)
{
    QStringList layers;
    for (int block = 0; block < blocks; ++block) {
        QStringList neurons;
        for (int group = 0; group < groups; ++group) {
            const double activation = 0.3 + 0.3 * std::sin(group * 0.7 + block * 1.3 + phase * 0.4);
            const char *tier = activation < 0.15 ? "inactive" : activation < 0.4 ? "moderate" : "high";
            neurons << QStringLiteral(
                           R"({"index":%1,"activation":%2,"dim_start":%3,"dim_end":%4,"tier":"%5"})")
                           .arg(group)
                           .arg(activation)
                           .arg(group * 16)
                           .arg(group * 16 + 15)
                           .arg(QString::fromLatin1(tier));
        }
        layers << QStringLiteral(R"({"layer":%1,"neurons":[%2]})")
                      .arg(block)
                      .arg(neurons.join(QLatin1Char(',')));
    }
    return QStringLiteral(
               R"({"step":12000,"final":true,"n_layers":%1,"neurons_per_layer":%2,"hidden_dim":%3,"layers":[%4]})")
        .arg(blocks)
        .arg(groups)
        .arg(groups * 16)
        .arg(layers.join(QLatin1Char(',')))
        .toUtf8();
}

/// Finished runs of every kind, and the sheet that shows them.
class Scene
{
public:
    explicit Scene(const QString &name)
    {
        if (name == QLatin1String("empty")) {
            return;
        }
        add("whale-1", manifest("whale-songs", "1.0.0", "text_language", 18, 12000, 2.3456),
            curve(12000, 2.2), snapshot(8, 32, 0));
        add("whale-2", manifest("whale-songs", "1.1.0", "text_language", 19, 8000, 2.1), curve(8000, 2.0),
            snapshot(8, 32, 1));
        add("whale-3",
            manifest("whale-songs", "2.0.0-with-a-very-long-suffix-of-its-own", "text_language", 20, 12000,
                     2.6),
            curve(12000, 2.5), snapshot(12, 24, 2));
        add("bare", manifest("bare", "0.1.0", "text_language", 3, 400, 6.25), {}, {});
        add("image", manifest("harbour-lights", "3.2.0", "image_generation", 5, 40000, 0.0412),
            curve(9000, 0.04), {});
        add("multi", manifest("captions", "1.0.0", "multimodal", 6, 40000, 0.31), curve(9000, 0.3),
            snapshot(4, 8, 0));
        add("damaged", manifest("damaged", "1.0.0", "audio", 7, 12, 3.5), "nothing\n", "{");
        add("long",
            manifest("A name that someone wrote to see whether a hundred and twenty characters still fit "
                     "into the list and "
                     "into the header of the sheet",
                     "1.0.0", "text_language", 8, 12, 3.5),
            {}, {});
    }

    ModelLibraryView &open(QSize size)
    {
        m_settings.setFinishedModelsPath(m_folders.path());
        m_view =
            std::make_unique<ModelLibraryView>(m_store, m_settings, ui::library::LibraryActions{}, nullptr);
        m_view->resize(size);
        m_view->show();
        settle();
        return *m_view;
    }

    const library::ArchivedModelRecord &run(const QString &folder) const
    {
        return *m_store.modelWithId(m_folders.pathOf(folder));
    }

    void choose(const QString &folder)
    {
        m_view->sidebar()->setSelected({});
        Q_EMIT m_view->sidebar()->runChosen(m_folders.pathOf(folder));
        m_view->sidebar()->setSelected(m_folders.pathOf(folder));
        settle();
    }

    void mark(const QString &folder)
    {
        Q_EMIT m_view->sidebar()->baselineChosen(m_folders.pathOf(folder));
        settle();
    }

    std::unique_ptr<ui::library::ComparisonSheet> compare(const QString &baseline, const QString &candidate,
                                                          QSize size)
    {
        auto sheet = std::make_unique<ui::library::ComparisonSheet>(
            m_store, ModelRunComparison{run(baseline), run(candidate)}, nullptr);
        sheet->resize(size);
        sheet->show();
        settle();
        return sheet;
    }

    static void settle()
    {
        for (int turn = 0; turn < 20; ++turn) {
            QTest::qWait(5);
        }
    }

private:
    void add(const char *folder, const QByteArray &manifest, const QByteArray &curve,
             const QByteArray &snapshot)
    {
        const QString name = QString::fromLatin1(folder);
        m_folders.addRun(name, manifest);
        if (!curve.isEmpty()) {
            m_folders.write(name + QStringLiteral("/loss_curve.jsonl"), curve);
        }
        if (!snapshot.isEmpty()) {
            m_folders.write(name + QStringLiteral("/neuron_snapshot.json"), snapshot);
        }
    }

    tests::RunFolders m_folders;
    tests::InMemoryUserDefaults m_defaults;
    app::settings::ZorelSettings m_settings{m_defaults, platform::StandardFolders::below(m_folders.path())};
    library::ModelLibraryStore m_store;
    std::unique_ptr<ModelLibraryView> m_view;
};

/// The sheet as it opens, and the whole of what it scrolls.
void save(QWidget &sheet, const QString &file)
{
    sheet.grab().save(file + QStringLiteral(".png"));
    QScrollArea *page = nullptr;
    for (auto *area : sheet.findChildren<QScrollArea *>()) {
        if (area->isVisible() && (!page || area->height() > page->height())) {
            page = area;
        }
    }
    const int more = page ? page->verticalScrollBar()->maximum() : 0;
    if (more > 0) {
        sheet.resize(sheet.width(), sheet.height() + more);
        Scene::settle();
        sheet.grab().save(file + QStringLiteral("-whole.png"));
    }
}

void drawDetails(const QString &folder, QSize size)
{
    const QString suffix = QStringLiteral("-%1x%2").arg(size.width()).arg(size.height());
    {
        Scene empty(QStringLiteral("empty"));
        save(empty.open(size), folder + QStringLiteral("/empty") + suffix);
    }
    Scene scene(QStringLiteral("full"));
    ModelLibraryView &view = scene.open(size);
    save(view, folder + QStringLiteral("/nothing-chosen") + suffix);
    for (const char *run : {"whale-1", "whale-3", "bare", "image", "multi", "damaged", "long"}) {
        view.resize(size);
        scene.choose(QString::fromLatin1(run));
        save(view, folder + QStringLiteral("/detail-") + QString::fromLatin1(run) + suffix);
    }
    view.resize(size);
    scene.mark(QStringLiteral("whale-1"));
    scene.choose(QStringLiteral("whale-2"));
    if (auto *grid = view.findChild<ui::neurons::CellGrid *>()) {
        grid->pressCell({3, 5});
        Scene::settle();
    }
    save(view, folder + QStringLiteral("/baseline") + suffix);
    view.resize(size);
    view.sidebar()->searchField()->setText(QStringLiteral("nowhere"));
    Scene::settle();
    save(view, folder + QStringLiteral("/no-match") + suffix);
}

void drawComparisons(const QString &folder, QSize size)
{
    Scene scene(QStringLiteral("full"));
    scene.open(size);
    const std::pair<const char *, const char *> pairs[] = {{"whale-1", "whale-2"}, {"whale-1", "whale-3"},
                                                           {"whale-1", "bare"},    {"bare", "whale-1"},
                                                           {"bare", "image"},      {"damaged", "whale-1"}};
    for (const auto &[baseline, candidate] : pairs) {
        const auto sheet = scene.compare(QString::fromLatin1(baseline), QString::fromLatin1(candidate), size);
        const auto grids = sheet->findChildren<ui::neurons::CellGrid *>();
        if (grids.size() > 1 && candidate == std::string_view("whale-2")) {
            grids[1]->pressCell({2, 7});
            Scene::settle();
        }
        save(*sheet, QStringLiteral("%1/compare-%2-%3-%4x%5")
                         .arg(folder, QString::fromLatin1(baseline), QString::fromLatin1(candidate))
                         .arg(size.width())
                         .arg(size.height()));
    }
}

} // namespace

/// library_portrait FOLDER
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QString folder = QApplication::arguments().value(1, QStringLiteral("portraits"));
    for (const auto &[name, palette] : {std::pair{QStringLiteral("light"), ui::kit::lightPalette()},
                                        {QStringLiteral("dark"), ui::kit::darkPalette()}}) {
        QApplication::setPalette(palette);
        const QString place = folder + QLatin1Char('/') + name;
        QDir().mkpath(place);
        for (const QSize size : {QSize(900, 640), QSize(1600, 1000)}) {
            drawDetails(place, size);
            drawComparisons(place, size);
            std::printf("%s %dx%d\n", qUtf8Printable(place), size.width(), size.height());
        }
    }
    return 0;
}
