#include "ui/kit/KitStyle.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Palettes.h"

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTabBar>

#include <limits>

namespace zorel::tests {

using namespace ui::kit;

/// In a light and in a dark palette.
class KitStyleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void replacesThePlainStyleAlone();
    void bringsAPaletteWhereTheSystemHasNone();
    void drawsFieldsWithRoundCorners_data() { addPalettes(); }
    void drawsFieldsWithRoundCorners();
    void showsTheFocusOfAField_data() { addPalettes(); }
    void showsTheFocusOfAField();
    void aListLiesOnTheSurfaceOfACard_data() { addPalettes(); }
    void aListLiesOnTheSurfaceOfACard();
    void scrollBarsAreASliderAlone_data() { addPalettes(); }
    void scrollBarsAreASliderAlone();
    void scrollBarsFollowThePointer();
    void sliderNeverVanishes();
    void theChosenTabIsUnderlined_data() { addPalettes(); }
    void theChosenTabIsUnderlined();
    void theChosenRadioButtonIsFilled_data() { addPalettes(); }
    void theChosenRadioButtonIsFilled();

private:
    static void addPalettes();
    static QStyle &style() { return *QApplication::style(); }
};

void KitStyleTest::addPalettes()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << lightPalette();
    QTest::newRow("dark") << darkPalette();
}

void KitStyleTest::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

void KitStyleTest::init()
{
    QApplication::setStyle(new KitStyle);
    if (const auto *row = QTest::currentDataTag()) {
        QApplication::setPalette(qstrcmp(row, "dark") == 0 ? darkPalette() : lightPalette());
    }
}

void KitStyleTest::replacesThePlainStyleAlone()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Windows")));
    installKitStyle(false);
    QVERIFY(!qobject_cast<KitStyle *>(QApplication::style()));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    installKitStyle(false);
    QVERIFY(qobject_cast<KitStyle *>(QApplication::style()));
}

void KitStyleTest::bringsAPaletteWhereTheSystemHasNone()
{
    const auto withPalette = [](const QPalette &palette, bool prefersDark) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(palette);
        installKitStyle(prefersDark);
        return QApplication::palette().color(QPalette::Window);
    };
    const QPalette plain = style().standardPalette();
    QCOMPARE(withPalette(plain, false), lightPalette().color(QPalette::Window));
    QCOMPARE(withPalette(plain, true), darkPalette().color(QPalette::Window));
    QPalette own = plain;
    own.setColor(QPalette::Window, Qt::darkGreen);
    QCOMPARE(withPalette(own, true), QColor(Qt::darkGreen));
}

void KitStyleTest::drawsFieldsWithRoundCorners()
{
    QFETCH(QPalette, palette);
    QWidget window;
    QLineEdit field(QStringLiteral("text"), &window);
    field.setGeometry(10, 10, 100, 28);
    QPlainTextEdit text(&window);
    text.setGeometry(10, 50, 100, 60);
    showAt(window, {200, 120});
    window.setFocus();
    const QImage image = picture(window);
    for (const QWidget *widget : {static_cast<QWidget *>(&field), static_cast<QWidget *>(&text)}) {
        const QRect area = widget->geometry();
        QCOMPARE(image.pixelColor(area.topLeft()).name(), palette.color(QPalette::Window).name());
        QCOMPARE(image.pixelColor(area.left(), area.center().y()).name(),
                 color(ColorRole::ControlBorder, palette).name());
    }
    QVERIFY(field.sizeHint().height() >= 28);
}

void KitStyleTest::showsTheFocusOfAField()
{
    QFETCH(QPalette, palette);
    QWidget window;
    QLineEdit field(&window);
    field.setGeometry(10, 10, 100, 28);
    showAt(window, {200, 60});
    focusByKeyboard(&field);
    QTRY_VERIFY(field.hasFocus());
    QVERIFY(pixelsOf(picture(window), color(ColorRole::FocusRing, palette)) > 200);
}

void KitStyleTest::aListLiesOnTheSurfaceOfACard()
{
    QFETCH(QPalette, palette);
    QWidget window;
    QListView list(&window);
    list.viewport()->setAutoFillBackground(false);
    list.setGeometry(10, 10, 100, 60);
    showAt(window, {200, 80});
    window.setFocus();
    QCOMPARE(picture(window).pixelColor(list.geometry().center()).name(),
             color(ColorRole::CardBackground, palette).name());
}

void KitStyleTest::scrollBarsAreASliderAlone()
{
    QFETCH(QPalette, palette);
    QWidget window;
    QScrollBar bar(Qt::Vertical, &window);
    bar.setRange(0, 300);
    bar.setPageStep(100);
    bar.setGeometry(0, 0, 12, 200);
    showAt(window, {100, 200});
    const QImage image = picture(window);
    const QColor background = palette.color(QPalette::Window);
    QCOMPARE(image.pixelColor(6, 199).name(), background.name());
    QVERIFY(contrastRatio(image.pixelColor(6, 25), background) > 2);
    QCOMPARE(image.pixelColor(6, 100).name(), background.name());
    bar.setValue(300);
    QVERIFY(contrastRatio(picture(window).pixelColor(6, 175), background) > 2);
    // Nothing to scroll, nothing to see.
    bar.setRange(0, 0);
    QCOMPARE(picture(window).pixelColor(6, 100).name(), background.name());
}

void KitStyleTest::scrollBarsFollowThePointer()
{
    QScrollBar bar(Qt::Vertical);
    bar.setRange(0, 300);
    bar.setPageStep(100);
    showAt(bar, {12, 200});
    QTest::mousePress(&bar, Qt::LeftButton, {}, {6, 10});
    QTest::mouseMove(&bar, {6, 60});
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, {6, 60});
    QCOMPARE(bar.value(), 100);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {6, 190});
    QCOMPARE(bar.value(), 200);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {6, 5});
    QCOMPARE(bar.value(), 100);
}

void KitStyleTest::sliderNeverVanishes()
{
    QStyleOptionSlider option;
    option.orientation = Qt::Vertical;
    option.rect = QRect(0, 0, 12, 200);
    for (const int maximum : {1, 1'000'000, std::numeric_limits<int>::max()}) {
        option.maximum = maximum;
        option.pageStep = 10;
        option.sliderPosition = maximum;
        const QRect slider =
            style().subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider);
        QVERIFY(slider.height() >= 32);
        QVERIFY(option.rect.contains(slider));
        QCOMPARE(slider.bottom(), 199);
    }
    option.rect = QRect(0, 0, 12, 20); // lower than the shortest slider
    QVERIFY(option.rect.contains(
        style().subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider)));
}

void KitStyleTest::theChosenTabIsUnderlined()
{
    QFETCH(QPalette, palette);
    QTabBar tabs;
    tabs.setDrawBase(false);
    tabs.addTab(QStringLiteral("Library"));
    tabs.addTab(QStringLiteral("Advanced"));
    showAt(tabs, tabs.sizeHint());
    const QColor accent = color(ColorRole::AccentFill, palette);
    const auto isUnderlined = [&](int tab) {
        const QImage image = picture(tabs).copy(tabs.tabRect(tab));
        return pixelsOf(image, accent) > 20;
    };
    QVERIFY(isUnderlined(0) && !isUnderlined(1));
    tabs.setCurrentIndex(1);
    QVERIFY(!isUnderlined(0) && isUnderlined(1));
}

void KitStyleTest::theChosenRadioButtonIsFilled()
{
    QFETCH(QPalette, palette);
    QRadioButton button(QStringLiteral("Live"));
    button.setFocusPolicy(Qt::NoFocus);
    showAt(button, button.sizeHint());
    const QColor accent = color(ColorRole::AccentFill, palette);
    QVERIFY(pixelsOf(picture(button), accent) == 0);
    button.setChecked(true);
    QVERIFY(pixelsOf(picture(button), accent) > 50);
    button.setEnabled(false);
    QVERIFY(pixelsOf(picture(button), accent) == 0);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::KitStyleTest)
#include "KitStyleTest.moc"
