#include "ui/kit/Sheet.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/TextLabel.h"

#include <QLineEdit>
#include <QVBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class SheetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAWindowModalDialogNamedByItsTitle();
    void closesWithEscape();
    void pressesTheProminentButtonWithReturn();
    void pressesTheFocusedButtonWithReturn();
    void showsAllOfALongText();
};

void SheetTest::isAWindowModalDialogNamedByItsTitle()
{
    QWidget window;
    Sheet sheet(QStringLiteral("About"), &window);
    QCOMPARE(sheet.windowModality(), Qt::WindowModal);
    QCOMPARE(spoken(&sheet).role(), QAccessible::Dialog);
    QCOMPARE(spokenName(&sheet), QStringLiteral("About"));
    QCOMPARE(sheet.findChild<TextLabel *>()->text(), QStringLiteral("About"));
    sheet.setTitle(QStringLiteral("<b>Other</b>"));
    QCOMPARE(spokenName(&sheet), QStringLiteral("<b>Other</b>"));
    QCOMPARE(sheet.findChild<TextLabel *>()->text(), QStringLiteral("<b>Other</b>"));
}

void SheetTest::closesWithEscape()
{
    QWidget window;
    showAt(window, {600, 400});
    Sheet sheet(QStringLiteral("About"), &window);
    QSignalSpy rejected(&sheet, &QDialog::rejected);
    sheet.open();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QTest::keyClick(&sheet, Qt::Key_Escape);
    QVERIFY(!sheet.isVisible());
    QCOMPARE(rejected.count(), 1);
}

void SheetTest::pressesTheProminentButtonWithReturn()
{
    QWidget window;
    Sheet sheet(QStringLiteral("Sheet"), &window);
    auto *field = new QLineEdit;
    sheet.content()->addWidget(field);
    QSignalSpy cancelled(sheet.addButton(QStringLiteral("Cancel")), &QPushButton::clicked);
    QSignalSpy done(sheet.addButton(QStringLiteral("Done"), ActionButton::Style::Prominent),
                    &QPushButton::clicked);
    showAt(sheet, {400, 200});
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(done.count(), 1);
    QCOMPARE(cancelled.count(), 0);
}

void SheetTest::pressesTheFocusedButtonWithReturn()
{
    QWidget window;
    Sheet sheet(QStringLiteral("Sheet"), &window);
    ActionButton *cancel = sheet.addButton(QStringLiteral("Cancel"));
    QSignalSpy cancelled(cancel, &QPushButton::clicked);
    QSignalSpy done(sheet.addButton(QStringLiteral("Done"), ActionButton::Style::Prominent),
                    &QPushButton::clicked);
    showAt(sheet, {400, 200});
    focusByKeyboard(cancel);
    QTRY_VERIFY(cancel->hasFocus());
    QTest::keyClick(cancel, Qt::Key_Return);
    QCOMPARE(cancelled.count(), 1);
    QCOMPARE(done.count(), 0);
}

void SheetTest::showsAllOfALongText()
{
    QWidget window;
    Sheet sheet(QStringLiteral("Sheet"), &window);
    auto *label = new TextLabel(QStringLiteral("A sentence that needs more than a line. ").repeated(5));
    sheet.content()->addWidget(label);
    sheet.open();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QVERIFY(label->height() >= label->heightForWidth(label->width()));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::SheetTest)
#include "SheetTest.moc"
