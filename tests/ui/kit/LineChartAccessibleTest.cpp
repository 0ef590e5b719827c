#include "ui/kit/LineChart.h"

#include <QAccessible>
#include <QTest>

#include <memory>

using namespace zorel::ui::kit;

class LineChartAccessibleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_chart.reset(); }
    void nameIsTheTitle();
    void descriptionIsTheSummary();
    void placeholderIsRead();
    void crosshairOfTheKeyboardIsDescribed();
    void paintedTextsAreFound();
    void paintedTextsFollowTheChart();
    void toolsAreChildren();
    void closedChartIsHarmless();

private:
    QAccessibleInterface *accessible() { return QAccessible::queryAccessibleInterface(m_chart.get()); }
    QStringList names();

    std::unique_ptr<LineChart> m_chart;
};

void LineChartAccessibleTest::init()
{
    m_chart = std::make_unique<LineChart>(QStringLiteral("Loss curves"));
    m_chart->setLocale(QLocale(QLocale::English));
    m_chart->setAxisTitles(QStringLiteral("Step"), QStringLiteral("Loss"));
    m_chart->addSeries(QStringLiteral("Baseline"));
    m_chart->append(0, 1000, 4);
    m_chart->append(0, 2000, 2);
    m_chart->append(0, 3000, 3);
    m_chart->resize(600, 300);
    m_chart->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_chart.get()));
}

QStringList LineChartAccessibleTest::names()
{
    QStringList all;
    for (int i = 0; i < accessible()->childCount(); ++i) {
        QAccessibleInterface *child = accessible()->child(i);
        if (child != nullptr && !child->state().invisible) {
            all += child->text(QAccessible::Name);
        }
    }
    return all;
}

void LineChartAccessibleTest::nameIsTheTitle()
{
    QCOMPARE(accessible()->text(QAccessible::Name), QStringLiteral("Loss curves"));
    QCOMPARE(accessible()->role(), QAccessible::Chart);
    m_chart->setTitle(QStringLiteral("Loss curve"));
    QCOMPARE(accessible()->text(QAccessible::Name), QStringLiteral("Loss curve"));
    QVERIFY(accessible()->state().focusable);
}

void LineChartAccessibleTest::descriptionIsTheSummary()
{
    const QString text = accessible()->text(QAccessible::Description);
    QVERIFY(text.contains(QLatin1String("3 points")));
    QVERIFY(text.contains(QLatin1String("first 4.0000 at step 1,000")));
    QVERIFY(text.contains(QLatin1String("last 3.0000 at step 3,000")));
    QVERIFY(text.contains(QLatin1String("lowest 2.0000 at step 2,000")));
}

void LineChartAccessibleTest::placeholderIsRead()
{
    const QString hint = QStringLiteral("Preparing data.\nThis runs once.");
    m_chart->setPlaceholder(hint);
    QVERIFY(!names().contains(hint));
    m_chart->clear(0);
    QCOMPARE(accessible()->text(QAccessible::Description), hint);
    QVERIFY(names().contains(hint));
}

void LineChartAccessibleTest::crosshairOfTheKeyboardIsDescribed()
{
    QVERIFY(accessible()->text(QAccessible::Value).isEmpty());
    QTest::keyClick(m_chart.get(), Qt::Key_Right);
    QTest::keyClick(m_chart.get(), Qt::Key_Right);
    QCOMPARE(accessible()->text(QAccessible::Description), QStringLiteral("Step 2,000, Loss 2.0000"));
    QCOMPARE(accessible()->text(QAccessible::Value), QStringLiteral("Step 2,000, Loss 2.0000"));
    QTest::keyClick(m_chart.get(), Qt::Key_Escape);
    QVERIFY(accessible()->text(QAccessible::Description).contains(QLatin1String("3 points")));
}

void LineChartAccessibleTest::paintedTextsAreFound()
{
    QVERIFY(names().contains(QStringLiteral("Step")));
    QVERIFY(names().contains(QStringLiteral("Loss")));
    QVERIFY(!names().contains(QStringLiteral("Baseline"))); // no legend for one
    m_chart->setLegendKey(QStringLiteral("Run"));
    m_chart->addSeries(QStringLiteral("Candidate"));
    for (const QString &text :
         {QStringLiteral("Run"), QStringLiteral("Baseline"), QStringLiteral("Candidate")}) {
        QVERIFY2(names().contains(text), qPrintable(text));
    }
    for (int i = 0; i < accessible()->childCount(); ++i) {
        QAccessibleInterface *child = accessible()->child(i);
        QCOMPARE(accessible()->indexOfChild(child), i);
        QVERIFY(child->parent() == accessible());
        QVERIFY(!child->rect().isEmpty() || child->state().invisible);
    }
}

void LineChartAccessibleTest::paintedTextsFollowTheChart()
{
    m_chart->append(0, 4000, -1);
    m_chart->setScale(ChartScaleKind::Logarithmic);
    QVERIFY(names().contains(QStringLiteral("Not drawn: 1 value of zero or below.")));
    m_chart->setScale(ChartScaleKind::Linear);
    QVERIFY(!names().contains(QStringLiteral("Not drawn: 1 value of zero or below.")));
    m_chart->clear(0);
    QVERIFY(!names().contains(QStringLiteral("Step")));
}

void LineChartAccessibleTest::toolsAreChildren()
{
    QAccessibleInterface *row = QAccessible::queryAccessibleInterface(m_chart->toolRow());
    QVERIFY(row != nullptr);
    QVERIFY(accessible()->indexOfChild(row) >= 0);
    QStringList buttons;
    for (int i = 0; i < row->childCount(); ++i) {
        QCOMPARE(row->child(i)->role() == QAccessible::Button ||
                     row->child(i)->role() == QAccessible::CheckBox ||
                     row->child(i)->role() == QAccessible::ButtonMenu,
                 true);
        buttons += row->child(i)->text(QAccessible::Name);
    }
    QVERIFY(buttons.contains(QStringLiteral("Log scale")));
    QVERIFY(buttons.contains(QStringLiteral("Smoothing: Off")));
    QVERIFY(buttons.contains(QStringLiteral("More")));
}

void LineChartAccessibleTest::closedChartIsHarmless()
{
    const QAccessible::Id text = QAccessible::uniqueId(accessible()->child(accessible()->childCount() - 1));
    QVERIFY(QAccessible::accessibleInterface(text) != nullptr);
    m_chart.reset();
    QVERIFY(QAccessible::accessibleInterface(text) == nullptr);
}

QTEST_MAIN(LineChartAccessibleTest)
#include "LineChartAccessibleTest.moc"
