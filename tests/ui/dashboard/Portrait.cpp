// Draws the dashboard in each of its states, in a light and a dark palette and in two sizes, as files of a
// folder.

#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/MainView.h"
#include "ui/kit/KitStyle.h"
#include "ui/kit/Palettes.h"

#include <QApplication>
#include <QDir>
#include <QScrollArea>
#include <QScrollBar>

#include <cmath>
#include <cstdio>
#include <map>

using namespace zorel;
using app::folders::ConfiguredFolder;
using app::settings::ModelFamily;
using tests::Stage;

namespace {

void addHistory(Stage &stage, int steps)
{
    for (int index = 1; index <= steps; ++index) {
        auto status = Stage::runningStatus();
        status.step = index * 10;
        status.loss =
            2.2 + 6.5 * std::exp(-index / 120.0) + 0.15 * std::sin(index * 12.9898) * std::cos(index * 3.7);
        status.valLoss = status.loss + 0.08;
        stage.backend.apply(status);
    }
}

void addLog(Stage &stage)
{
    for (const char *line :
         {"sidecar root → /Applications/Talvex LLM Trainer.app/Contents/Resources/sidecar",
          "starting Python backend (/Users/ada/Library/Python/3.11/bin/python3)",
          "backend ready (default max_steps = 50000)", "library: /Users/ada/Documents/Zorel",
          "  training data → /Users/ada/Documents/Zorel/Training Data",
          "[py stderr] WARN: 3 files are not UTF-8 and were skipped", "step=10 loss=8.1234 lr=3.00e-05",
          "step=20 loss=7.4312 lr=6.00e-05", "× ERROR: notes/broken.txt cannot be read: permission denied",
          "✓ archived model → /Users/ada/Documents/Zorel/Finished models/2026-06-01_21-44-12"}) {
        stage.backend.appendLog(QString::fromUtf8(line));
    }
}

/// What each picture shows; the stage is fresh, with a log of a usual start.
const std::map<QString, std::function<void(Stage &)>> &scenes()
{
    static const std::map<QString, std::function<void(Stage &)>> all{
        {QStringLiteral("starting"),
         [](Stage &) {
         }},
        {QStringLiteral("ready"),
         [](Stage &stage) {
             stage.becomeReady(50'000);
         }},
        {QStringLiteral("preparing"),
         [](Stage &stage) {
             stage.becomeReady();
             auto status = Stage::runningStatus();
             status.state = QStringLiteral("preparing");
             status.step = 0;
             status.loss = status.lr = status.gradNorm = status.tokensPerSec = 0;
             status.prepProgress = 0.43;
             status.prepElapsedS = 42;
             status.prepEtaS = 3785;
             stage.backend.apply(status);
         }},
        {QStringLiteral("warming"),
         [](Stage &stage) {
             stage.becomeReady();
             stage.applyStatus(QStringLiteral("starting"));
         }},
        {QStringLiteral("running"),
         [](Stage &stage) {
             stage.becomeReady();
             addHistory(stage, 400);
         }},
        {QStringLiteral("paused"),
         [](Stage &stage) {
             stage.becomeReady();
             addHistory(stage, 60);
             auto status = stage.backend.status();
             status.state = QStringLiteral("paused");
             stage.backend.apply(status);
         }},
        {QStringLiteral("stopping"),
         [](Stage &stage) {
             stage.becomeReady();
             addHistory(stage, 200);
             auto status = stage.backend.status();
             status.state = QStringLiteral("stopping");
             stage.backend.apply(status);
         }},
        {QStringLiteral("done"),
         [](Stage &stage) {
             stage.becomeReady();
             addHistory(stage, 800);
             auto status = stage.backend.status();
             status.state = QStringLiteral("done");
             status.step = status.maxSteps;
             stage.backend.apply(status);
             stage.backend.apply(backend::protocol::ArchivedModel{
                 QStringLiteral("/Users/ada/Documents/Zorel/Finished models/2026-06-01_21-44-12"),
                 QStringLiteral("2026-06-01_21-44-12"), 50'000, 2.2, 3725});
         }},
        {QStringLiteral("error"),
         [](Stage &stage) {
             stage.becomeReady();
             addHistory(stage, 40);
             auto status = stage.backend.status();
             status.state = QStringLiteral("error");
             status.error = QStringLiteral("The memory is full. Lower “batch_size” or “context_length” in "
                                           "settings.json of the working directory.");
             stage.backend.apply(status);
         }},
        {QStringLiteral("banner"),
         [](Stage &stage) {
             stage.becomeReady();
             stage.setBlocked({ConfiguredFolder::trainingData, ConfiguredFolder::finishedModels,
                               ConfiguredFolder::modelRoot});
         }},
        {QStringLiteral("fatal"),
         [](Stage &stage) {
             stage.sidecar.scriptsExist = false;
             stage.backend.launch();
         }},
        {QStringLiteral("image"),
         [](Stage &stage) {
             stage.becomeReady();
             stage.settings.selectFamily(ModelFamily::imageGeneration);
             addHistory(stage, 100);
         }},
        {QStringLiteral("long"),
         [](Stage &stage) {
             stage.becomeReady();
             const QString text =
                 QStringLiteral("עברית \"quoted\" <b>bold</b> %1 &amp; name\nsecond line ").repeated(200);
             stage.settings.setModelName(text);
             stage.settings.setModelDescription(text);
             stage.settings.setTrainingCapability(app::settings::TrainingCapability::lora);
             auto status = Stage::runningStatus();
             status.state = QStringLiteral("preparing");
             status.step = std::numeric_limits<qint64>::max();
             status.maxSteps = std::numeric_limits<qint64>::max();
             status.loss = 1e300;
             status.prepDetail = QStringLiteral("/Users/ada/") + text;
             status.error = QString(2000, QLatin1Char('x'));
             stage.backend.apply(status);
             stage.backend.appendLog(text.repeated(5));
             stage.backend.apply(
                 backend::protocol::ArchivedModel{QStringLiteral("/tmp/") + text, text, 1, 1, 1});
         }},
    };
    return all;
}

QWidget *pageOf(QWidget &view)
{
    return view.findChild<QScrollArea *>()->widget();
}

void settle()
{
    for (int turn = 0; turn < 20; ++turn) {
        QTest::qWait(5);
    }
}

void draw(const QString &folder, const QString &name, const std::function<void(Stage &)> &scene, QSize size)
{
    Stage stage;
    stage.store.values.insert(QStringLiteral("zorel.logExpanded"), size.width() > 1000);
    addLog(stage);
    ui::dashboard::MainView view({.backend = stage.backend,
                                  .settings = stage.settings,
                                  .access = stage.access,
                                  .defaults = stage.store},
                                 stage.actions);
    view.resize(size);
    view.show();
    scene(stage);
    settle();
    const auto save = [&](const QString &part) {
        const QString file = QStringLiteral("%1/%2-%3x%4%5.png")
                                 .arg(folder, name)
                                 .arg(size.width())
                                 .arg(size.height())
                                 .arg(part);
        view.grab().save(file);
    };
    save({});
    QScrollBar *bar = view.findChild<QScrollArea *>()->verticalScrollBar();
    if (bar->maximum() > 0) {
        bar->setValue(bar->maximum());
        settle();
        save(QStringLiteral("-end"));
        // The whole page at once.
        view.resize(size.width(), size.height() + bar->maximum());
        settle();
        save(QStringLiteral("-whole"));
    }
    std::printf("%s %dx%d page %dx%d\n", qUtf8Printable(name), size.width(), size.height(),
                pageOf(view)->width(), pageOf(view)->height());
}

} // namespace

/// dashboard_portrait FOLDER [STATE...]
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle(new ui::kit::KitStyle);
    const QStringList arguments = QApplication::arguments();
    const QString folder = arguments.value(1, QStringLiteral("portraits"));
    for (const auto &[name, palette] : {std::pair{QStringLiteral("light"), ui::kit::lightPalette()},
                                        {QStringLiteral("dark"), ui::kit::darkPalette()}}) {
        QApplication::setPalette(palette);
        QDir().mkpath(folder + QLatin1Char('/') + name);
        for (const auto &[scene, prepare] : scenes()) {
            if (arguments.size() > 2 && !arguments.mid(2).contains(scene)) {
                continue;
            }
            for (const QSize size : {QSize(900, 640), QSize(1600, 1000), QSize(640, 480)}) {
                draw(folder + QLatin1Char('/') + name, scene, prepare, size);
            }
        }
    }
    return 0;
}
