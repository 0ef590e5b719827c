#include "ui/kit/ChoicePicker.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ChoiceCard.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Palettes.h"

#include <QApplication>
#include <QLineEdit>
#include <QVBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class ChoicePickerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void isAGroupOfRadioButtons();
    void tellsEveryChoiceOfTheUser();
    void tellsNothingOfTheProgram();
    void isChosenThroughAssistiveTechnology();
    void walksWithTheArrowKeys();
    void walksWithEveryArrowKey_data();
    void walksWithEveryArrowKey();
    void isOneStopOfTheTabKey();
    void chosesByPressingAnywhereOnTheCard();
    void standsSideBySideAndWraps();
    void showsTheWholeText();
    void replacesItsChoices();
    void clearsItsChoice();
    void takesNoMarkup();
    void showsTheChosenOneInBothPalettes();

private:
    QList<ChoiceCard *> cards() const { return m_picker->findChildren<ChoiceCard *>(); }

    std::unique_ptr<QWidget> m_window;
    QLineEdit *m_before = nullptr;
    QLineEdit *m_after = nullptr;
    ChoicePicker *m_picker = nullptr;
};

namespace {

const std::vector<Choice> families{
    {QStringLiteral("text"), QStringLiteral("text.alignleft"), QStringLiteral("Text"),
     QStringLiteral("Words.")},
    {QStringLiteral("image"), QStringLiteral("photo"), QStringLiteral("Image"),
     QStringLiteral("A longer summary that needs several lines where there is little room for it.")},
    {QStringLiteral("both"), QStringLiteral("text.below.photo"), QStringLiteral("Both"),
     QStringLiteral("Everything.")}};

} // namespace

void ChoicePickerTest::init()
{
    m_window = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(m_window.get());
    m_before = new QLineEdit;
    m_picker = new ChoicePicker(QStringLiteral("Model Type"));
    m_after = new QLineEdit;
    layout->addWidget(m_before);
    layout->addWidget(m_picker);
    layout->addWidget(m_after);
    layout->addStretch(1);
    m_picker->setChoices(families);
    m_picker->setCurrent(QStringLiteral("image"));
    showAt(*m_window, {800, 400});
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void ChoicePickerTest::cleanup()
{
    m_window.reset();
    QApplication::setPalette(lightPalette());
}

void ChoicePickerTest::isAGroupOfRadioButtons()
{
    QCOMPARE(spoken(m_picker).role(), QAccessible::Grouping);
    QCOMPARE(spokenName(m_picker), QStringLiteral("Model Type"));
    QCOMPARE(cards().size(), 3);
    QCOMPARE(spoken(cards()[0]).role(), QAccessible::RadioButton);
    QCOMPARE(spokenName(cards()[0]), QStringLiteral("Text"));
    QCOMPARE(spoken(cards()[0]).text(QAccessible::Description), QStringLiteral("Words."));
    QVERIFY(!spoken(cards()[0]).state().checked);
    QVERIFY(spoken(cards()[1]).state().checked);
}

void ChoicePickerTest::tellsEveryChoiceOfTheUser()
{
    QSignalSpy chosen(m_picker, &ChoicePicker::chosen);
    QTest::mouseClick(cards()[2], Qt::LeftButton);
    QTest::mouseClick(cards()[2], Qt::LeftButton);
    QCOMPARE(chosen.count(), 2);
    QCOMPARE(chosen[0][0].toString(), QStringLiteral("both"));
    QCOMPARE(chosen[1][0].toString(), QStringLiteral("both"));
    QCOMPARE(m_picker->current(), QStringLiteral("both"));
    QTest::keyClick(cards()[2], Qt::Key_Space);
    QCOMPARE(chosen.count(), 3);
}

void ChoicePickerTest::tellsNothingOfTheProgram()
{
    QSignalSpy chosen(m_picker, &ChoicePicker::chosen);
    m_picker->setCurrent(QStringLiteral("text"));
    QVERIFY(cards()[0]->isChecked());
    QVERIFY(!cards()[1]->isChecked());
    QCOMPARE(chosen.count(), 0);
    // A choice that the program does not accept goes back.
    QTest::mouseClick(cards()[2], Qt::LeftButton);
    m_picker->setCurrent(QStringLiteral("text"));
    QVERIFY(cards()[0]->isChecked());
    QVERIFY(!cards()[2]->isChecked());
}

void ChoicePickerTest::isChosenThroughAssistiveTechnology()
{
    QSignalSpy chosen(m_picker, &ChoicePicker::chosen);
    QAccessibleActionInterface *actions = spoken(cards()[0]).actionInterface();
    QVERIFY(!actions->actionNames().isEmpty());
    actions->doAction(actions->actionNames().constFirst());
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(m_picker->current(), QStringLiteral("text"));
}

void ChoicePickerTest::walksWithTheArrowKeys()
{
    QSignalSpy chosen(m_picker, &ChoicePicker::chosen);
    focusByKeyboard(cards()[1]);
    QTest::keyClick(cards()[1], Qt::Key_Right);
    QCOMPARE(m_picker->current(), QStringLiteral("both"));
    QVERIFY(cards()[2]->hasFocus());
    QTest::keyClick(cards()[2], Qt::Key_Left);
    QTest::keyClick(cards()[1], Qt::Key_Left);
    QCOMPARE(m_picker->current(), QStringLiteral("text"));
    QCOMPARE(chosen.count(), 3);
}

void ChoicePickerTest::walksWithEveryArrowKey_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("side by side") << 800 << Qt::LeftToRight;
    QTest::newRow("one below the other") << 300 << Qt::LeftToRight;
    QTest::newRow("from right to left") << 800 << Qt::RightToLeft;
}

void ChoicePickerTest::walksWithEveryArrowKey()
{
    QFETCH(int, width);
    QFETCH(Qt::LayoutDirection, direction);
    m_window->setLayoutDirection(direction);
    m_window->resize(width, 700);
    focusByKeyboard(cards()[1]);
    const bool isMirrored = direction == Qt::RightToLeft;
    const auto press = [this](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        return m_picker->current();
    };
    QCOMPARE(press(isMirrored ? Qt::Key_Left : Qt::Key_Right), QStringLiteral("both"));
    QCOMPARE(press(Qt::Key_Down), QStringLiteral("text"));
    QCOMPARE(press(Qt::Key_Up), QStringLiteral("both"));
    QCOMPARE(press(isMirrored ? Qt::Key_Right : Qt::Key_Left), QStringLiteral("image"));
    QVERIFY(cards()[1]->hasFocus());
}

void ChoicePickerTest::isOneStopOfTheTabKey()
{
    for (int round = 0; round < 2; ++round) {
        m_before->setFocus();
        QTest::keyClick(m_before, Qt::Key_Tab);
        QVERIFY(m_picker->isAncestorOf(QApplication::focusWidget()));
        QCOMPARE(spokenName(QApplication::focusWidget()),
                 round == 0 ? QStringLiteral("Image") : QStringLiteral("Both"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_after);
        m_picker->setCurrent(QStringLiteral("both"));
    }
}

void ChoicePickerTest::chosesByPressingAnywhereOnTheCard()
{
    QSignalSpy chosen(m_picker, &ChoicePicker::chosen);
    const QRect area = cards()[0]->rect();
    for (const QPoint &point :
         {area.center(), area.topLeft() + QPoint(2, 2), area.bottomRight() - QPoint(2, 2)}) {
        QTest::mouseClick(cards()[0], Qt::LeftButton, {}, point);
    }
    QCOMPARE(chosen.count(), 3);
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, cards()[0]->mapTo(m_window.get(), area.center()));
    QCOMPARE(chosen.count(), 3);
}

void ChoicePickerTest::standsSideBySideAndWraps()
{
    QCOMPARE(cards()[0]->y(), cards()[2]->y());
    QCOMPARE(cards()[0]->width(), cards()[2]->width());
    QCOMPARE(cards()[0]->height(), cards()[1]->height());
    m_window->resize(300, 700);
    QTRY_VERIFY(cards()[1]->y() > cards()[0]->geometry().bottom());
    QCOMPARE(cards()[0]->x(), cards()[1]->x());
}

void ChoicePickerTest::showsTheWholeText()
{
    for (const int width : {800, 500, 300}) {
        m_window->resize(width, 700);
        QCoreApplication::processEvents();
        for (const ChoiceCard *card : cards()) {
            QVERIFY(card->height() >= card->heightForWidth(card->width()));
        }
    }
}

void ChoicePickerTest::replacesItsChoices()
{
    m_picker->setChoices({families[1], families[2]});
    QTRY_COMPARE(cards().size(), 2);
    QVERIFY(cards()[0]->isChecked());
    m_picker->setChoices({families[0]});
    QTRY_COMPARE(cards().size(), 1);
    QVERIFY(!cards()[0]->isChecked());
    QSignalSpy chosen(m_picker, &ChoicePicker::chosen);
    QTest::mouseClick(cards()[0], Qt::LeftButton);
    QCOMPARE(chosen[0][0].toString(), QStringLiteral("text"));
}

void ChoicePickerTest::clearsItsChoice()
{
    m_picker->setCurrent({});
    for (const ChoiceCard *card : cards()) {
        QVERIFY(!card->isChecked());
    }
    m_before->setFocus();
    QTest::keyClick(m_before, Qt::Key_Tab);
    QVERIFY(m_picker->isAncestorOf(QApplication::focusWidget()));
}

void ChoicePickerTest::takesNoMarkup()
{
    m_picker->setChoices(
        {{QStringLiteral("a"), {}, QStringLiteral("<b>&Title</b>"), QString(10'000, QLatin1Char('m'))}});
    QTRY_COMPARE(cards().size(), 1);
    QCOMPARE(spokenName(cards()[0]), QStringLiteral("<b>&Title</b>"));
    QVERIFY(m_picker->minimumSizeHint().width() < 250);
}

void ChoicePickerTest::showsTheChosenOneInBothPalettes()
{
    for (const QPalette &palette : {lightPalette(), darkPalette()}) {
        QApplication::setPalette(palette);
        const QColor chosen = color(ColorRole::SelectionBackground, palette);
        QTRY_VERIFY(pixelsOf(picture(*cards()[1]), chosen) > 1000);
        QVERIFY(pixelsOf(picture(*cards()[0]), chosen) < 100);
    }
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ChoicePickerTest)
#include "ChoicePickerTest.moc"
