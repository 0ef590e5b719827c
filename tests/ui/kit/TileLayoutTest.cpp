#include "ui/kit/TileLayout.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/TextLabel.h"

namespace zorel::tests {

using namespace ui::kit;

class TileLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sharesTheWidth();
    void wrapsIntoRows();
    void makesTheTilesOfARowEquallyHigh();
    void runsFromTheRight();
};

void TileLayoutTest::sharesTheWidth()
{
    QWidget window;
    auto *tiles = new TileLayout(100, &window);
    for (int index = 0; index < 3; ++index) {
        tiles->addWidget(new QWidget);
    }
    showAt(window, {616, 100});
    for (int index = 0; index < 3; ++index) {
        QCOMPARE(tiles->itemAt(index)->geometry().width(), 200);
        QCOMPARE(tiles->itemAt(index)->geometry().x(), index * 208);
    }
}

void TileLayoutTest::wrapsIntoRows()
{
    QWidget window;
    auto *tiles = new TileLayout(100, &window);
    for (int index = 0; index < 3; ++index) {
        auto *tile = new QWidget;
        tile->setFixedHeight(30);
        tiles->addWidget(tile);
    }
    QCOMPARE(tiles->heightForWidth(316), 30);
    QCOMPARE(tiles->heightForWidth(315), 106); // no row for a single one
    QCOMPARE(tiles->heightForWidth(50), 106);
    QCOMPARE(tiles->minimumSize().height(), 30);
    auto *fourth = new QWidget;
    fourth->setFixedHeight(30);
    tiles->addWidget(fourth);
    QCOMPARE(tiles->heightForWidth(316), 68);
}

void TileLayoutTest::makesTheTilesOfARowEquallyHigh()
{
    QWidget window;
    auto *tiles = new TileLayout(100, &window);
    auto *low = new TextLabel(QStringLiteral("one line"));
    auto *high = new TextLabel(QStringLiteral("one\ntwo\nthree"));
    tiles->addWidget(low);
    tiles->addWidget(high);
    showAt(window, {400, 200});
    QCOMPARE(low->height(), high->heightForWidth(high->width()));
    QCOMPARE(high->height(), low->height());
}

void TileLayoutTest::runsFromTheRight()
{
    QWidget window;
    window.setLayoutDirection(Qt::RightToLeft);
    auto *tiles = new TileLayout(100, &window);
    auto *first = new QWidget;
    tiles->addWidget(first);
    tiles->addWidget(new QWidget);
    showAt(window, {408, 100});
    QCOMPARE(first->x(), 208);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::TileLayoutTest)
#include "TileLayoutTest.moc"
