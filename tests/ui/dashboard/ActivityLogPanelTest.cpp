#include "ui/dashboard/ActivityLogPanel.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/dashboard/LogView.h"
#include "ui/kit/CollapsibleSection.h"

#include <QSignalSpy>
#include <QTextBlock>

namespace zorel::tests {

using ui::dashboard::ActivityLogPanel;
using ui::dashboard::LiveUpdates;
using ui::dashboard::LogView;

class ActivityLogPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isCollapsedUnlessItWasExpanded();
    void isExpandedWhenItWas();
    void showsItsSymbol();
    void ignoresAStoredValueOfAnotherType();
    void remembersAsABoolean();
    void togglesByEachOfItsWays();
    void countsLines();
    void hasNoViewWhileItWasNeverExpanded();
    void collapsedTakesNoLines();
    void showsWhatCameWhileItWasCollapsed();
    void addsWaitingLinesOnce();
    void showsNewLinesOnceAFrame();
    void keepsTheNewest2000();

private:
    void make();
    QStringList shown() const
    {
        return m_panel->findChild<LogView *>()->toPlainText().split(QLatin1Char('\n'));
    }
    void addLines(int count)
    {
        for (int added = 0; added < count; ++added) {
            m_stage->backend.appendLog(QStringLiteral("line %1").arg(m_number++));
        }
    }

    int m_number = 0;
    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<LiveUpdates> m_updates;
    std::unique_ptr<ActivityLogPanel> m_panel;
};

namespace {

const QString key = QStringLiteral("zorel.logExpanded");

} // namespace

void ActivityLogPanelTest::init()
{
    m_number = 0;
    m_stage = std::make_unique<Stage>();
    m_updates = std::make_unique<LiveUpdates>(m_stage->backend);
    make();
}

void ActivityLogPanelTest::cleanup()
{
    m_panel.reset();
    m_updates.reset();
    m_stage.reset();
}

void ActivityLogPanelTest::make()
{
    m_panel = std::make_unique<ActivityLogPanel>(m_stage->backend, m_stage->store, *m_updates);
    m_panel->show();
}

void ActivityLogPanelTest::isCollapsedUnlessItWasExpanded()
{
    QVERIFY(!m_panel->logExpanded());
    QVERIFY(m_stage->store.writes.empty());
    QVERIFY(shows(m_panel.get(), QStringLiteral("Recent activity")));
    QVERIFY(shows(m_panel.get(), QStringLiteral("Show")));
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Hide")));
}

void ActivityLogPanelTest::isExpandedWhenItWas()
{
    m_stage->store.values.insert(key, true);
    addLines(3);
    make();
    QVERIFY(m_panel->logExpanded());
    QVERIFY(shows(m_panel.get(), QStringLiteral("Hide")));
    QCOMPARE(shown(), m_stage->log());
    QVERIFY(m_panel->findChild<LogView *>()->isVisible());
    QVERIFY(m_stage->store.writes.empty());
}

void ActivityLogPanelTest::showsItsSymbol()
{
    QCOMPARE(symbols(m_panel.get()), QStringList(QStringLiteral("terminal.fill")));
}

void ActivityLogPanelTest::ignoresAStoredValueOfAnotherType()
{
    m_stage->store.values.insert(key, QStringLiteral("true"));
    make();
    QVERIFY(!m_panel->logExpanded());
}

void ActivityLogPanelTest::remembersAsABoolean()
{
    m_panel->setLogExpanded(true);
    QCOMPARE(m_stage->store.values.value(key), QVariant(true));
    m_panel->setLogExpanded(false);
    QCOMPARE(m_stage->store.values.value(key), QVariant(false));
    QCOMPARE(m_stage->store.writes.size(), std::size_t{2});
}

void ActivityLogPanelTest::togglesByEachOfItsWays()
{
    QSignalSpy changed(m_panel.get(), &ActivityLogPanel::logExpandedChanged);
    button(m_panel.get(), QStringLiteral("Show"))->click();
    QVERIFY(m_panel->logExpanded() && m_panel->findChild<LogView *>()->isVisible());
    button(m_panel.get(), QStringLiteral("Hide"))->click();
    QVERIFY(!m_panel->logExpanded() && !m_panel->findChild<LogView *>()->isVisible());
    button(m_panel.get(), QStringLiteral("Recent activity"))->click();
    QVERIFY(m_panel->logExpanded());
    QVERIFY(shows(m_panel.get(), QStringLiteral("Hide")));
    button(m_panel.get(), QStringLiteral("Recent activity"))->click();
    QVERIFY(!m_panel->logExpanded());
    QCOMPARE(changed.count(), 4);
    QCOMPARE(m_stage->store.writes.size(), std::size_t{4});
}

void ActivityLogPanelTest::countsLines()
{
    QVERIFY(shows(m_panel.get(), QStringLiteral("0 lines")));
    addLines(12);
    m_updates->publish();
    QVERIFY(shows(m_panel.get(), QStringLiteral("12 lines")));
    addLines(5000);
    m_updates->publish();
    QVERIFY(shows(m_panel.get(), QStringLiteral("2000 lines")));
}

void ActivityLogPanelTest::hasNoViewWhileItWasNeverExpanded()
{
    addLines(100);
    m_updates->publish();
    QVERIFY(m_panel->findChild<LogView *>() == nullptr);
}

void ActivityLogPanelTest::collapsedTakesNoLines()
{
    m_panel->setLogExpanded(true);
    m_panel->setLogExpanded(false);
    QSignalSpy changes(m_panel->findChild<LogView *>()->document(), &QTextDocument::contentsChange);
    addLines(2000);
    m_updates->publish();
    QCOMPARE(changes.count(), 0);
}

void ActivityLogPanelTest::showsWhatCameWhileItWasCollapsed()
{
    m_panel->setLogExpanded(true);
    addLines(3);
    m_panel->setLogExpanded(false);
    addLines(3000);
    m_panel->setLogExpanded(true);
    QCOMPARE(shown(), m_stage->log());
}

void ActivityLogPanelTest::addsWaitingLinesOnce()
{
    addLines(5); // and no frame yet
    m_panel->setLogExpanded(true);
    m_updates->publish();
    QCOMPARE(shown(), m_stage->log());
}

void ActivityLogPanelTest::showsNewLinesOnceAFrame()
{
    addLines(10);
    m_panel->setLogExpanded(true);
    QSignalSpy changes(m_panel->findChild<LogView *>()->document(), &QTextDocument::contentsChange);
    addLines(500);
    QCOMPARE(changes.count(), 0);
    QTRY_COMPARE(shown(), m_stage->log());
    QCOMPARE(changes.count(), 1);
}

void ActivityLogPanelTest::keepsTheNewest2000()
{
    m_panel->setLogExpanded(true);
    for (int turn = 0; turn < 5; ++turn) {
        addLines(700);
        m_updates->publish();
        QCOMPARE(shown(), m_stage->log());
    }
    addLines(10'000);
    m_updates->publish();
    QCOMPARE(shown(), m_stage->log());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ActivityLogPanelTest)
#include "ActivityLogPanelTest.moc"
