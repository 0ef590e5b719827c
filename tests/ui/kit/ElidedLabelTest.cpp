#include "ui/kit/ElidedLabel.h"

#include "tests/ui/kit/Screen.h"

#include <QApplication>
#include <QTextDocument>

namespace zorel::tests {

using namespace ui::kit;

class ElidedLabelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatFits();
    void cutsTheMiddleOfAPath();
    void cutsTheEndWhereAsked();
    void tellsTheFullText();
    void hasNoMarkupToTell();
    void showsLineBreaks();
    void staysSmallWithALongText();
    void followsTheFont();
};

void ElidedLabelTest::showsWhatFits()
{
    ElidedLabel label;
    label.setText(QStringLiteral("/Users/ada"));
    label.resize(label.sizeHint());
    QCOMPARE(label.shownText(), QStringLiteral("/Users/ada"));
}

void ElidedLabelTest::cutsTheMiddleOfAPath()
{
    ElidedLabel label;
    label.setText(QStringLiteral("/Users/ada/Documents/Zorel/Finished models/2025-01-31"));
    label.resize(label.sizeHint().width() / 2, 20);
    QVERIFY(label.shownText().startsWith(QStringLiteral("/Users")));
    QVERIFY(label.shownText().contains(QChar(0x2026)));
    QVERIFY(label.shownText().endsWith(QStringLiteral("01-31")));
}

void ElidedLabelTest::cutsTheEndWhereAsked()
{
    ElidedLabel label(Qt::ElideRight);
    label.setText(QStringLiteral("2025-01-31_12-00-00 and more"));
    label.resize(label.sizeHint().width() / 2, 20);
    QVERIFY(label.shownText().startsWith(QStringLiteral("2025")));
    QVERIFY(label.shownText().endsWith(QChar(0x2026)));
}

void ElidedLabelTest::tellsTheFullText()
{
    ElidedLabel label;
    const QString path = QStringLiteral("/Users/ada/<b>Documents</b>/Zorel");
    label.setText(path);
    label.resize(10, 20);
    QCOMPARE(label.text(), path);
    QCOMPARE(spokenName(&label), path);
    QCOMPARE(spoken(&label).role(), QAccessible::StaticText);
    QTextDocument tip;
    tip.setHtml(label.toolTip());
    QCOMPARE(tip.toPlainText(), path);
    label.setText(QStringLiteral("/plain"));
    QCOMPARE(label.toolTip(), QStringLiteral("/plain"));
}

void ElidedLabelTest::hasNoMarkupToTell()
{
    ElidedLabel label;
    label.setText(QStringLiteral("/Users/ada").repeated(20));
    QVERIFY(Qt::mightBeRichText(label.toolTip()));
    QCOMPARE(spoken(&label).text(QAccessible::Description), QString());
    label.setAccessibleDescription(QStringLiteral("Where runs go"));
    QCOMPARE(spoken(&label).text(QAccessible::Description), QStringLiteral("Where runs go"));
}

void ElidedLabelTest::showsLineBreaks()
{
    ElidedLabel label;
    label.setText(QStringLiteral("one\ntwo\u202e"));
    label.resize(400, 20);
    QCOMPARE(label.shownText(), QStringLiteral("one↵two\uFFFD"));
    QCOMPARE(spokenName(&label), QStringLiteral("one\ntwo\u202e"));
    QCOMPARE(label.sizeHint().height(), QFontMetrics(label.font()).height());
}

void ElidedLabelTest::staysSmallWithALongText()
{
    ElidedLabel label;
    label.setText(QString(5000, QLatin1Char('a')) + QString(5000, QLatin1Char('z')));
    QVERIFY(label.minimumSizeHint().width() < 150);
    showAt(label, {300, 24});
    QVERIFY(label.shownText().startsWith(QLatin1Char('a')) && label.shownText().endsWith(QLatin1Char('z')));
    QVERIFY(!picture(label).isNull());
}

void ElidedLabelTest::followsTheFont()
{
    ElidedLabel label;
    label.setText(QStringLiteral("/Users/ada"));
    const QSize before = label.sizeHint();
    const QFont font = QApplication::font();
    QFont large = font;
    large.setPointSizeF(2 * font.pointSizeF());
    QApplication::setFont(large);
    QTRY_VERIFY(label.sizeHint().width() > 1.5 * before.width());
    QApplication::setFont(font);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ElidedLabelTest)
#include "ElidedLabelTest.moc"
