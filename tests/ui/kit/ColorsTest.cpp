#include "ui/kit/Colors.h"
#include "ui/kit/Palettes.h"

#include <QTest>

namespace zorel::tests {

using namespace ui::kit;

class ColorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresContrast();
    void keepsTextLegible_data();
    void keepsTextLegible();
    void keepsSurfacesApart_data() { keepsTextLegible_data(); }
    void keepsSurfacesApart();
    void knowsDarkFromLight();
    void followsTheAccentColour();
    void greysOutWhatIsDisabled();
    void mixesByAmount();
};

void ColorsTest::measuresContrast()
{
    QCOMPARE(qRound(contrastRatio(Qt::black, Qt::white) * 100), 2100);
    QCOMPARE(contrastRatio(Qt::red, Qt::red), 1.0);
    QCOMPARE(contrastRatio(Qt::white, Qt::blue), contrastRatio(Qt::blue, Qt::white));
    // The grey that is known to be the first that suffices on white.
    QVERIFY(contrastRatio(QColor(0x76, 0x76, 0x76), Qt::white) >= 4.5);
    QVERIFY(contrastRatio(QColor(0x77, 0x77, 0x77), Qt::white) < 4.5);
}

void ColorsTest::keepsTextLegible_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << lightPalette();
    QTest::newRow("dark") << darkPalette();
    QTest::newRow("stock grey") << QPalette(QColor(0xef, 0xef, 0xef));
    QTest::newRow("stock dark") << QPalette(QColor(0x31, 0x36, 0x3b));
    QTest::newRow("white") << QPalette(Qt::white);
    QTest::newRow("black") << QPalette(Qt::black);
    QTest::newRow("middle grey") << QPalette(QColor(0x80, 0x80, 0x80));
    for (const QColor &accent :
         {QColor(Qt::yellow), QColor(Qt::white), QColor(Qt::black), QColor(Qt::red), QColor(0xff, 0x95, 0x00),
          QColor(0x8c, 0x8c, 0x8c), QColor(0x00, 0x7a, 0xff)}) {
        QTest::addRow("light, accent %s", qPrintable(accent.name())) << lightPalette(accent);
        QTest::addRow("dark, accent %s", qPrintable(accent.name())) << darkPalette(accent);
    }
}

void ColorsTest::keepsTextLegible()
{
    QFETCH(QPalette, palette);
    for (const ColorRole text : {ColorRole::Text, ColorRole::Secondary, ColorRole::Accent, ColorRole::Success,
                                 ColorRole::Warning, ColorRole::Danger}) {
        const QColor foreground = color(text, palette);
        for (const ColorRole surface :
             {ColorRole::WindowBackground, ColorRole::CardBackground, ColorRole::ControlBackground,
              ColorRole::HoverBackground, ColorRole::PressedBackground, ColorRole::SelectionBackground}) {
            const double contrast = contrastRatio(foreground, color(surface, palette));
            QVERIFY2(contrast >= 4.5, qPrintable(QStringLiteral("role %1 on surface %2: %3")
                                                     .arg(int(text))
                                                     .arg(int(surface))
                                                     .arg(contrast)));
        }
        QVERIFY(contrastRatio(foreground, tint(text, palette)) >= 4.5);
    }
    QVERIFY(contrastRatio(color(ColorRole::OnAccent, palette), color(ColorRole::AccentFill, palette)) >= 4.5);
}

void ColorsTest::keepsSurfacesApart()
{
    QFETCH(QPalette, palette);
    for (const ColorRole surface : {ColorRole::WindowBackground, ColorRole::CardBackground}) {
        QVERIFY(contrastRatio(color(ColorRole::FocusRing, palette), color(surface, palette)) >= 3);
    }
    QVERIFY(color(ColorRole::CardBorder, palette) != color(ColorRole::CardBackground, palette));
    QVERIFY(color(ColorRole::HoverBackground, palette) != color(ColorRole::PressedBackground, palette));
    QVERIFY(color(ColorRole::SelectionBackground, palette) != color(ColorRole::CardBackground, palette));
}

void ColorsTest::knowsDarkFromLight()
{
    QVERIFY(isDark(darkPalette()));
    QVERIFY(!isDark(lightPalette()));
    QVERIFY(contrastRatio(color(ColorRole::CardBackground, darkPalette()), Qt::black) < 3);
    QVERIFY(contrastRatio(color(ColorRole::CardBackground, lightPalette()), Qt::black) > 15);
}

void ColorsTest::followsTheAccentColour()
{
    const QColor red = color(ColorRole::Accent, lightPalette(QColor(0xc0, 0x10, 0x20)));
    QVERIFY(red.red() > red.blue());
    const QColor blue = color(ColorRole::AccentFill, lightPalette(QColor(0x10, 0x20, 0xc0)));
    QVERIFY(blue.blue() > blue.red());
    QPalette palette = lightPalette(QColor(0xc0, 0x10, 0x20));
    palette.setCurrentColorGroup(QPalette::Inactive);
    QCOMPARE(color(ColorRole::Accent, palette), red);
}

void ColorsTest::greysOutWhatIsDisabled()
{
    QPalette palette = lightPalette();
    palette.setCurrentColorGroup(QPalette::Disabled);
    QCOMPARE(color(ColorRole::Text, palette), palette.color(QPalette::Disabled, QPalette::WindowText));
    QCOMPARE(color(ColorRole::Danger, palette), palette.color(QPalette::Disabled, QPalette::WindowText));
    QCOMPARE(color(ColorRole::CardBackground, palette), color(ColorRole::CardBackground, lightPalette()));
}

void ColorsTest::mixesByAmount()
{
    QCOMPARE(mixed(Qt::black, Qt::white, 0).rgb(), QColor(Qt::black).rgb());
    QCOMPARE(mixed(Qt::black, Qt::white, 1).rgb(), QColor(Qt::white).rgb());
    QCOMPARE(mixed(Qt::black, Qt::white, 0.5).red(), 128);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ColorsTest)
#include "ColorsTest.moc"
