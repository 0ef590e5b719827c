#include "ui/kit/PlainText.h"

#include <QTest>
#include <QTextDocument>
#include <QWidget>

namespace zorel::tests {

using namespace ui::kit;

class PlainTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsControls_data();
    void showsControls();
    void neverMakesMarkupOfAToolTip();
    void boundsToolTips();
};

void PlainTextTest::showsControls_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    QTest::newRow("plain") << QStringLiteral("a b/ç 漢 😀") << QStringLiteral("a b/ç 漢 😀");
    QTest::newRow("right to left") << QStringLiteral("שלום") << QStringLiteral("שלום");
    QTest::newRow("line feed") << QStringLiteral("a\nb") << QStringLiteral("a↵b");
    QTest::newRow("carriage return") << QStringLiteral("a\rb") << QStringLiteral("a↵b");
    QTest::newRow("line separator") << QStringLiteral("a\u2028b\u2029") << QStringLiteral("a↵b↵");
    QTest::newRow("tabulator") << QStringLiteral("a\tb") << QStringLiteral("a⇥b");
    QTest::newRow("NUL") << QString(QChar(0)) << QStringLiteral("\uFFFD");
    QTest::newRow("escape") << QStringLiteral("\u001b[31m") << QStringLiteral("\uFFFD[31m");
    QTest::newRow("C1") << QString(QChar(0x85)) << QStringLiteral("\uFFFD");
    QTest::newRow("override") << QStringLiteral("a\u202egpj.exe") << QStringLiteral("a\uFFFDgpj.exe");
    QTest::newRow("isolate") << QStringLiteral("a\u2067b") << QStringLiteral("a\uFFFDb");
}

void PlainTextTest::showsControls()
{
    QFETCH(QString, text);
    QFETCH(QString, line);
    QCOMPARE(singleLine(text), line);
}

void PlainTextTest::neverMakesMarkupOfAToolTip()
{
    QWidget widget;
    setPlainToolTip(&widget, QStringLiteral("/home/ada/Training Data"));
    QCOMPARE(widget.toolTip(), QStringLiteral("/home/ada/Training Data"));
    for (const QString &text :
         {QStringLiteral("<b>bold</b>"), QStringLiteral("<img src='file:///etc/passwd'>"),
          QStringLiteral("<") + QString(300, QLatin1Char('x'))}) {
        setPlainToolTip(&widget, text);
        QTextDocument shown;
        shown.setHtml(widget.toolTip());
        QCOMPARE(shown.toPlainText().remove(QChar(0x200b)), text);
    }
}

void PlainTextTest::boundsToolTips()
{
    QWidget widget;
    setPlainToolTip(&widget, QString(5000, QLatin1Char('a')) + QString(5000, QLatin1Char('z')));
    QTextDocument shown;
    shown.setHtml(widget.toolTip());
    const QString text = shown.toPlainText().remove(QChar(0x200b));
    QCOMPARE(text.size(), 2001);
    QVERIFY(text.startsWith(QLatin1Char('a')) && text.endsWith(QLatin1Char('z')));
    // It has to have places to wrap at.
    QVERIFY(shown.toPlainText().count(QChar(0x200b)) > 40);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::PlainTextTest)
#include "PlainTextTest.moc"
