#include "app/shell/TitleBarAppNameButton.h"
#include "app/shell/WindowTitleBarConfigurator.h"

#include <QFontMetrics>
#include <QSignalSpy>
#include <QTest>

using namespace zorel;
using app::shell::TitleBarAppNameButton;
using app::shell::WindowTitleBarConfigurator;

class TitleBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theButtonShowsTheNameInItsFont();
    void theButtonHasFourPointsBesideTheName();
    void theTooltipSaysWhatItDoes();
    void pressingRunsTheAction();
    void theKeyboardPressesItToo();
    void aNameIsNoMarkup();
    void theConfiguratorNamesTheWindowOnceItIsInOne();
    void theConfiguratorStaysOutOfTheWay();
};

void TitleBarTest::theButtonShowsTheNameInItsFont()
{
    const TitleBarAppNameButton button(QStringLiteral("Trainer"), [] {});
    QCOMPARE(button.text(), QStringLiteral("Trainer"));
    QCOMPARE(button.accessibleName(), QStringLiteral("Trainer"));
    QCOMPARE(button.font().pointSize(), 13);
    QCOMPARE(button.font().weight(), QFont::DemiBold);
    QCOMPARE(button.font().family(), QGuiApplication::font().family());
    QVERIFY(button.isFlat());
}

void TitleBarTest::theButtonHasFourPointsBesideTheName()
{
    const TitleBarAppNameButton button(QStringLiteral("Trainer"), [] {});
    QCOMPARE(button.sizeHint().width(),
             QFontMetrics(button.font()).horizontalAdvance(QStringLiteral("Trainer")) + 8);
}

void TitleBarTest::theTooltipSaysWhatItDoes()
{
    const TitleBarAppNameButton button(QStringLiteral("Trainer"), [] {});
    QVERIFY(button.toolTip().contains(QStringLiteral("About Trainer")));
}

void TitleBarTest::pressingRunsTheAction()
{
    int presses = 0;
    TitleBarAppNameButton button(QStringLiteral("Trainer"), [&presses] { ++presses; });
    button.show();
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(presses, 1);
}

void TitleBarTest::theKeyboardPressesItToo()
{
    int presses = 0;
    TitleBarAppNameButton button(QStringLiteral("Trainer"), [&presses] { ++presses; });
    button.show();
    QVERIFY(button.focusPolicy() & Qt::TabFocus);
    QTest::keyClick(&button, Qt::Key_Space);
    QCOMPARE(presses, 1);
}

void TitleBarTest::aNameIsNoMarkup()
{
    const TitleBarAppNameButton button(QStringLiteral("<b>A & B</b>"), [] {});
    QCOMPARE(button.text(), QStringLiteral("<b>A && B</b>"));
    QVERIFY(!button.toolTip().contains(QStringLiteral("<b>")));
}

void TitleBarTest::theConfiguratorNamesTheWindowOnceItIsInOne()
{
    QWidget window;
    QWidget content(&window);
    const WindowTitleBarConfigurator configurator(QStringLiteral("Trainer"), &content);
    QCOMPARE(window.windowTitle(), QString());
    window.show();
    QCOMPARE(window.windowTitle(), QStringLiteral("Trainer"));
}

void TitleBarTest::theConfiguratorStaysOutOfTheWay()
{
    QWidget window;
    window.resize(100, 100);
    QWidget other(&window);
    const WindowTitleBarConfigurator configurator(QStringLiteral("Trainer"), &window);
    window.show();
    QVERIFY(configurator.size().isEmpty());
    QVERIFY(configurator.testAttribute(Qt::WA_TransparentForMouseEvents));
    QCOMPARE(configurator.focusPolicy(), Qt::NoFocus);
    QVERIFY(window.children().indexOf(&configurator) < window.children().indexOf(&other));
}

QTEST_MAIN(TitleBarTest)
#include "TitleBarTest.moc"
