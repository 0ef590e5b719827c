#include "ui/kit/ContextMenu.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ContextMenuKey.h"

#include <QContextMenuEvent>
#include <QStyleHints>
#include <QWidget>
#include <QWindow>

namespace zorel::tests {

using namespace ui::kit;

namespace {

/// Opens a new menu whenever it is asked for one.
class Ground : public QWidget
{
public:
    QMenu *menu = nullptr;
    int opened = 0;
    QContextMenuEvent::Reason reason = QContextMenuEvent::Other;

protected:
    void contextMenuEvent(QContextMenuEvent *event) override
    {
        delete menu;
        menu = new ContextMenu(this);
        menu->addAction(QStringLiteral("Copy"));
        menu->popup(event->globalPos());
        ++opened;
        reason = event->reason();
    }
};

} // namespace

class ContextMenuTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void staysOpenAfterTheReleaseOfTheButton();
    void staysOpenAtASecondQuickPress();
    void opensWithoutAMenuKey();
};

void ContextMenuTest::staysOpenAfterTheReleaseOfTheButton()
{
    Ground ground;
    ground.resize(200, 200);
    ground.show();
    QVERIFY(QTest::qWaitForWindowActive(&ground));
    QTest::mouseClick(ground.windowHandle(), Qt::RightButton, {}, {100, 100});
    QVERIFY(ground.menu && ground.menu->isVisible());
}

void ContextMenuTest::staysOpenAtASecondQuickPress()
{
    Ground ground;
    ground.resize(200, 200);
    ground.show();
    QVERIFY(QTest::qWaitForWindowActive(&ground));
    // Of the window rather than of the widget: the toolkit itself is to make a double click of two.
    QTest::mouseClick(ground.windowHandle(), Qt::RightButton, {}, {100, 100});
    ground.menu->close();
    ground.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&ground));
    // However long the first click is ago.
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(60 * 60 * 1000);
    QTest::mouseClick(ground.windowHandle(), Qt::RightButton, {}, {100, 100});
    QCOMPARE(ground.opened, 2);
    QVERIFY(ground.menu->isVisible());
}

void ContextMenuTest::opensWithoutAMenuKey()
{
    ContextMenuKey key;
    qApp->installEventFilter(&key);
    Ground ground;
    QWidget field(&ground);
    field.setFocusPolicy(Qt::StrongFocus);
    ground.resize(200, 200);
    ground.show();
    QVERIFY(QTest::qWaitForWindowActive(&ground));
    field.setFocus();
    QTest::keyClick(ground.windowHandle(), Qt::Key_F10);
    QCOMPARE(ground.opened, 0);
    QTest::keyClick(ground.windowHandle(), Qt::Key_F10, Qt::ShiftModifier);
    QCOMPARE(ground.opened, 1);
    QCOMPARE(ground.reason, QContextMenuEvent::Keyboard);
    QVERIFY(ground.menu->isVisible());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ContextMenuTest)
#include "ContextMenuTest.moc"
