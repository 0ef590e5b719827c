#include "tests/ui/library/Stage.h"
#include "ui/library/ModelDetailView.h"

#include <QLineEdit>
#include <QListView>
#include <QTest>

namespace zorel::tests {

/// Looking for a run, with the mouse away.
class LibrarySearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_stage = std::make_unique<LibraryStage>(); }
    void cleanup() { m_stage.reset(); }

    void searchesAtEveryKeyPress();
    void aSearchWithoutAMatchSaysSo();
    void typingSearchesFromTheStart();
    void typingInTheListSearches();
    void theShortcutForFindingLeadsToTheSearch();
    void theKeyboardLeadsFromTheSearchToTheRuns();

private:
    std::unique_ptr<LibraryStage> m_stage;
};

void LibrarySearchTest::searchesAtEveryKeyPress()
{
    m_stage->addRuns();
    m_stage->open();
    QTest::keyClicks(m_stage->searchField(), QStringLiteral("tiny"));
    QCOMPARE(m_stage->rowCount(), 2);
    QVERIFY(m_stage->row(QStringLiteral("TINY-lm v3")).isValid());
    m_stage->searchField()->clear();
    QCOMPARE(m_stage->rowCount(), 5);
}

void LibrarySearchTest::aSearchWithoutAMatchSaysSo()
{
    m_stage->addRuns();
    m_stage->open();
    QTest::keyClicks(m_stage->searchField(), QStringLiteral("Ada"));
    QVERIFY(m_stage->shows(QStringLiteral("No matching models")));
    QVERIFY(!m_stage->shows(QStringLiteral("No trained models yet")));
}

void LibrarySearchTest::typingSearchesFromTheStart()
{
    m_stage->addRuns();
    m_stage->open();
    QTRY_COMPARE(m_stage->view->focusWidget(), m_stage->searchField());
}

void LibrarySearchTest::typingInTheListSearches()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->list()->setFocus();
    QTest::keyClicks(m_stage->list(), QStringLiteral("t"));
    QCOMPARE(m_stage->searchField()->text(), QStringLiteral("t"));
}

void LibrarySearchTest::theShortcutForFindingLeadsToTheSearch()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->searchField()->setText(QStringLiteral("poet"));
    m_stage->list()->setFocus();
    QTest::keySequence(m_stage->view.get(), QKeySequence(QKeySequence::Find));
    QVERIFY(m_stage->searchField()->hasFocus());
    QTest::keyClicks(m_stage->searchField(), QStringLiteral("tiny"));
    QCOMPARE(m_stage->searchField()->text(), QStringLiteral("tiny"));
}

void LibrarySearchTest::theKeyboardLeadsFromTheSearchToTheRuns()
{
    m_stage->addRuns();
    m_stage->open();
    QTest::keyClick(m_stage->searchField(), Qt::Key_Down);
    QVERIFY(m_stage->view->detail());
    QCOMPARE(m_stage->view->detail()->model()->name, QStringLiteral("TINY-lm"));
    QTest::keyClick(m_stage->list(), Qt::Key_Down);
    QCOMPARE(m_stage->view->detail()->model()->version, QStringLiteral("1.1.0"));
    QTest::keyClick(m_stage->list(), Qt::Key_Down);
    QCOMPARE(m_stage->view->detail()->model()->version, QStringLiteral("1.0.0"));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::LibrarySearchTest)
#include "LibrarySearchTest.moc"
