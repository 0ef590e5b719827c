#include "ui/kit/Typography.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QLabel>
#include <QTest>

namespace zorel::tests {

using namespace ui::kit;

class TypographyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_before = QApplication::font(); }
    void cleanup() { QApplication::setFont(m_before); }
    void fallsInSizeFromTitleToCaption();
    void growsWithTheSystemsFont();
    void takesFontsInPixels();
    void setsEveryDigitEquallyWide();
    void followsTheApplicationsFont();
    void replacesAnEarlierRole();

private:
    QFont m_before;
};

void TypographyTest::fallsInSizeFromTitleToCaption()
{
    double before = 1000;
    for (const TextRole role :
         {TextRole::LargeTitle, TextRole::Title, TextRole::Heading, TextRole::Subheading, TextRole::Body,
          TextRole::Caption, TextRole::Caption2}) {
        const double size = textFont(role).pointSizeF();
        QVERIFY(size < before);
        before = size;
    }
    QCOMPARE(textFont(TextRole::Body).pointSizeF(), QApplication::font().pointSizeF());
    QCOMPARE(textFont(TextRole::Body, Weight::Semibold).weight(), QFont::DemiBold);
    QCOMPARE(monospacedFont(TextRole::Caption).pointSizeF(), textFont(TextRole::Caption).pointSizeF());
}

void TypographyTest::growsWithTheSystemsFont()
{
    QFont large = QApplication::font();
    large.setPointSizeF(20);
    QApplication::setFont(large);
    QCOMPARE(textFont(TextRole::LargeTitle).pointSizeF(), 40);
    QCOMPARE(textFont(TextRole::Caption).pointSizeF(), 18);
    large.setPointSizeF(8);
    QApplication::setFont(large);
    QCOMPARE(textFont(TextRole::Caption2).pointSizeF(), 7);
}

void TypographyTest::takesFontsInPixels()
{
    QFont font = QApplication::font();
    font.setPixelSize(20);
    QApplication::setFont(font);
    QCOMPARE(textFont(TextRole::Title).pixelSize(), 30);
    QCOMPARE(monospacedFont(TextRole::Caption).pixelSize(), 18);
}

void TypographyTest::setsEveryDigitEquallyWide()
{
    for (const TextRole role : {TextRole::Title, TextRole::Body, TextRole::Caption2}) {
        const QFontMetricsF metrics(tabularFont(role));
        for (const char digit : {'1', '2', '4', '7', '9'}) {
            QCOMPARE(metrics.horizontalAdvance(QLatin1Char(digit)),
                     metrics.horizontalAdvance(QLatin1Char('0')));
        }
    }
    const QFontMetricsF fixed(monospacedFont(TextRole::Body));
    QCOMPARE(fixed.horizontalAdvance(QLatin1Char('i')), fixed.horizontalAdvance(QLatin1Char('W')));
}

void TypographyTest::followsTheApplicationsFont()
{
    QLabel label;
    setTextFont(&label, TextRole::Title, Weight::Semibold);
    QFont large = QApplication::font();
    large.setPointSizeF(20);
    QApplication::setFont(large);
    QTRY_COMPARE(label.font().pointSizeF(), 30);
    QCOMPARE(label.font().weight(), QFont::DemiBold);
}

void TypographyTest::replacesAnEarlierRole()
{
    QLabel label;
    setTextFont(&label, TextRole::Title);
    setTextFont(&label, TextRole::Caption);
    QFont large = QApplication::font();
    large.setPointSizeF(20);
    QApplication::setFont(large);
    QTRY_COMPARE(label.font().pointSizeF(), 18);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::TypographyTest)
#include "TypographyTest.moc"
