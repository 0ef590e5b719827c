#include "ui/kit/CollapsibleSection.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/TextLabel.h"

#include <QPainter>
#include <QVBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class CollapsibleSectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isClosedAtFirst();
    void itsChevronPointsWhereTheContentIs();
    void opensAndClosesByPointer();
    void isOperatedByKeys();
    void readsAsAButtonThatOpens();
    void opensThroughAssistiveTechnology();
    void tellsChangesOnly();
    void keepsHeaderWidgetsInView();
    void keepsClosedContentOutOfTheTabOrder();
    void staysNarrowWithALongTitle();
};

void CollapsibleSectionTest::isClosedAtFirst()
{
    CollapsibleSection section(QStringLiteral("Model Identity"), QStringLiteral("tag.fill"));
    auto *content = new TextLabel(QStringLiteral("content"));
    section.content()->addWidget(content);
    showAt(section, {300, 200});
    QVERIFY(!section.expanded());
    QVERIFY(!content->isVisible());
}

void CollapsibleSectionTest::itsChevronPointsWhereTheContentIs()
{
    CollapsibleSection section(QStringLiteral("Recent activity"), QStringLiteral("terminal.fill"));
    showAt(section, {300, 200});
    SectionHeader &header = *section.header();
    const QRect place(spacing::half, (header.height() - 14) / 2, 14, 14);
    const auto chevron = [&](const QString &symbol) {
        QImage image(place.size(), QImage::Format_RGB32);
        image.fill(picture(header).pixel(0, 0));
        QPainter(&image).drawPixmap(
            0, 0, symbolPixmap(symbol, 14, color(ColorRole::Secondary, header.palette()), 1));
        return image;
    };
    const auto shown = [&] {
        return picture(header).copy(place).convertToFormat(QImage::Format_RGB32);
    };
    QCOMPARE(shown(), chevron(QStringLiteral("chevron.right")));
    section.setExpanded(true);
    QCOMPARE(shown(), chevron(QStringLiteral("chevron.down")));
}

void CollapsibleSectionTest::opensAndClosesByPointer()
{
    CollapsibleSection section(QStringLiteral("Recent activity"), QStringLiteral("terminal.fill"));
    auto *content = new TextLabel(QStringLiteral("content"));
    section.content()->addWidget(content);
    QSignalSpy changes(&section, &CollapsibleSection::expandedChanged);
    const int closedHeight = section.sizeHint().height();
    showAt(section, {300, 200});
    QTest::mouseClick(section.header(), Qt::LeftButton);
    QVERIFY(section.expanded());
    QVERIFY(content->isVisible());
    QVERIFY(section.sizeHint().height() > closedHeight);
    QTest::mouseClick(section.header(), Qt::LeftButton);
    QVERIFY(!content->isVisible());
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes[0][0].toBool(), true);
    QCOMPARE(changes[1][0].toBool(), false);
}

void CollapsibleSectionTest::isOperatedByKeys()
{
    CollapsibleSection section(QStringLiteral("Title"), {});
    showAt(section, {300, 200});
    focusByKeyboard(section.header());
    QTRY_VERIFY(section.header()->hasFocus());
    const std::pair<Qt::Key, bool> steps[]{{Qt::Key_Space, true}, {Qt::Key_Return, false},
                                           {Qt::Key_Right, true}, {Qt::Key_Right, true},
                                           {Qt::Key_Left, false}, {Qt::Key_Left, false}};
    for (const auto &[key, expected] : steps) {
        QTest::keyClick(section.header(), key);
        QCOMPARE(section.expanded(), expected);
    }
    section.setLayoutDirection(Qt::RightToLeft);
    QTest::keyClick(section.header(), Qt::Key_Left);
    QVERIFY(section.expanded());
}

void CollapsibleSectionTest::readsAsAButtonThatOpens()
{
    CollapsibleSection section(QStringLiteral("Model Identity"), QStringLiteral("tag.fill"));
    QCOMPARE(spoken(&section).role(), QAccessible::Grouping);
    QCOMPARE(spokenName(&section), QStringLiteral("Model Identity"));
    QAccessibleInterface &header = spoken(section.header());
    QCOMPARE(header.role(), QAccessible::Button);
    QCOMPARE(spokenName(section.header()), QStringLiteral("Model Identity"));
    QVERIFY(header.state().expandable);
    QVERIFY(header.state().collapsed);
    section.setExpanded(true);
    QVERIFY(header.state().expanded);
    QVERIFY(!header.state().collapsed);
    section.setTitle(QStringLiteral("Other"));
    QCOMPARE(spokenName(section.header()), QStringLiteral("Other"));
}

void CollapsibleSectionTest::opensThroughAssistiveTechnology()
{
    CollapsibleSection section(QStringLiteral("Title"), {});
    QAccessibleActionInterface *actions = spoken(section.header()).actionInterface();
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(section.expanded());
}

void CollapsibleSectionTest::tellsChangesOnly()
{
    CollapsibleSection section(QStringLiteral("Title"), {});
    QSignalSpy changes(&section, &CollapsibleSection::expandedChanged);
    section.setExpanded(true);
    section.setExpanded(true);
    QCOMPARE(changes.count(), 1);
}

void CollapsibleSectionTest::keepsHeaderWidgetsInView()
{
    CollapsibleSection section(QStringLiteral("Title"), {});
    auto *button = new ActionButton({}, QStringLiteral("Reset"));
    section.addHeaderWidget(button);
    showAt(section, {300, 100});
    QVERIFY(button->isVisible());
    QSignalSpy clicks(button, &QPushButton::clicked);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(clicks.count(), 1);
    QVERIFY(!section.expanded());
}

void CollapsibleSectionTest::keepsClosedContentOutOfTheTabOrder()
{
    CollapsibleSection section(QStringLiteral("Title"), {});
    auto *button = new ActionButton({}, QStringLiteral("Inside"));
    section.content()->addWidget(button);
    showAt(section, {300, 200});
    focusByKeyboard(section.header());
    QTRY_VERIFY(section.header()->hasFocus());
    QTest::keyClick(section.header(), Qt::Key_Tab);
    QVERIFY(section.header()->hasFocus());
    section.setExpanded(true);
    QTest::keyClick(section.header(), Qt::Key_Tab);
    QVERIFY(button->hasFocus());
}

void CollapsibleSectionTest::staysNarrowWithALongTitle()
{
    CollapsibleSection section(QStringLiteral("<b>m\n").repeated(2500), {});
    QVERIFY(section.minimumSizeHint().width() < 250);
    showAt(section, {200, 60});
    QVERIFY(!picture(section).isNull());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::CollapsibleSectionTest)
#include "CollapsibleSectionTest.moc"
