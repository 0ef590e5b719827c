#include "ui/kit/LineChart.h"

#include <QAbstractButton>
#include <QAction>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <memory>

using namespace zorel::ui::kit;

class LineChartInputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_window.reset(); }

    void pointerMovesTheCrosshair();
    void crosshairGoesWithThePointer();
    void draggingZoomsToSteps();
    void draggingAFrameZoomsToBoth();
    void draggingUprightZoomsToValues();
    void clickDoesNotZoom();
    void doubleClickResets();
    void escapeCancelsADrag();
    void wheelZoomsOnlyWithControl();
    void arrowsGoFromPointToPoint();
    void homeAndEndGoToTheEnds();
    void pagesGoByTenths();
    void upAndDownGoToTheOtherSeries();
    void keysZoom();
    void crosshairStaysInView();
    void escapeTakesBackOneThingAfterTheOther();
    void keysOfOthersAreLeftToThem();
    void emptyChartLeavesEveryKey();
    void contextMenuHasEverything();
    void contextMenuByKeyboard();
    void toolsDoWhatTheySay();
    void narrowChartKeepsTheMenu();
    void tabReachesChartAndTools();
    void crosshairGoesWithTheFocus();

private:
    QPoint at(double step, double value);
    void move(QPointF position);
    void drag(QPoint from, QPoint to);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_chart, key, modifiers);
    }
    QAbstractButton *button(const QString &name) const;
    QAction *action(const QString &text) const;
    ChartRange steps() const { return m_chart->content().view.steps(); }

    std::unique_ptr<QWidget> m_window;
    LineChart *m_chart = nullptr;
};

void LineChartInputTest::init()
{
    m_window = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(m_window.get());
    m_chart = new LineChart(QStringLiteral("Loss curve"));
    m_chart->setAxisTitles(QStringLiteral("Step"), QStringLiteral("Loss"));
    m_chart->addSeries(QStringLiteral("Loss"));
    for (int step = 0; step <= 100; ++step) {
        m_chart->append(0, step, 5 + 0.05 * step);
    }
    layout->addWidget(m_chart);
    m_window->resize(800, 400);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_chart->setFocus();
    m_chart->grab();
}

/// Where a point lies in the widget; the layout's numbers are found from what the chart marks there.
QPoint LineChartInputTest::at(double step, double value)
{
    const ChartLayout layout = m_chart->layoutNow();
    return layout.plot.topLeft() + QPointF(layout.projection.x(step), layout.projection.y(value)).toPoint();
}

/// An event of its own: the test library's only comes where the pointer was elsewhere before.
void LineChartInputTest::move(QPointF position)
{
    QMouseEvent event(QEvent::MouseMove, position, m_chart->mapToGlobal(position), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(m_chart, &event);
}

void LineChartInputTest::drag(QPoint from, QPoint to)
{
    QTest::mousePress(m_chart, Qt::LeftButton, {}, from);
    QTest::mouseMove(m_chart, (from + to) / 2);
    QTest::mouseMove(m_chart, to);
    QTest::mouseRelease(m_chart, Qt::LeftButton, {}, to);
}

QAbstractButton *LineChartInputTest::button(const QString &name) const
{
    for (auto *found : m_chart->toolRow()->findChildren<QAbstractButton *>()) {
        if (found->accessibleName() == name) {
            return found;
        }
    }
    return nullptr;
}

QAction *LineChartInputTest::action(const QString &text) const
{
    for (QAction *found : m_chart->findChildren<QAction *>()) {
        if (found->text() == text) {
            return found;
        }
    }
    return nullptr;
}

void LineChartInputTest::pointerMovesTheCrosshair()
{
    QVERIFY(!m_chart->crosshair());
    move(at(40, 7));
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 40}));
    move(at(60, 9.5)); // far from the line: the nearest in steps counts
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 60}));
    const QImage with = m_chart->grab().toImage();
    move(QPoint(1, 1));
    QVERIFY(!m_chart->crosshair());
    QVERIFY(m_chart->grab().toImage() != with);
}

void LineChartInputTest::crosshairGoesWithThePointer()
{
    move(at(40, 7));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(m_chart, &leave);
    QVERIFY(!m_chart->crosshair());
}

void LineChartInputTest::draggingZoomsToSteps()
{
    drag(at(20, 7), at(40, 7));
    QVERIFY(m_chart->isZoomed());
    QVERIFY(std::abs(steps().low - 20) < 0.5 && std::abs(steps().high - 40) < 0.5);
    QVERIFY(!m_chart->content().view.values());
    // The values follow the steps shown.
    QVERIFY(m_chart->content().shownValues().low > 5.5 && m_chart->content().shownValues().high < 7.5);
}

void LineChartInputTest::draggingAFrameZoomsToBoth()
{
    drag(at(20, 9), at(40, 6));
    const auto values = m_chart->content().view.values();
    QVERIFY(values);
    QVERIFY(std::abs(values->low - 6) < 0.1 && std::abs(values->high - 9) < 0.1);
    QVERIFY(std::abs(steps().low - 20) < 0.5 && std::abs(steps().high - 40) < 0.5);
}

void LineChartInputTest::draggingUprightZoomsToValues()
{
    drag(at(50, 9), at(50, 6));
    QCOMPARE(steps(), (ChartRange{0, 100}));
    QVERIFY(m_chart->content().view.values());
}

void LineChartInputTest::clickDoesNotZoom()
{
    QTest::mouseClick(m_chart, Qt::LeftButton, {}, at(50, 7));
    drag(at(50, 7), at(50, 7) + QPoint(1, 0));
    QVERIFY(!m_chart->isZoomed());
}

void LineChartInputTest::doubleClickResets()
{
    drag(at(20, 9), at(40, 6));
    QTest::mouseDClick(m_chart, Qt::LeftButton, {}, at(30, 7));
    QVERIFY(!m_chart->isZoomed());
    QCOMPARE(steps(), (ChartRange{0, 100}));
}

void LineChartInputTest::escapeCancelsADrag()
{
    QTest::mousePress(m_chart, Qt::LeftButton, {}, at(20, 7));
    QTest::mouseMove(m_chart, at(60, 7));
    key(Qt::Key_Escape);
    QTest::mouseRelease(m_chart, Qt::LeftButton, {}, at(60, 7));
    QVERIFY(!m_chart->isZoomed());
}

void LineChartInputTest::wheelZoomsOnlyWithControl()
{
    const auto turn = [this](Qt::KeyboardModifiers modifiers) {
        const QPointF position = at(50, 7);
        QWheelEvent event(position, m_chart->mapToGlobal(position), {}, {0, 240}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_chart, &event);
        return event.isAccepted();
    };
    QVERIFY(!turn(Qt::NoModifier));
    QVERIFY(!m_chart->isZoomed());
    QVERIFY(turn(Qt::ControlModifier));
    QVERIFY(std::abs(steps().low - 25) < 1 && std::abs(steps().high - 75) < 1);
}

void LineChartInputTest::arrowsGoFromPointToPoint()
{
    key(Qt::Key_Right);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 0}));
    key(Qt::Key_Right);
    key(Qt::Key_Right);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 2}));
    key(Qt::Key_Left);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 1}));
    QCOMPARE(m_chart->spokenDescription(), QStringLiteral("Step 1, Loss 5.0500"));
    // From where the pointer is.
    move(at(40, 7));
    key(Qt::Key_Right);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 41}));
}

void LineChartInputTest::homeAndEndGoToTheEnds()
{
    key(Qt::Key_End);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 100}));
    key(Qt::Key_Right); // and no further
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 100}));
    key(Qt::Key_Home);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 0}));
}

void LineChartInputTest::pagesGoByTenths()
{
    key(Qt::Key_Home);
    key(Qt::Key_PageDown);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 10}));
    key(Qt::Key_PageUp);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 0}));
}

void LineChartInputTest::upAndDownGoToTheOtherSeries()
{
    const int other = m_chart->addSeries(QStringLiteral("Candidate"));
    m_chart->append(other, 49, 1);
    key(Qt::Key_End);
    key(Qt::Key_Down);
    QCOMPARE(m_chart->crosshair(), (ChartMark{other, 0}));
    key(Qt::Key_Up);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 49}));
}

void LineChartInputTest::keysZoom()
{
    QTest::keyClicks(m_chart, QStringLiteral("+"));
    QCOMPARE(steps(), (ChartRange{25, 75}));
    QTest::keyClicks(m_chart, QStringLiteral("-"));
    QVERIFY(!m_chart->isZoomed());
    key(Qt::Key_Home);
    QTest::keyClicks(m_chart, QStringLiteral("+")); // around the crosshair
    QCOMPARE(steps(), (ChartRange{0, 50}));
}

void LineChartInputTest::crosshairStaysInView()
{
    m_chart->zoomToSteps(10, 20);
    key(Qt::Key_Right);
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 10}));
    for (int i = 0; i < 20; ++i) {
        key(Qt::Key_Right);
        const auto step = static_cast<double>(m_chart->content().at(*m_chart->crosshair()).step);
        QVERIFY(step >= steps().low && step <= steps().high);
    }
    QCOMPARE(m_chart->crosshair(), (ChartMark{0, 30}));
}

void LineChartInputTest::escapeTakesBackOneThingAfterTheOther()
{
    m_chart->zoomToSteps(10, 20);
    key(Qt::Key_Right);
    key(Qt::Key_Escape);
    QVERIFY(!m_chart->crosshair());
    QVERIFY(m_chart->isZoomed());
    key(Qt::Key_Escape);
    QVERIFY(!m_chart->isZoomed());
    QKeyEvent nothingLeft(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    nothingLeft.accept();
    QCoreApplication::sendEvent(m_chart, &nothingLeft);
    QVERIFY(!nothingLeft.isAccepted());
}

void LineChartInputTest::keysOfOthersAreLeftToThem()
{
    for (const auto &[code, modifiers] :
         {std::pair(Qt::Key_Up, Qt::NoModifier), std::pair(Qt::Key_Down, Qt::NoModifier),
          std::pair(Qt::Key_Right, Qt::ControlModifier), std::pair(Qt::Key_A, Qt::NoModifier)}) {
        QKeyEvent event(QEvent::KeyPress, code, modifiers);
        event.accept();
        QCoreApplication::sendEvent(m_chart, &event);
        QVERIFY(!event.isAccepted());
    }
}

void LineChartInputTest::emptyChartLeavesEveryKey()
{
    m_chart->clear(0);
    for (const Qt::Key code : {Qt::Key_Right, Qt::Key_Home, Qt::Key_Plus, Qt::Key_Escape, Qt::Key_PageDown}) {
        QKeyEvent event(QEvent::KeyPress, code, Qt::NoModifier);
        event.accept();
        QCoreApplication::sendEvent(m_chart, &event);
        QVERIFY(!event.isAccepted());
    }
    QVERIFY(!action(QStringLiteral("Copy as Image"))->isEnabled());
}

void LineChartInputTest::contextMenuHasEverything()
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, at(50, 7), m_chart->mapToGlobal(at(50, 7)));
    QCoreApplication::sendEvent(m_chart, &event);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QStringList texts;
    for (const QAction *entry : menu->actions()) {
        if (!entry->isSeparator()) {
            texts += entry->text();
        }
    }
    menu->close();
    QCOMPARE(texts, (QStringList{QStringLiteral("Logarithmic Scale"), QStringLiteral("Smoothing"),
                                 QStringLiteral("Reset Zoom"), QStringLiteral("Copy as Image"),
                                 QStringLiteral("Export Points as CSV…")}));
    QVERIFY(!action(QStringLiteral("Reset Zoom"))->isEnabled());
}

void LineChartInputTest::contextMenuByKeyboard()
{
    key(Qt::Key_Right);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(0, 0), m_chart->mapToGlobal(QPoint(0, 0)));
    QCoreApplication::sendEvent(m_chart, &event);
    QWidget *menu = QApplication::activePopupWidget();
    QVERIFY(menu);
    menu->close();
    QVERIFY(m_chart->crosshair()); // its menu does not take the crosshair away
}

void LineChartInputTest::toolsDoWhatTheySay()
{
    QTest::mouseClick(button(QStringLiteral("Log scale")), Qt::LeftButton);
    QCOMPARE(m_chart->scale(), ChartScaleKind::Logarithmic);
    QVERIFY(button(QStringLiteral("Log scale"))->isChecked());
    m_chart->setFocus();
    key(Qt::Key_L);
    QCOMPARE(m_chart->scale(), ChartScaleKind::Linear);
    QVERIFY(!button(QStringLiteral("Log scale"))->isChecked());
    action(QStringLiteral("Strong"))->trigger();
    QVERIFY(m_chart->smoothing() > 0.9);
    QVERIFY(button(QStringLiteral("Smoothing: Strong")));
    m_chart->setSmoothing(0);
    QVERIFY(button(QStringLiteral("Smoothing: Off")));
    QVERIFY(action(QStringLiteral("Off"))->isChecked());
    QVERIFY(!button(QStringLiteral("Reset zoom"))->isVisible());
    m_chart->zoomToSteps(10, 20);
    QVERIFY(button(QStringLiteral("Reset zoom"))->isVisible());
    QTest::mouseClick(button(QStringLiteral("Reset zoom")), Qt::LeftButton);
    QVERIFY(!m_chart->isZoomed());
}

void LineChartInputTest::narrowChartKeepsTheMenu()
{
    m_window->resize(200, 200);
    QCoreApplication::sendPostedEvents();
    QVERIFY(button(QStringLiteral("More"))->isVisible());
    QVERIFY(!button(QStringLiteral("Smoothing: Off"))->isVisible());
    m_window->resize(800, 400);
    QTRY_VERIFY(button(QStringLiteral("Smoothing: Off"))->isVisible());
}

void LineChartInputTest::tabReachesChartAndTools()
{
    QStringList reached;
    for (int i = 0; i < 4; ++i) {
        reached += QApplication::focusWidget()->accessibleName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(reached, (QStringList{QStringLiteral("Loss curve"), QStringLiteral("Log scale"),
                                   QStringLiteral("Smoothing: Off"), QStringLiteral("More")}));
}

void LineChartInputTest::crosshairGoesWithTheFocus()
{
    key(Qt::Key_Right);
    QVERIFY(m_chart->crosshair());
    button(QStringLiteral("More"))->setFocus(Qt::TabFocusReason);
    QVERIFY(!m_chart->crosshair());
}

QTEST_MAIN(LineChartInputTest)
#include "LineChartInputTest.moc"
