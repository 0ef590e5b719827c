#include "ui/dashboard/MainView.h"

#include "tests/support/Snapshots.h"
#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/ActivityLogPanel.h"
#include "ui/dashboard/FolderAccessBanner.h"
#include "ui/dashboard/LibraryPanel.h"
#include "ui/dashboard/LogView.h"
#include "ui/dashboard/LossChartPanel.h"
#include "ui/dashboard/MaxStepsPanel.h"
#include "ui/dashboard/ModelIdentityPanel.h"
#include "ui/dashboard/ModelTypePanel.h"
#include "ui/dashboard/ProgressPanel.h"
#include "ui/dashboard/RunControls.h"
#include "ui/dashboard/SessionPanel.h"
#include "ui/dashboard/StatusHeader.h"
#include "ui/kit/CollapsibleSection.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/Toast.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/CellGridView.h"

#include <QAccessible>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>

namespace zorel::tests {

using app::folders::ConfiguredFolder;
using namespace ui::dashboard;

namespace {

/// With every section open, and a notice that a folder is blocked.
const QStringList namesOfTabStops{
    QStringLiteral("Hide log panel"),
    QStringLiteral("Open Privacy Settings"),
    QStringLiteral("Re-check folder access"),
    QStringLiteral("Text Language Model"),
    QStringLiteral("Pretrain from scratch"),
    QStringLiteral("Model Identity"),
    QStringLiteral("Name"),
    QStringLiteral("Version"),
    QStringLiteral("Author"),
    QStringLiteral("License"),
    QStringLiteral("Description"),
    QStringLiteral("Reset Identity"),
    QStringLiteral("Training round, steps"),
    QStringLiteral("Apply"),
    QStringLiteral("Fewer steps"),
    QStringLiteral("More steps"),
    QStringLiteral("100"),
    QStringLiteral("1,000"),
    QStringLiteral("10,000"),
    QStringLiteral("50,000"),
    QStringLiteral("Start"),
    QStringLiteral("Resume from latest checkpoint"),
    QStringLiteral("Loss curve"),
    QStringLiteral("Live"),
    QStringLiteral("Browse Trained Models"),
    QStringLiteral("Open Training Data"),
    QStringLiteral("Open Finished Models in Finder"),
    QStringLiteral("Library Root"),
    QStringLiteral("Open Settings (⌘,)"),
    QStringLiteral("Recent activity"),
    QStringLiteral("Hide"),
    QStringLiteral("Recent activity"),
};

} // namespace

class MainViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ordersThePanels();
    void usesTheWidth();
    void showsTheStepsAndTheControlsAtItsOwnSize();
    void fitsSmallWindows_data();
    void fitsSmallWindows();
    void keepsTheControlsInSight_data();
    void keepsTheControlsInSight();
    void tabsInTheOrderOfReading();
    void showsWhatHasTheFocus_data();
    void showsWhatHasTheFocus();
    void aClickInAHighHeatmapScrollsNothing();
    void showsWhatWasOpened_data();
    void showsWhatWasOpened();
    void togglesTheLogAndGoesThere();
    void showsTheToastOverThePage();
    void toastLeavesTheControlsInReach_data();
    void toastLeavesTheControlsInReach();
    void partsTheHeaderFromAScrolledPage();
    void restsWhileNothingChanges();
    void startsAfreshWithEachWindow();

private:
    void make(QSize size);
    template <typename Panel>
    QRect inView() const
    {
        const auto *panel = m_view->findChild<Panel *>();
        return {panel->mapTo(m_view.get(), QPoint(0, 0)), panel->size()};
    }
    QRect inView(const QWidget *widget) const
    {
        return {widget->mapTo(m_view.get(), QPoint(0, 0)), widget->size()};
    }
    QScrollArea *page() const { return m_view->findChild<QScrollArea *>(); }
    void openEverything();
    std::vector<QWidget *> tabStops() const;

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<MainView> m_view;
};

void MainViewTest::init()
{
    m_stage = std::make_unique<Stage>();
}

void MainViewTest::cleanup()
{
    m_view.reset();
    m_stage.reset();
}

void MainViewTest::make(QSize size)
{
    m_view = std::make_unique<MainView>(MainView::Model{.backend = m_stage->backend,
                                                        .settings = m_stage->settings,
                                                        .access = m_stage->access,
                                                        .defaults = m_stage->store},
                                        m_stage->actions);
    m_view->resize(size);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

/// The highest and widest that the page gets.
void MainViewTest::openEverything()
{
    m_stage->setBlocked(
        {ConfiguredFolder::trainingData, ConfiguredFolder::finishedModels, ConfiguredFolder::modelRoot});
    for (ui::kit::CollapsibleSection *section : m_view->findChildren<ui::kit::CollapsibleSection *>()) {
        section->setExpanded(true);
    }
    auto status = Stage::runningStatus();
    status.state = QStringLiteral("preparing");
    status.prepDetail = QString(10'000, QLatin1Char('x'));
    status.error = QString(500, QLatin1Char('x'));
    status.valLoss = 2;
    m_stage->backend.apply(status);
    QTRY_VERIFY(shows(m_view.get(), QStringLiteral("Preparing data")));
    QTRY_VERIFY(m_view->findChild<LogView *>()->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

std::vector<QWidget *> MainViewTest::tabStops() const
{
    std::vector<QWidget *> stops;
    for (QWidget *widget = m_view->nextInFocusChain(); widget != m_view.get();
         widget = widget->nextInFocusChain()) {
        if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0) {
            stops.push_back(widget);
        }
    }
    return stops;
}

void MainViewTest::ordersThePanels()
{
    make({900, 640});
    openEverything();
    const std::vector<QRect> panels{
        inView<FolderAccessBanner>(), inView<ModelTypePanel>(), inView<ModelIdentityPanel>(),
        inView<MaxStepsPanel>(),      inView<ProgressPanel>(),  inView<LossChartPanel>(),
        inView<SessionPanel>(),       inView<LibraryPanel>(),   inView<ActivityLogPanel>()};
    for (std::size_t index = 1; index < panels.size(); ++index) {
        QVERIFY(panels[index - 1].bottom() < panels[index].top());
        QCOMPARE(panels[index].left(), panels[0].left());
    }
    // The controls stand between the steps and the progress as soon as that place is in sight.
    QScrollBar *bar = page()->verticalScrollBar();
    bar->setValue(bar->value() + inView<MaxStepsPanel>().top());
    QVERIFY(inView<MaxStepsPanel>().bottom() < inView<RunControls>().top());
    QVERIFY(inView<RunControls>().bottom() < inView<ProgressPanel>().top());
}

void MainViewTest::usesTheWidth()
{
    make({1600, 1000});
    QVERIFY(inView<ModelTypePanel>().right() < inView<ProgressPanel>().left());
    QVERIFY(inView<RunControls>().right() < inView<ProgressPanel>().left());
    QCOMPARE(inView<ModelTypePanel>().top(), inView<ProgressPanel>().top());
    QVERIFY(inView<ProgressPanel>().bottom() < inView<LossChartPanel>().top());
    QVERIFY(inView<LossChartPanel>().bottom() < inView<SessionPanel>().top());
    QVERIFY(inView<LibraryPanel>().top() > inView<SessionPanel>().bottom());
    QVERIFY(inView<LibraryPanel>().top() > inView<RunControls>().bottom());
    m_view->resize(900, 1000);
    QTRY_VERIFY(inView<ModelTypePanel>().bottom() < inView<ProgressPanel>().top());
}

void MainViewTest::showsTheStepsAndTheControlsAtItsOwnSize()
{
    make({900, 640});
    m_view->resize(m_view->sizeHint());
    m_stage->becomeReady();
    QTRY_VERIFY(shows(m_view.get(), QStringLiteral("Begin training")));
    QTRY_VERIFY(inView<MaxStepsPanel>().bottom() < inView<RunControls>().top());
    QVERIFY(inView(page()->viewport()).contains(inView<RunControls>()));
}

void MainViewTest::fitsSmallWindows_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("640x480") << QSize(640, 480);
    QTest::newRow("900x640") << QSize(900, 640);
    QTest::newRow("1100x700") << QSize(1100, 700);
    QTest::newRow("1600x1000") << QSize(1600, 1000);
}

void MainViewTest::fitsSmallWindows()
{
    QFETCH(QSize, size);
    make(size);
    QCOMPARE(m_view->minimumSizeHint(), QSize(640, 480));
    openEverything();
    QCOMPARE(m_view->size(), size);
    QCOMPARE(page()->horizontalScrollBar()->maximum(), 0);
    for (const QWidget *widget : page()->widget()->findChildren<QWidget *>()) {
        if (widget->isVisible()) {
            const QRect area(widget->mapTo(page()->widget(), QPoint(0, 0)), widget->size());
            QVERIFY2(area.left() >= 0 && area.right() < page()->widget()->width(),
                     widget->metaObject()->className());
        }
    }
}

void MainViewTest::keepsTheControlsInSight_data()
{
    fitsSmallWindows_data();
}

void MainViewTest::keepsTheControlsInSight()
{
    QFETCH(QSize, size);
    make(size);
    openEverything();
    QScrollBar *bar = page()->verticalScrollBar();
    for (int part = 0; part <= 10; ++part) {
        bar->setValue(bar->maximum() * part / 10);
        const QRect view = inView(page()->viewport());
        QVERIFY(view.contains(inView(button(m_view.get(), QStringLiteral("Start")))));
        QVERIFY(view.contains(inView(button(m_view.get(), QStringLiteral("Stop")))));
        QVERIFY(view.contains(inView<RunControls>()));
    }
}

void MainViewTest::tabsInTheOrderOfReading()
{
    make({900, 640});
    m_stage->setBlocked({ConfiguredFolder::modelRoot});
    m_stage->becomeReady();
    for (ui::kit::CollapsibleSection *section : m_view->findChildren<ui::kit::CollapsibleSection *>()) {
        section->setExpanded(true);
    }
    QTRY_VERIFY(shows(m_view.get(), QStringLiteral("Begin training")));
    QTRY_VERIFY(m_view->findChild<LogView *>()->isVisible());
    QStringList found;
    for (QWidget *stop : tabStops()) {
        found << QAccessible::queryAccessibleInterface(stop)->text(QAccessible::Name);
    }
    for (qsizetype index = 0; index < std::min(found.size(), namesOfTabStops.size()); ++index) {
        QCOMPARE(found[index], namesOfTabStops[index]);
    }
    QCOMPARE(found.size(), namesOfTabStops.size());
}

void MainViewTest::showsWhatHasTheFocus_data()
{
    fitsSmallWindows_data();
}

void MainViewTest::showsWhatHasTheFocus()
{
    QFETCH(QSize, size);
    make(size);
    openEverything();
    const auto *controls = m_view->findChild<RunControls *>();
    for (QWidget *stop : tabStops()) {
        stop->setFocus(Qt::TabFocusReason);
        if (page()->widget()->isAncestorOf(stop) && stop->height() < page()->viewport()->height() / 2) {
            const QRect area = inView(stop);
            QVERIFY2(inView(page()->viewport()).contains(area), qPrintable(stop->accessibleName()));
            QVERIFY2(controls->isAncestorOf(stop) || !inView<RunControls>().intersects(area),
                     qPrintable(stop->accessibleName()));
        }
    }
}

void MainViewTest::aClickInAHighHeatmapScrollsNothing()
{
    make({640, 480});
    m_stage->backend.apply(makeSnapshot(24, 8));
    auto *view = m_view->findChild<ui::neurons::CellGridView *>();
    QTRY_VERIFY(view->isVisible());
    QTRY_VERIFY(view->grid()->height() > view->height());
    // Clear of the bar that is pinned to the upper edge.
    const int above = inView<RunControls>().height() + 2 * ui::kit::spacing::three;
    page()->verticalScrollBar()->setValue(view->mapTo(page()->widget(), QPoint(0, 0)).y() - above);
    const int before = page()->verticalScrollBar()->value();
    const auto &cells = view->grid()->geometryOfCells();
    QTest::mouseClick(view->grid(), Qt::LeftButton, {}, cells.cell({1, 1}).center().toPoint());
    QVERIFY(view->grid()->hasFocus());
    QCOMPARE(page()->verticalScrollBar()->value(), before);
}

void MainViewTest::showsWhatWasOpened_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("last");
    QTest::newRow("with room for all of it") << QSize(1280, 800) << QStringLiteral("Reset Identity");
    QTest::newRow("with room for its heading") << QSize(640, 480) << QStringLiteral("Model Identity");
}

void MainViewTest::showsWhatWasOpened()
{
    QFETCH(QSize, size);
    QFETCH(QString, last);
    make(size);
    button(m_view.get(), QStringLiteral("Model Identity"))->click();
    for (const QString &name : {QStringLiteral("Model Identity"), last}) {
        QTRY_VERIFY(inView(page()->viewport()).contains(inView(button(m_view.get(), name))));
        QTRY_VERIFY(!inView<RunControls>().intersects(inView(button(m_view.get(), name))));
    }
}

void MainViewTest::togglesTheLogAndGoesThere()
{
    make({900, 640});
    button(m_view.get(), QStringLiteral("Show log panel"))->click();
    QVERIFY(button(m_view.get(), QStringLiteral("Hide log panel")) != nullptr);
    QTRY_VERIFY(inView(page()->viewport()).contains(inView<LogView>()));
    QCOMPARE(m_stage->store.values.value(QStringLiteral("zorel.logExpanded")), QVariant(true));
    button(m_view.get(), QStringLiteral("Hide"))->click(); // the one of the panel
    QVERIFY(button(m_view.get(), QStringLiteral("Show log panel")) != nullptr);
}

void MainViewTest::showsTheToastOverThePage()
{
    make({640, 480});
    m_stage->backend.apply(
        backend::protocol::ArchivedModel{QStringLiteral("/m/run"), QStringLiteral("run"), 1, 1.0, 1.0});
    const auto *toast = m_view->findChild<ui::kit::Toast *>();
    QVERIFY(toast->isVisible());
    QVERIFY(m_view->rect().contains(inView(toast)));
}

void MainViewTest::toastLeavesTheControlsInReach_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("small") << QSize(900, 640);
    QTest::newRow("smallest") << QSize(640, 480);
    QTest::newRow("large") << QSize(1600, 1000);
}

void MainViewTest::toastLeavesTheControlsInReach()
{
    QFETCH(QSize, size);
    make(size);
    m_stage->backend.apply(
        backend::protocol::ArchivedModel{QStringLiteral("/m/run"), QStringLiteral("run"), 1, 1.0, 1.0});
    const auto *toast = m_view->findChild<ui::kit::Toast *>();
    QScrollBar *bar = page()->verticalScrollBar();
    for (int top = 0; top <= bar->maximum(); top += 40) {
        bar->setValue(top);
        QVERIFY2(!inView(toast).intersects(inView<RunControls>()), qPrintable(QString::number(top)));
        QVERIFY(m_view->rect().contains(inView(toast)));
    }
}

void MainViewTest::partsTheHeaderFromAScrolledPage()
{
    make({900, 640});
    const auto *header = m_view->findChild<StatusHeader *>();
    const auto line = [&] {
        return m_view->grab().toImage().pixelColor(450, inView(header).bottom()).name();
    };
    const QString plain = ui::kit::color(ui::kit::ColorRole::WindowBackground, m_view->palette()).name();
    QCOMPARE(line(), plain);
    page()->verticalScrollBar()->setValue(100);
    QVERIFY(line() != plain);
    page()->verticalScrollBar()->setValue(0);
    QCOMPARE(line(), plain);
}

void MainViewTest::restsWhileNothingChanges()
{
    make({900, 640});
    m_stage->becomeReady();
    m_stage->applyStatus(QStringLiteral("running"), 5, 10, 2.5);
    QTRY_VERIFY(shows(m_view.get(), QStringLiteral("Running — step 5 of 10")));
    const auto someTimerRuns = [this] {
        const auto timers = m_view->findChildren<QTimer *>();
        return std::any_of(timers.begin(), timers.end(),
                           [](const QTimer *timer) { return timer->isActive(); });
    };
    QTRY_VERIFY(!someTimerRuns());
    for (const auto *meter : m_view->findChildren<ui::kit::ProgressMeter *>()) {
        QVERIFY(!meter->isVisible() || meter->fraction()); // nothing moves by itself
    }
}

void MainViewTest::startsAfreshWithEachWindow()
{
    make({900, 640});
    openEverything();
    m_view->findChild<MaxStepsPanel *>()->findChild<QLineEdit *>()->setText(QStringLiteral("77"));
    m_view.reset();
    make({900, 640});
    QCOMPARE(m_view->findChild<MaxStepsPanel *>()->stepsText(), QString());
    // The log's state is remembered, that of the identity is not.
    for (const ui::kit::CollapsibleSection *section : m_view->findChildren<ui::kit::CollapsibleSection *>()) {
        const bool isLog = m_view->findChild<ActivityLogPanel *>()->isAncestorOf(section);
        QCOMPARE(section->expanded(), isLog);
    }
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::MainViewTest)
#include "MainViewTest.moc"
