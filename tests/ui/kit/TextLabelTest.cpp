#include "ui/kit/TextLabel.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/Palettes.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>

namespace zorel::tests {

using namespace ui::kit;

class TextLabelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void takesNothingForMarkup();
    void rendersMarkdownWithoutItsMarks();
    void breaksLinesOfCodeInMarkdown();
    void drawsTablesWithThinLinesAndAHeader();
    void keepsTheColoursOfMarkdownInStepWithThePalette();
    void keepsStrangersOutOfMarkdown();
    void wrapsAtAnyWidth_data();
    void wrapsAtAnyWidth();
    void breaksLines();
    void growsInHeightInsideALayout();
    void isNamedByItsText();
    void cannotBeSelectedUnlessCopyable();
    void copiesByKeyboard();
    void selectsWithTheMouse();
    void selectsAWord();
    void offersAMenu();
    void standsAtTheLeadingEdge();
    void standsInTheMiddleOrAtTheTop();
    void followsThePalette();
    void followsTheFont();
};

namespace {

const QString longText =
    QStringLiteral("The quick brown fox jumps over the lazy dog and runs away from here.");

/// The columns between which something was drawn.
std::pair<int, int> inkColumns(QWidget &widget)
{
    const QImage image = picture(widget);
    const QColor paper = image.pixelColor(0, 0);
    int first = image.width();
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != paper) {
                first = std::min(first, x);
                last = x;
            }
        }
    }
    return {first, last};
}

int firstInkRow(QWidget &widget)
{
    const QImage image = picture(widget);
    const QColor paper = image.pixelColor(0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != paper) {
                return y;
            }
        }
    }
    return -1;
}

/// How many rows (Horizontal) or columns of the picture hold a long stroke of that colour.
int runsOf(const QColor &color, const QImage &image, Qt::Orientation orientation)
{
    constexpr int longest = 30;
    const bool isAcross = orientation == Qt::Horizontal;
    int strokes = 0;
    for (int line = 0; line < (isAcross ? image.height() : image.width()); ++line) {
        const QImage strip =
            isAcross ? image.copy(0, line, image.width(), 1) : image.copy(line, 0, 1, image.height());
        strokes += pixelsOf(strip, color) >= longest ? 1 : 0;
    }
    return strokes;
}

} // namespace

void TextLabelTest::cleanup()
{
    QApplication::setPalette(lightPalette());
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

void TextLabelTest::takesNothingForMarkup()
{
    const QString text = QStringLiteral("<b>bold</b> &amp; **stars** <img src='x'>");
    TextLabel label(text);
    QCOMPARE(label.text(), text);
    TextLabel other(QString(text).replace(QLatin1Char('<'), QLatin1Char('(')));
    QVERIFY(label.sizeHint().width() > 0.9 * other.sizeHint().width());
    label.setMarkdown(QStringLiteral("**x**"));
    label.setText(text);
    QCOMPARE(label.text(), text);
}

void TextLabelTest::rendersMarkdownWithoutItsMarks()
{
    TextLabel label({});
    label.setMarkdown(QStringLiteral("Live in **Training Data**."));
    QCOMPARE(label.text(), QStringLiteral("Live in Training Data."));
    QCOMPARE(spokenName(&label), QStringLiteral("Live in Training Data."));
}

void TextLabelTest::breaksLinesOfCodeInMarkdown()
{
    TextLabel label({});
    label.setMarkdown(QStringLiteral("```\n") + QStringLiteral("word ").repeated(40) +
                      QStringLiteral("\n```"));
    QVERIFY(label.heightForWidth(200) > 3 * label.heightForWidth(20'000));
}

void TextLabelTest::drawsTablesWithThinLinesAndAHeader()
{
    const QString table =
        QStringLiteral("| Model | Before | After |\n|---|---|---|\n| a | 1 | 2 |\n| b | 3 | 4 |");
    for (const QPalette &colors : {lightPalette(), darkPalette()}) {
        TextLabel label({});
        label.setPalette(colors);
        label.setMarkdown(table);
        showAt(label, {400, 200});
        const QColor line = color(ColorRole::Separator, colors);
        // Four lines across and four down, one pixel each, around letters with room beside them.
        QCOMPARE(runsOf(line, picture(label), Qt::Horizontal), 4);
        QCOMPARE(runsOf(line, picture(label), Qt::Vertical), 4);
    }
}

void TextLabelTest::keepsTheColoursOfMarkdownInStepWithThePalette()
{
    TextLabel label({});
    label.setPalette(lightPalette());
    label.setMarkdown(QStringLiteral("| a |\n|---|\n| b |\n\n```\ncode\n```"));
    showAt(label, {400, 200});
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Separator, lightPalette())) > 100);
    label.setPalette(darkPalette());
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Separator, darkPalette())) > 100);
    // But for the edges of letters.
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Separator, lightPalette())) < 30);
    QVERIFY(pixelsOf(picture(label), tint(ColorRole::Secondary, darkPalette())) > 1000);
}

void TextLabelTest::keepsStrangersOutOfMarkdown()
{
    TextLabel label({});
    label.setMarkdown(QStringLiteral(
        "a <script>x</script> ![picture](http://127.0.0.1/p.png) [link](http://127.0.0.1/) **b**"));
    QVERIFY(label.text().contains(QStringLiteral("<script>")));
    QVERIFY(!label.text().contains(QChar::ObjectReplacementCharacter));
    QVERIFY(label.text().contains(QStringLiteral("link")));
    showAt(label, {300, 100});
    QCOMPARE(pixelsOf(picture(label), label.palette().color(QPalette::Link)), 0);
}

void TextLabelTest::wrapsAtAnyWidth_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << longText;
    QTest::newRow("10,000 characters without a space") << QString(10'000, QLatin1Char('m'));
    QTest::newRow("right to left") << QStringLiteral("שלום עולם ").repeated(500);
    QTest::newRow("path") << QStringLiteral("/Users/ada/Documents").repeated(300);
    QTest::newRow("controls") << QString(QChar(0)) + QStringLiteral("\u001b\t\u0085\u202e").repeated(500);
}

void TextLabelTest::wrapsAtAnyWidth()
{
    QFETCH(QString, text);
    TextLabel label(text);
    QVERIFY(label.minimumSizeHint().width() < 150);
    QVERIFY(label.sizeHint().width() < 1000);
    QVERIFY(label.heightForWidth(100) >= label.heightForWidth(400));
    showAt(label, {120, 200});
    QVERIFY(!picture(label).isNull());
}

void TextLabelTest::breaksLines()
{
    const TextLabel one(QStringLiteral("line"));
    const TextLabel three(QStringLiteral("line\nline\nline"));
    QCOMPARE(three.heightForWidth(400), 3 * one.heightForWidth(400));
    const TextLabel narrow(longText);
    QVERIFY(narrow.heightForWidth(100) > 3 * one.heightForWidth(400));
}

void TextLabelTest::growsInHeightInsideALayout()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *label = new TextLabel(longText);
    layout->addWidget(label);
    layout->addStretch(1);
    showAt(window, {600, 400});
    const int before = label->height();
    window.resize(150, 400);
    QTRY_VERIFY(label->height() > before);
    QVERIFY(label->height() >= label->heightForWidth(label->width()));
    const int narrow = label->height();
    label->setText(QStringLiteral("short"));
    QTRY_VERIFY(label->height() < narrow);
}

void TextLabelTest::isNamedByItsText()
{
    TextLabel label(QStringLiteral("Loss <b>curve</b>"));
    QCOMPARE(spoken(&label).role(), QAccessible::StaticText);
    QCOMPARE(spokenName(&label), QStringLiteral("Loss <b>curve</b>"));
    label.setText(QStringLiteral("other"));
    QCOMPARE(spokenName(&label), QStringLiteral("other"));
}

void TextLabelTest::cannotBeSelectedUnlessCopyable()
{
    TextLabel label(longText);
    showAt(label, {600, 30});
    QCOMPARE(label.focusPolicy(), Qt::NoFocus);
    QTest::mouseDClick(&label, Qt::LeftButton, {}, {20, label.height() / 2});
    QVERIFY(label.selectedText().isEmpty());
}

void TextLabelTest::copiesByKeyboard()
{
    TextLabel label(QStringLiteral("<b>one</b>\ntwo"));
    label.setCopyable();
    showAt(label, {300, 60});
    focusByKeyboard(&label);
    QTRY_VERIFY(label.hasFocus());
    QTest::keySequence(&label, QKeySequence::SelectAll);
    QCOMPARE(label.selectedText(), QStringLiteral("<b>one</b>\ntwo"));
    QVERIFY(pixelsOf(picture(label), label.palette().color(QPalette::Highlight)) > 50);
    QTest::keySequence(&label, QKeySequence::Copy);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("<b>one</b>\ntwo"));
    label.setText(QStringLiteral("three"));
    QVERIFY(label.selectedText().isEmpty());
}

void TextLabelTest::selectsWithTheMouse()
{
    TextLabel label(QStringLiteral("one two three"));
    label.setCopyable();
    showAt(label, {300, 40});
    const int middle = label.height() / 2;
    QTest::mousePress(&label, Qt::LeftButton, {}, {0, middle});
    QTest::mouseMove(&label, {299, middle});
    QMouseEvent move(QEvent::MouseMove, QPointF(299, middle), QPointF(299, middle), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&label, &move);
    QTest::mouseRelease(&label, Qt::LeftButton, {}, {299, middle});
    QCOMPARE(label.selectedText(), QStringLiteral("one two three"));
    QTest::mouseClick(&label, Qt::LeftButton, {}, {0, middle});
    QVERIFY(label.selectedText().isEmpty());
}

void TextLabelTest::selectsAWord()
{
    TextLabel label(QStringLiteral("incomprehensible two three"));
    label.setCopyable();
    showAt(label, {300, 40});
    QTest::mouseDClick(&label, Qt::LeftButton, {}, {20, label.height() / 2});
    QCOMPARE(label.selectedText(), QStringLiteral("incomprehensible"));
}

void TextLabelTest::offersAMenu()
{
    TextLabel label(QStringLiteral("one two"));
    label.setCopyable();
    showAt(label, {300, 40});
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {5, 5}, label.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&label, &event);
    auto *menu = label.findChild<QMenu *>();
    QVERIFY(menu);
    QVERIFY(!menu->actions().at(0)->isEnabled());
    menu->actions().at(1)->trigger();
    QCOMPARE(label.selectedText(), QStringLiteral("one two"));
    menu->close();
}

void TextLabelTest::standsAtTheLeadingEdge()
{
    for (const QString &text : {QStringLiteral("short"), QStringLiteral("שלום")}) {
        TextLabel label(text);
        showAt(label, {300, 30});
        QVERIFY(inkColumns(label).second < 150);
        label.setLayoutDirection(Qt::RightToLeft);
        QVERIFY(inkColumns(label).first > 150);
        label.setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
        QVERIFY(inkColumns(label).second < 150);
        label.setAlignment(Qt::AlignCenter);
        QVERIFY(inkColumns(label).first > 100 && inkColumns(label).second < 200);
    }
}

void TextLabelTest::standsInTheMiddleOrAtTheTop()
{
    TextLabel label(QStringLiteral("text"));
    showAt(label, {200, 200});
    QVERIFY(firstInkRow(label) > 80);
    label.setAlignment(Qt::AlignLeading | Qt::AlignTop);
    QVERIFY(firstInkRow(label) < 20);
    label.setAlignment(Qt::AlignLeading | Qt::AlignBottom);
    QVERIFY(firstInkRow(label) > 170);
}

void TextLabelTest::followsThePalette()
{
    TextLabel label(QStringLiteral("MMMM"), TextRole::LargeTitle, Weight::Semibold);
    showAt(label, {300, 60});
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Text, lightPalette())) > 50);
    label.setColorRole(ColorRole::Danger);
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Danger, lightPalette())) > 50);
    QApplication::setPalette(darkPalette());
    QTRY_VERIFY(pixelsOf(picture(label), color(ColorRole::Danger, darkPalette())) > 50);
    QCOMPARE(pixelsOf(picture(label), color(ColorRole::Danger, lightPalette())), 0);
    label.setEnabled(false);
    QCOMPARE(pixelsOf(picture(label), color(ColorRole::Danger, darkPalette())), 0);
}

void TextLabelTest::followsTheFont()
{
    TextLabel label(QStringLiteral("text"));
    const QSize before = label.sizeHint();
    const QFont font = QApplication::font();
    QFont large = font;
    large.setPointSizeF(3 * font.pointSizeF());
    QApplication::setFont(large);
    QTRY_VERIFY(label.sizeHint().width() > 2 * before.width());
    QTRY_VERIFY(label.sizeHint().height() > 2 * before.height());
    QApplication::setFont(font);
    QTRY_COMPARE(label.sizeHint(), before);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::TextLabelTest)
#include "TextLabelTest.moc"
