#include "ui/kit/BoundedText.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/TextLabel.h"

#include <QScrollBar>

namespace zorel::tests {

using namespace ui::kit;

class BoundedTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAsHighAsAShortText();
    void isBoundedAndScrolls_data();
    void isBoundedAndScrolls();
    void asksForAnotherHeightWithAnotherText();
};

void BoundedTextTest::isAsHighAsAShortText()
{
    auto *text = new TextLabel(QStringLiteral("one\ntwo"));
    BoundedText area(text, 6);
    QCOMPARE(area.heightForWidth(400), text->heightForWidth(400));
    showAt(area, {400, area.heightForWidth(400)});
    QCOMPARE(area.verticalScrollBar()->maximum(), 0);
    QCOMPARE(text->width(), 400);
}

void BoundedTextTest::isBoundedAndScrolls_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("10,000 characters") << QString(10'000, QLatin1Char('m'));
    QTest::newRow("500 lines") << QStringLiteral("line\n").repeated(500);
}

void BoundedTextTest::isBoundedAndScrolls()
{
    QFETCH(QString, text);
    auto *label = new TextLabel(text);
    BoundedText area(label, 6);
    const int height = area.heightForWidth(400);
    QVERIFY(height >= 6 * label->fontMetrics().lineSpacing());
    QVERIFY(height < 8 * label->fontMetrics().lineSpacing());
    QVERIFY(area.minimumSizeHint().width() < 200);
    showAt(area, {400, height});
    QTRY_VERIFY(area.verticalScrollBar()->maximum() > 0);
    QCOMPARE(area.verticalScrollBar()->maximum() + area.viewport()->height(), label->height());
    QVERIFY(label->height() >= label->heightForWidth(label->width()));
}

void BoundedTextTest::asksForAnotherHeightWithAnotherText()
{
    auto *text = new TextLabel(QStringLiteral("one"));
    BoundedText area(text, 6);
    const int before = area.heightForWidth(400);
    text->setText(QStringLiteral("one\ntwo\nthree"));
    QVERIFY(area.heightForWidth(400) > before);
    QVERIFY(area.sizeHint().height() > before);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::BoundedTextTest)
#include "BoundedTextTest.moc"
