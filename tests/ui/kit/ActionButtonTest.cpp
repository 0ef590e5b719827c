#include "ui/kit/ActionButton.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/Palettes.h"

#include <QApplication>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>
#include <QVBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class ActionButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void heldReturnPressesOnce();
    void cleanup() { QApplication::setPalette(lightPalette()); }
    void isAButtonNamedByItsTitle();
    void takesAnAmpersandAsItStands();
    void isPressedByPointerAndKeys();
    void isNotPressedWhenDisabled();
    void isPressedThroughAssistiveTechnology();
    void showsTheFocusOfTheKeyboard();
    void becomesItsSymbol();
    void tellsTheNameOfASymbolOnce();
    void cutsItsTitleWhereThereIsNoRoom();
    void drawsItsStyle();
    void followsThePalette();
    void changesItsTitleAndSymbol();
};

void ActionButtonTest::isAButtonNamedByItsTitle()
{
    ActionButton button(QStringLiteral("folder"), QStringLiteral("Reveal in Finder"));
    QCOMPARE(spoken(&button).role(), QAccessible::Button);
    QCOMPARE(spokenName(&button), QStringLiteral("Reveal in Finder"));
    QVERIFY(button.focusPolicy() & Qt::TabFocus);
}

void ActionButtonTest::takesAnAmpersandAsItStands()
{
    ActionButton button({}, QStringLiteral("Privacy & Security"));
    QCOMPARE(button.title(), QStringLiteral("Privacy & Security"));
    QCOMPARE(spokenName(&button), QStringLiteral("Privacy & Security"));
    QVERIFY(button.shortcut().isEmpty());
}

void ActionButtonTest::isPressedByPointerAndKeys()
{
    ActionButton button(QStringLiteral("play.fill"), QStringLiteral("Start"));
    QSignalSpy clicks(&button, &QPushButton::clicked);
    showAt(button, button.sizeHint());
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(clicks.count(), 1);
    focusByKeyboard(&button);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(&button, key);
    }
    QCOMPARE(clicks.count(), 4);
}

void ActionButtonTest::isNotPressedWhenDisabled()
{
    ActionButton button({}, QStringLiteral("Start"));
    button.setEnabled(false);
    QSignalSpy clicks(&button, &QPushButton::clicked);
    showAt(button, button.sizeHint());
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Return);
    QCOMPARE(clicks.count(), 0);
}

void ActionButtonTest::isPressedThroughAssistiveTechnology()
{
    ActionButton button({}, QStringLiteral("Start"));
    QSignalSpy clicks(&button, &QPushButton::clicked);
    spoken(&button).actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QTRY_COMPARE(clicks.count(), 1);
}

void ActionButtonTest::showsTheFocusOfTheKeyboard()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    for (const ActionButton::Style style : {ActionButton::Style::Prominent, ActionButton::Style::Bordered,
                                            ActionButton::Style::Plain, ActionButton::Style::Link}) {
        layout->addWidget(new ActionButton(QStringLiteral("plus"), QStringLiteral("Title"), style));
    }
    showAt(window, {200, 200});
    const QList<ActionButton *> buttons = window.findChildren<ActionButton *>();
    for (ActionButton *button : buttons) {
        button->clearFocus();
        const QImage before = picture(*button);
        focusByKeyboard(button);
        QTRY_VERIFY(button->hasFocus());
        QVERIFY(picture(*button) != before);
    }
}

void ActionButtonTest::becomesItsSymbol()
{
    ActionButton button(QStringLiteral("stop.fill"), QStringLiteral("Refresh"));
    const int wide = button.sizeHint().width();
    button.setDisplay(ActionButton::Display::SymbolOnly);
    QVERIFY(button.sizeHint().width() < wide / 2);
    QVERIFY(button.sizeHint().width() >= 28);
    showAt(button, button.sizeHint());
    QVERIFY(pixelsOf(picture(button), color(ColorRole::Text, button.palette())) > 30);
}

void ActionButtonTest::tellsTheNameOfASymbolOnce()
{
    ActionButton button(QStringLiteral("plus"), QStringLiteral("<b>More</b>"));
    button.setDisplay(ActionButton::Display::SymbolOnly);
    QCOMPARE(spokenName(&button), QStringLiteral("<b>More</b>"));
    QCOMPARE(spoken(&button).text(QAccessible::Description), QString());
    QHelpEvent pointerRests(QEvent::ToolTip, button.rect().center(), QPoint());
    QApplication::sendEvent(&button, &pointerRests);
    QTextDocument shown;
    shown.setHtml(QToolTip::text());
    QCOMPARE(shown.toPlainText(), QStringLiteral("<b>More</b>"));
}

void ActionButtonTest::cutsItsTitleWhereThereIsNoRoom()
{
    ActionButton button(QStringLiteral("folder"), QString(10'000, QLatin1Char('m')));
    QVERIFY(button.minimumSizeHint().width() < 200);
    showAt(button, {150, 30});
    QVERIFY(!picture(button).isNull());
}

void ActionButtonTest::drawsItsStyle()
{
    ActionButton prominent({}, QStringLiteral("MMMM"), ActionButton::Style::Prominent);
    showAt(prominent, prominent.sizeHint());
    QVERIFY(pixelsOf(picture(prominent), color(ColorRole::AccentFill, prominent.palette())) > 300);
    prominent.setEnabled(false);
    QCOMPARE(pixelsOf(picture(prominent), color(ColorRole::AccentFill, prominent.palette())), 0);

    ActionButton link({}, QStringLiteral("MMMM"), ActionButton::Style::Link);
    showAt(link, link.sizeHint());
    QVERIFY(pixelsOf(picture(link), color(ColorRole::Accent, link.palette())) > 5);

    ActionButton bordered({}, QStringLiteral("MMMM"), ActionButton::Style::Bordered);
    bordered.setTone(ColorRole::Danger);
    showAt(bordered, bordered.sizeHint());
    QVERIFY(pixelsOf(picture(bordered), color(ColorRole::Danger, bordered.palette())) > 5);
    QVERIFY(pixelsOf(picture(bordered), color(ColorRole::ControlBorder, bordered.palette())) > 40);
}

void ActionButtonTest::followsThePalette()
{
    ActionButton button(QStringLiteral("stop.fill"), QStringLiteral("Stop"));
    button.setTone(ColorRole::Danger);
    showAt(button, button.sizeHint());
    const QColor light = color(ColorRole::Danger, lightPalette());
    QVERIFY(pixelsOf(picture(button), light) > 50);
    QApplication::setPalette(darkPalette());
    QTRY_VERIFY(pixelsOf(picture(button), color(ColorRole::Danger, darkPalette())) > 50);
    QCOMPARE(pixelsOf(picture(button), light), 0);
}

void ActionButtonTest::changesItsTitleAndSymbol()
{
    ActionButton button(QStringLiteral("pause.fill"), QStringLiteral("Pause"));
    const QSize before = button.sizeHint();
    button.setTitle(QStringLiteral("Resume training"));
    button.setSymbol(QStringLiteral("play.fill"));
    QCOMPARE(spokenName(&button), QStringLiteral("Resume training"));
    QCOMPARE(button.symbol(), QStringLiteral("play.fill"));
    QVERIFY(button.sizeHint().width() > before.width());
}

void ActionButtonTest::heldReturnPressesOnce()
{
    ActionButton button({}, QStringLiteral("Start"));
    const QSignalSpy clicked(&button, &QAbstractButton::clicked);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(&button, &press);
    QCoreApplication::sendEvent(&button, &repeat);
    QCOMPARE(clicked.count(), 1);
    button.setAutoRepeat(true);
    QCoreApplication::sendEvent(&button, &repeat);
    QCOMPARE(clicked.count(), 2);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ActionButtonTest)
#include "ActionButtonTest.moc"
