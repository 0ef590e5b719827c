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
    void theKeyboardReachesTheFirstAndTheLastRun();

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

void LibrarySearchTest::theKeyboardReachesTheFirstAndTheLastRun()
{
    m_stage->addRuns();
    for (int run = 0; run < 40; ++run) {
        m_stage->folders.addRun(
            QStringLiteral("runs/%1").arg(run),
            R"({"model_identity":{"name":"middle"},"archived_at":"2025-01-01T00:00:00Z"})");
    }
    m_stage->open();
    const auto current = [this] {
        return m_stage->list()->currentIndex().data().toString();
    };
    const QString first = QStringLiteral("TINY-lm v3");
    const QString last = QStringLiteral("poet v1.0.0");
    QTest::keyClick(m_stage->searchField(), Qt::Key_Down);
    QCOMPARE(current(), first);
    QTest::keyClick(m_stage->list(), Qt::Key_End);
    QCOMPARE(current(), last);
    QTest::keyClick(m_stage->list(), Qt::Key_Home);
    QCOMPARE(current(), first);
    for (int page = 0; page < 20; ++page) {
        QTest::keyClick(m_stage->list(), Qt::Key_PageDown);
    }
    QCOMPARE(current(), last);
    for (int page = 0; page < 20; ++page) {
        QTest::keyClick(m_stage->list(), Qt::Key_PageUp);
    }
    QCOMPARE(current(), first);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::LibrarySearchTest)
#include "LibrarySearchTest.moc"
