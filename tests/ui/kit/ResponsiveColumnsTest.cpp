#include "ui/kit/ResponsiveColumns.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/ScrollPage.h"

#include <QApplication>
#include <QVBoxLayout>

#include <memory>
#include <tuple>

namespace zorel::tests {

using namespace ui::kit;

class ResponsiveColumnsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_columns.reset(); }
    void standsSideBySideWhereWide();
    void standsOneBelowTheOtherWhereNarrow();
    void doesNotFlickerAtTheThreshold();
    void sharesTheWidthAsTold();
    void leavesHeightToSpareBelow();
    void keepsTheTabOrder();

private:
    std::unique_ptr<ResponsiveColumns> m_columns;
    ActionButton *m_leading = nullptr;
    ActionButton *m_trailing = nullptr;
};

void ResponsiveColumnsTest::init()
{
    m_columns = std::make_unique<ResponsiveColumns>();
    m_leading = new ActionButton({}, QStringLiteral("leading"));
    m_trailing = new ActionButton({}, QStringLiteral("trailing"));
    // In another order than they are read in.
    m_columns->trailing()->addWidget(m_trailing);
    m_columns->leading()->addWidget(m_leading);
}

void ResponsiveColumnsTest::standsSideBySideWhereWide()
{
    showAt(*m_columns, {1100, 400});
    QVERIFY(m_columns->isWide());
    QVERIFY(m_trailing->mapTo(m_columns.get(), QPoint()).x() >
            m_leading->mapTo(m_columns.get(), QPoint()).x());
    QCOMPARE(m_leading->parentWidget()->width(), m_trailing->parentWidget()->width());
}

void ResponsiveColumnsTest::standsOneBelowTheOtherWhereNarrow()
{
    showAt(*m_columns, {900, 400});
    QVERIFY(!m_columns->isWide());
    QCOMPARE(m_trailing->mapTo(m_columns.get(), QPoint()).x(),
             m_leading->mapTo(m_columns.get(), QPoint()).x());
    QVERIFY(m_trailing->mapTo(m_columns.get(), QPoint()).y() >
            m_leading->mapTo(m_columns.get(), QPoint()).y());
}

void ResponsiveColumnsTest::doesNotFlickerAtTheThreshold()
{
    showAt(*m_columns, {1100, 400});
    // A scroll bar appears and takes its width.
    m_columns->resize(1080, 400);
    QVERIFY(m_columns->isWide());
    m_columns->resize(1060, 400);
    QVERIFY(!m_columns->isWide());
    m_columns->resize(1080, 400);
    QVERIFY(!m_columns->isWide());
}

void ResponsiveColumnsTest::sharesTheWidthAsTold()
{
    m_columns->setStretch(2, 3);
    showAt(*m_columns, {1216, 400});
    QCOMPARE(m_leading->parentWidget()->width(), 480);
    QCOMPARE(m_trailing->parentWidget()->width(), 720);
}

void ResponsiveColumnsTest::leavesHeightToSpareBelow()
{
    m_columns->leading()->addStretch(1);
    m_columns->trailing()->addStretch(1);
    showAt(*m_columns, {600, 800});
    QVERIFY(m_trailing->mapTo(m_columns.get(), QPoint()).y() < 100);
}

void ResponsiveColumnsTest::keepsTheTabOrder()
{
    ScrollPage page;
    page.content()->addWidget(m_columns.get());
    auto *second = new ActionButton({}, QStringLiteral("second"));
    auto *last = new ActionButton({}, QStringLiteral("last"));
    m_columns->trailing()->addWidget(last);
    m_columns->leading()->addWidget(second);
    for (const int width : {1300, 600}) {
        showAt(page, {width, 400});
        focusByKeyboard(m_leading);
        QTRY_VERIFY(m_leading->hasFocus());
        for (QWidget *expected : {second, m_trailing, last}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), expected);
        }
    }
    std::ignore = m_columns.release();
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ResponsiveColumnsTest)
#include "ResponsiveColumnsTest.moc"
