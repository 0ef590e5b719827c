#include "ui/kit/Card.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Palettes.h"
#include "ui/kit/TextLabel.h"

#include <QApplication>
#include <QVBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class CardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAGroupNamedByItsTitle();
    void showsItsTitle();
    void hasNoHeadingWithoutATitle();
    void holdsHeaderWidgets();
    void wrapsALongTitle();
    void isDrawnAsAPanel();
    void takesATone();
};

void CardTest::isAGroupNamedByItsTitle()
{
    Card card(QStringLiteral("Session"));
    QCOMPARE(spoken(&card).role(), QAccessible::Grouping);
    QCOMPARE(spokenName(&card), QStringLiteral("Session"));
    card.setTitle(QStringLiteral("Library"));
    QCOMPARE(spokenName(&card), QStringLiteral("Library"));
}

void CardTest::showsItsTitle()
{
    Card card(QStringLiteral("Session"), QStringLiteral("clock"));
    showAt(card, {300, 100});
    const auto *title = card.findChild<TextLabel *>();
    QCOMPARE(title->text(), QStringLiteral("Session"));
    QVERIFY(title->isVisible());
    card.setTitle(QStringLiteral("Other"));
    QCOMPARE(title->text(), QStringLiteral("Other"));
}

void CardTest::hasNoHeadingWithoutATitle()
{
    Card card({});
    auto *content = new QWidget;
    card.content()->addWidget(content);
    showAt(card, {300, 100});
    QVERIFY(!card.findChild<TextLabel *>()->isVisible());
    QVERIFY(content->y() < 20);
}

void CardTest::holdsHeaderWidgets()
{
    Card card({});
    auto *button = new ActionButton({}, QStringLiteral("Reset"));
    card.addHeaderWidget(button);
    showAt(card, {300, 100});
    QVERIFY(button->isVisible());
    QVERIFY(button->mapTo(&card, QPoint(0, 0)).x() > 150);
}

void CardTest::wrapsALongTitle()
{
    Card card(QString(10'000, QLatin1Char('m')));
    QVERIFY(card.minimumSizeHint().width() < 200);
}

void CardTest::isDrawnAsAPanel()
{
    Card card({});
    QApplication::setPalette(lightPalette());
    showAt(card, {200, 100});
    QVERIFY(pixelsOf(picture(card), color(ColorRole::CardBackground, lightPalette())) > 15'000);
    QVERIFY(pixelsOf(picture(card), color(ColorRole::CardBorder, lightPalette())) > 400);
    QApplication::setPalette(darkPalette());
    QTRY_VERIFY(pixelsOf(picture(card), color(ColorRole::CardBackground, darkPalette())) > 15'000);
}

void CardTest::takesATone()
{
    for (const QPalette &palette : {lightPalette(), darkPalette()}) {
        QApplication::setPalette(palette);
        Card card(QStringLiteral("Title"), QStringLiteral("lock.shield.fill"));
        card.setTone(ColorRole::Warning);
        showAt(card, {200, 100});
        QVERIFY(pixelsOf(picture(card), tint(ColorRole::Warning, palette)) > 12'000);
        QVERIFY(contrastRatio(color(ColorRole::Text, palette), tint(ColorRole::Warning, palette)) >= 4.5);
        QVERIFY(pixelsOf(picture(card), color(ColorRole::Warning, palette)) > 20);
    }
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::CardTest)
#include "CardTest.moc"
