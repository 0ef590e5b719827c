#include "ui/kit/Toast.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>
#include <QLineEdit>

namespace zorel::tests {

using namespace ui::kit;

class ToastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_window.reset(); }
    void isHiddenAtFirst();
    void standsInTheMiddleOfTheBottom();
    void followsTheWindow();
    void staysInANarrowWindow();
    void takesNoFocus();
    void keepsClearOfWhatMustStayInReach();
    void isANoticeNamedByItsTexts();
    void speaksTheNameItWasGiven();

private:
    std::unique_ptr<QWidget> m_window;
    Toast *m_toast = nullptr;
    ElidedLabel *m_folder = nullptr;
};

void ToastTest::init()
{
    m_window = std::make_unique<QWidget>();
    m_toast = new Toast(m_window.get());
    m_toast->content()->addWidget(new TextLabel(QStringLiteral("Model archived")));
    m_folder = new ElidedLabel;
    m_folder->setText(QStringLiteral("2025-01-31_12-00-00"));
    m_toast->content()->addWidget(m_folder, 1);
    m_toast->content()->addWidget(new ActionButton({}, QStringLiteral("Reveal in Finder")));
    showAt(*m_window, {800, 600});
}

void ToastTest::isHiddenAtFirst()
{
    QVERIFY(!m_toast->isVisible());
    m_toast->showToast();
    QVERIFY(m_toast->isVisible());
    m_toast->hideToast();
    QVERIFY(!m_toast->isVisible());
}

void ToastTest::standsInTheMiddleOfTheBottom()
{
    m_toast->showToast();
    QVERIFY(std::abs(m_toast->geometry().center().x() - 400) <= 1);
    QVERIFY(m_toast->geometry().bottom() < 600);
    QVERIFY(m_toast->y() > 450);
    QVERIFY(m_toast->width() < 800);
}

void ToastTest::followsTheWindow()
{
    m_toast->showToast();
    m_window->resize(1000, 300);
    QTRY_VERIFY(std::abs(m_toast->geometry().center().x() - 500) <= 1);
    QVERIFY(m_toast->geometry().bottom() < 300);
    const int before = m_toast->width();
    m_folder->setText(QStringLiteral("a much longer name of a folder than the one before"));
    QTRY_VERIFY(m_toast->width() > before);
}

void ToastTest::staysInANarrowWindow()
{
    m_folder->setText(QString(10'000, QLatin1Char('m')));
    m_window->resize(360, 300);
    m_toast->showToast();
    QTRY_VERIFY(m_toast->geometry().left() >= 0);
    QVERIFY(m_toast->geometry().right() < 360);
    QVERIFY(m_toast->findChild<ActionButton *>()->mapTo(m_window.get(), QPoint()).x() < 340);
}

void ToastTest::keepsClearOfWhatMustStayInReach()
{
    auto *page = new QWidget(m_window.get());
    page->setGeometry(0, 0, 800, 1200);
    auto *controls = new QWidget(page);
    controls->setGeometry(0, 500, 400, 90);
    page->show();
    m_toast->keepClearOf(controls);
    m_toast->showToast();
    QVERIFY(m_toast->geometry().bottom() < 500);
    // While they are elsewhere it has its usual place, also when all of the page moved.
    page->move(0, -400);
    QVERIFY(m_toast->y() > 450);
    page->move(0, -10);
    QVERIFY(m_toast->geometry().bottom() < 490);
    controls->hide();
    QVERIFY(m_toast->y() > 450);
    // Without room it stays in the window.
    controls->show();
    controls->setGeometry(0, 0, 800, 600);
    QVERIFY(m_window->rect().contains(m_toast->geometry()));
}

void ToastTest::takesNoFocus()
{
    auto *field = new QLineEdit(m_window.get());
    field->show();
    m_window->activateWindow();
    field->setFocus();
    QTRY_VERIFY(field->hasFocus());
    m_toast->showToast();
    QVERIFY(field->hasFocus());
    QTest::keyClick(field, Qt::Key_Backtab);
    QVERIFY(m_toast->findChild<ActionButton *>()->hasFocus());
}

void ToastTest::isANoticeNamedByItsTexts()
{
    QCOMPARE(spoken(m_toast).role(), QAccessible::AlertMessage);
    m_toast->showToast();
    QCOMPARE(spokenName(m_toast), QStringLiteral("Model archived. 2025-01-31_12-00-00"));
    m_toast->hideToast();
    m_folder->setText(QStringLiteral("other"));
    m_toast->showToast();
    QCOMPARE(spokenName(m_toast), QStringLiteral("Model archived. other"));
}

void ToastTest::speaksTheNameItWasGiven()
{
    m_toast->setAccessibleName(QStringLiteral("Saved"));
    m_toast->showToast();
    QCOMPARE(spokenName(m_toast), QStringLiteral("Saved"));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ToastTest)
#include "ToastTest.moc"
