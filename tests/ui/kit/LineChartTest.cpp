#include "ui/kit/LineChart.h"

#include "ui/kit/Palettes.h"

#include <QApplication>
#include <QClipboard>
#include <QLayout>
#include <QTest>
#include <QTimer>

#include <cmath>
#include <limits>
#include <memory>

using namespace zorel::ui::kit;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

std::vector<ChartPoint> falling(int count)
{
    std::vector<ChartPoint> points;
    for (int step = 0; step < count; ++step) {
        points.push_back({step, 2 + 8.0 * (count - step) / count});
    }
    return points;
}

/// Counts the paint events of a widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) { widget->installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

class LineChartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_chart.reset(); }
    void placeholderIsShownWhileThereIsNoPoint();
    void appendedPointsAreKeptInOrder();
    void capacityKeepsTheNewest();
    void anyValuesArePainted_data();
    void anyValuesArePainted();
    void anySizeIsPainted();
    void zoomStaysWhilePointsAreAppended();
    void zoomEndsWithOtherPoints();
    void clearingShowsThePlaceholderAgain();
    void scaleAndSmoothingReachEverySeries();
    void repaintsOnlyAfterAChange();
    void manyChangesAreOneRepaint();
    void hiddenChartDoesNoWork();
    void imageHasTitleAndBackground();
    void copyPutsTheImageOnTheClipboard();
    void paletteIsFollowed();
    void toolsCanMoveElsewhere();

private:
    /// What is painted in the plot and not a grid: pixels in the colour of a series.
    int inkOf(const QImage &image) const;
    QImage painted();

    std::unique_ptr<LineChart> m_chart;
};

void LineChartTest::init()
{
    m_chart = std::make_unique<LineChart>(QStringLiteral("Loss curve"));
    m_chart->setAxisTitles(QStringLiteral("Step"), QStringLiteral("Loss"));
    m_chart->addSeries(QStringLiteral("Loss"));
    m_chart->resize(600, 300);
}

QImage LineChartTest::painted()
{
    QImage image(m_chart->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    m_chart->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

int LineChartTest::inkOf(const QImage &image) const
{
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            ink += pixel.blue() - pixel.red() > 80 ? 1 : 0;
        }
    }
    return ink;
}

void LineChartTest::placeholderIsShownWhileThereIsNoPoint()
{
    const QString text = QStringLiteral("Preparing data.\nThis runs once.");
    m_chart->setPlaceholder(text);
    m_chart->show();
    QCOMPARE(m_chart->spokenDescription(), text);
    const auto isShown = [this, &text] {
        for (const QWidget *child : m_chart->findChildren<QWidget *>()) {
            if (child->isVisible() && child->accessibleName() == text) {
                return true;
            }
        }
        return false;
    };
    QVERIFY(isShown());
    m_chart->append(0, 1, 2.5);
    QVERIFY(!isShown());
}

void LineChartTest::appendedPointsAreKeptInOrder()
{
    for (const ChartPoint point :
         {ChartPoint{5, 1}, ChartPoint{5, 1}, ChartPoint{2, notANumber}, ChartPoint{9, 3}}) {
        m_chart->append(0, point.step, point.value);
    }
    QCOMPARE(m_chart->points(0).size(), std::size_t{4});
    QCOMPARE(m_chart->points(0)[2].step, std::int64_t{2});
    QVERIFY(std::isnan(m_chart->points(0)[2].value));
    QCOMPARE(m_chart->points(0)[3], (ChartPoint{9, 3}));
}

void LineChartTest::capacityKeepsTheNewest()
{
    m_chart->setCapacity(0, 4000);
    for (int step = 0; step < 10'000; ++step) {
        m_chart->append(0, step, 1);
    }
    QCOMPARE(m_chart->points(0).size(), std::size_t{4000});
    QCOMPARE(m_chart->points(0).front().step, std::int64_t{6000});
    m_chart->dropOldest(0, 1000);
    QCOMPARE(m_chart->points(0).front().step, std::int64_t{7000});
}

void LineChartTest::anyValuesArePainted_data()
{
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<bool>("isSeen");
    QTest::newRow("one point") << QList<double>{2.5} << true;
    QTest::newRow("equal values") << QList<double>{2, 2, 2, 2} << true;
    QTest::newRow("zeros") << QList<double>{0, 0} << true;
    QTest::newRow("huge") << QList<double>{-largest, largest, 0} << true;
    QTest::newRow("tiny") << QList<double>{5e-324, 1e-310, 3e-308} << true;
    QTest::newRow("negative") << QList<double>{-5, -3, -4} << true;
    QTest::newRow("no numbers among numbers")
        << QList<double>{1, notANumber, infinite, -infinite, 2, 3} << true;
    QTest::newRow("no numbers only") << QList<double>{notANumber, infinite} << false;
}

void LineChartTest::anyValuesArePainted()
{
    QFETCH(QList<double>, values);
    QFETCH(bool, isSeen);
    std::int64_t step = 0;
    for (const double value : values) {
        m_chart->append(0, step++, value);
    }
    QCOMPARE(inkOf(painted()) > 20, isSeen);
    m_chart->setSmoothing(0.9);
    QCOMPARE(inkOf(painted()) > 20, isSeen);
    m_chart->setScale(ChartScaleKind::Logarithmic);
    painted();
    m_chart->zoomToSteps(0.5, 0.6);
    painted();
}

void LineChartTest::anySizeIsPainted()
{
    m_chart->setPoints(0, falling(100));
    for (const QSize size :
         {QSize(1, 1), QSize(0, 0), QSize(10, 300), QSize(300, 10), QSize(60, 60), QSize(5000, 40)}) {
        m_chart->resize(size);
        QImage image(size.expandedTo({1, 1}), QImage::Format_ARGB32_Premultiplied);
        m_chart->render(&image);
    }
}

void LineChartTest::zoomStaysWhilePointsAreAppended()
{
    m_chart->setPoints(0, falling(100));
    m_chart->zoomToSteps(20, 30);
    QVERIFY(m_chart->isZoomed());
    m_chart->append(0, 1000, 1);
    painted();
    QVERIFY(m_chart->isZoomed());
    QCOMPARE(m_chart->content().view.steps(), (ChartRange{20, 30}));
    std::vector<ChartPoint> goesOn(m_chart->points(0).begin(), m_chart->points(0).end());
    goesOn.push_back({1001, 1});
    m_chart->setPoints(0, goesOn);
    QVERIFY(m_chart->isZoomed());
    m_chart->resetZoom();
    painted();
    QCOMPARE(m_chart->content().view.steps(), (ChartRange{0, 1001}));
}

void LineChartTest::zoomEndsWithOtherPoints()
{
    m_chart->setPoints(0, falling(100));
    m_chart->zoomToSteps(20, 30);
    m_chart->setPoints(0, falling(57));
    QVERIFY(!m_chart->isZoomed());
}

void LineChartTest::clearingShowsThePlaceholderAgain()
{
    m_chart->setPlaceholder(QStringLiteral("Press Start to begin training."));
    m_chart->setPoints(0, falling(100));
    m_chart->zoomToSteps(20, 30);
    QVERIFY(m_chart->spokenDescription() != QLatin1String("Press Start to begin training."));
    m_chart->clear(0);
    QCOMPARE(m_chart->spokenDescription(), QStringLiteral("Press Start to begin training."));
    QVERIFY(!m_chart->isZoomed());
    QCOMPARE(inkOf(painted()), 0);
}

void LineChartTest::scaleAndSmoothingReachEverySeries()
{
    m_chart->setScale(ChartScaleKind::Logarithmic);
    m_chart->setSmoothing(0.5);
    const int later = m_chart->addSeries(QStringLiteral("Later"));
    m_chart->append(later, 1, -1);
    QCOMPARE(m_chart->content().series[1].raw().omittedCount(), std::size_t{1});
    QVERIFY(m_chart->content().series[1].smoothed() != nullptr);
    m_chart->setSmoothing(7);
    QCOMPARE(m_chart->smoothing(), ChartSmoothing::greatestWeight);
}

void LineChartTest::repaintsOnlyAfterAChange()
{
    m_chart->setPoints(0, falling(100));
    m_chart->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_chart.get()));
    PaintCounter paints(m_chart.get());
    m_chart->append(0, 200, 3);
    QTRY_COMPARE(paints.count, 1);
    for (const QTimer *timer : m_chart->findChildren<QTimer *>()) {
        QVERIFY(!timer->isActive());
    }
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 1);
}

void LineChartTest::manyChangesAreOneRepaint()
{
    m_chart->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_chart.get()));
    PaintCounter paints(m_chart.get());
    for (int step = 0; step < 1000; ++step) {
        m_chart->append(0, step, 3);
    }
    QTRY_VERIFY(paints.count > 0);
    QVERIFY(paints.count <= 2);
}

void LineChartTest::hiddenChartDoesNoWork()
{
    m_chart->setPoints(0, falling(100));
    PaintCounter paints(m_chart.get());
    m_chart->append(0, 200, 3);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 0);
    m_chart->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_chart.get()));
    QTRY_VERIFY(paints.count > 0);
}

void LineChartTest::imageHasTitleAndBackground()
{
    m_chart->setPoints(0, falling(100));
    const QImage image = m_chart->image();
    QVERIFY(image.devicePixelRatio() >= 2);
    QVERIFY(image.width() >= 2 * m_chart->width());
    QCOMPARE(image.pixelColor(2, 2).alpha(), 255);
    QVERIFY(inkOf(image) > 100);
    const QImage withTitle = image;
    m_chart->setTitle(QString());
    QVERIFY(m_chart->image().height() < withTitle.height());
}

void LineChartTest::copyPutsTheImageOnTheClipboard()
{
    m_chart->setPoints(0, falling(100));
    m_chart->copyImage();
    QCOMPARE(QApplication::clipboard()->image().size(), m_chart->image().size());
}

void LineChartTest::paletteIsFollowed()
{
    m_chart->setPoints(0, falling(100));
    const QImage light = painted();
    m_chart->setPalette(darkPalette());
    QVERIFY(painted() != light);
}

void LineChartTest::toolsCanMoveElsewhere()
{
    m_chart->setPoints(0, falling(100));
    painted();
    QWidget elsewhere;
    m_chart->toolRow()->setParent(&elsewhere);
    painted();
    QVERIFY(m_chart->toolRow()->parentWidget() == &elsewhere);
    m_chart->clear(0);
    QVERIFY(m_chart->toolRow()->isHidden());
}

QTEST_MAIN(LineChartTest)
#include "LineChartTest.moc"
