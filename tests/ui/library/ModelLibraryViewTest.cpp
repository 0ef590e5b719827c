#include "ui/library/ModelLibraryView.h"
#include "tests/ui/library/Stage.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/BaselineBar.h"
#include "ui/library/ModelDetailView.h"

#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QTest>

namespace zorel::tests {

class ModelLibraryViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_stage = std::make_unique<LibraryStage>(); }
    void cleanup() { m_stage.reset(); }

    void anEmptyFolderHasItsMessages();
    void itsMessagesStandAtOneHeight();
    void aChosenRunIsShown();
    void aChosenRunReachesToTheButtons();
    void refreshFindsNewRunsAndKeepsTheChoice();
    void aChosenRunThatIsGoneLeavesTheEmptyPane();
    void theContextMenuOffersBaselineAndReveal();
    void aBaselineHasItsBarUntilItIsCleared();
    void comparingNeedsTwoDifferentRuns();
    void comparesTheBaselineWithTheChosenRun();
    void aBaselineThatIsGoneLeavesNoBar();
    void doneCloses();

private:
    std::unique_ptr<LibraryStage> m_stage;
};

void ModelLibraryViewTest::anEmptyFolderHasItsMessages()
{
    m_stage->open();
    QVERIFY(m_stage->shows(QStringLiteral("Trained Models")));
    QVERIFY(m_stage->shows(QStringLiteral("No trained models yet")));
    QVERIFY(m_stage->shows(
        QStringLiteral("Complete a training run and it will appear here under Finished models.")));
    QVERIFY(m_stage->shows(QStringLiteral("Select a trained model")));
    QVERIFY(m_stage->shows(
        QStringLiteral("Pick a finished run from the sidebar to inspect its metrics and neuron pathways.")));
    QCOMPARE(m_stage->searchField()->placeholderText(), QStringLiteral("Search models"));
    QVERIFY(!m_stage->list()->isVisible());
    QCOMPARE(m_stage->button(QStringLiteral("Refresh"))->symbol(), QStringLiteral("arrow.clockwise"));
    QStringList symbols;
    const auto labels = m_stage->view->findChildren<ui::kit::SymbolLabel *>();
    for (const auto *label : labels) {
        if (label->isVisible()) {
            symbols << label->symbol();
        }
    }
    symbols.sort();
    QCOMPARE(symbols, QStringList({QStringLiteral("shippingbox"), QStringLiteral("tray")}));
}

void ModelLibraryViewTest::itsMessagesStandAtOneHeight()
{
    m_stage->open();
    QTRY_VERIFY(m_stage->shows(QStringLiteral("No trained models yet")));
    const auto topOf = [this](const QString &text) {
        const auto labels = m_stage->view->findChildren<ui::kit::TextLabel *>();
        const auto found = std::ranges::find(labels, text, [](const auto *label) { return label->text(); });
        return found == labels.end() ? -1 : (*found)->mapTo(m_stage->view.get(), QPoint()).y();
    };
    QTRY_COMPARE(topOf(QStringLiteral("Select a trained model")),
                 topOf(QStringLiteral("No trained models yet")));
    QVERIFY(topOf(QStringLiteral("Select a trained model")) > 0);
}

void ModelLibraryViewTest::aChosenRunIsShown()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->choose(QStringLiteral("poet v1.0.0"));
    QVERIFY(m_stage->view->detail());
    QCOMPARE(m_stage->view->detail()->model()->version, QStringLiteral("1.0.0"));
    m_stage->choose(QStringLiteral("poet"));
    QCOMPARE(m_stage->view->detail()->model()->version, QStringLiteral("1.0.0"));
}

void ModelLibraryViewTest::aChosenRunReachesToTheButtons()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->choose(QStringLiteral("poet v1.0.0"));
    const auto rightOf = [this](const QWidget *widget) {
        return widget->mapTo(m_stage->view.get(), widget->rect().topRight()).x();
    };
    QTRY_COMPARE(rightOf(m_stage->view->detail()), rightOf(m_stage->button(QStringLiteral("Done"))));
}

void ModelLibraryViewTest::refreshFindsNewRunsAndKeepsTheChoice()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->choose(QStringLiteral("poet v1.0.0"));
    m_stage->addAnotherRun(
        R"({"model_identity":{"name":"poet","version":"2"},"archived_at":"2026-02-01T00:00:00Z"})");
    m_stage->button(QStringLiteral("Refresh"))->click();
    QVERIFY(m_stage->row(QStringLiteral("poet v2")).isValid());
    QCOMPARE(m_stage->list()->currentIndex(), m_stage->row(QStringLiteral("poet v1.0.0")));
    QCOMPARE(m_stage->view->detail()->model()->version, QStringLiteral("1.0.0"));
}

void ModelLibraryViewTest::aChosenRunThatIsGoneLeavesTheEmptyPane()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->choose(QStringLiteral("TINY-lm v3"));
    QVERIFY(m_stage->view->detail());
    m_stage->removeRun(QStringLiteral("2026-01-03_00-00-00"));
    m_stage->button(QStringLiteral("Refresh"))->click();
    QVERIFY(!m_stage->view->detail());
    QVERIFY(m_stage->shows(QStringLiteral("Select a trained model")));
}

void ModelLibraryViewTest::theContextMenuOffersBaselineAndReveal()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->chooseFromMenu(QStringLiteral("poet v1.1.0"), QStringLiteral("Reveal in Finder"));
    QCOMPARE(m_stage->revealed,
             QStringList{m_stage->folders.pathOf(QStringLiteral("runs/2026-01-02_00-00-00"))});
    m_stage->chooseFromMenu(QStringLiteral("poet v1.1.0"), QStringLiteral("Set as comparison baseline"));
    QVERIFY(m_stage->shows(QStringLiteral("Comparing against")));
}

void ModelLibraryViewTest::aBaselineHasItsBarUntilItIsCleared()
{
    m_stage->addRuns();
    m_stage->open();
    QVERIFY(!m_stage->shows(QStringLiteral("Comparing against")));
    m_stage->chooseFromMenu(QStringLiteral("poet v1.1.0"), QStringLiteral("Set as comparison baseline"));
    auto *bar = m_stage->view->findChild<ui::library::BaselineBar *>();
    QVERIFY(bar->isVisible());
    QCOMPARE(bar->findChild<ui::kit::ElidedLabel *>()->text(), QStringLiteral("poet v1.1.0"));
    QVERIFY(m_stage->row(QStringLiteral("poet v1.1.0"))
                .data(Qt::AccessibleTextRole)
                .toString()
                .endsWith(QStringLiteral("baseline")));
    m_stage->button(QStringLiteral("Clear"))->click();
    QVERIFY(!bar->isVisible());
    QVERIFY(!m_stage->row(QStringLiteral("poet v1.1.0"))
                 .data(Qt::AccessibleTextRole)
                 .toString()
                 .endsWith(QStringLiteral("baseline")));
}

void ModelLibraryViewTest::comparingNeedsTwoDifferentRuns()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->chooseFromMenu(QStringLiteral("poet v1.1.0"), QStringLiteral("Set as comparison baseline"));
    QVERIFY(!m_stage->button(QStringLiteral("Compare"))->isEnabled());
    QVERIFY(m_stage->shows(QStringLiteral("Select a run to compare with the baseline.")));
    m_stage->choose(QStringLiteral("poet v1.1.0"));
    QVERIFY(!m_stage->button(QStringLiteral("Compare"))->isEnabled());
    QVERIFY(m_stage->shows(QStringLiteral("Select a run other than the baseline.")));
    m_stage->choose(QStringLiteral("poet v1.0.0"));
    QVERIFY(m_stage->button(QStringLiteral("Compare"))->isEnabled());
    QVERIFY(!m_stage->shows(QStringLiteral("Select a run other than the baseline.")));
}

void ModelLibraryViewTest::comparesTheBaselineWithTheChosenRun()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->chooseFromMenu(QStringLiteral("poet v1.0.0"), QStringLiteral("Set as comparison baseline"));
    m_stage->choose(QStringLiteral("poet v1.1.0"));
    m_stage->button(QStringLiteral("Compare"))->click();
    QVERIFY(m_stage->view->comparison());
    QCOMPARE(m_stage->view->comparison()->comparison().baseline.version, QStringLiteral("1.0.0"));
    QCOMPARE(m_stage->view->comparison()->comparison().candidate.version, QStringLiteral("1.1.0"));
}

void ModelLibraryViewTest::aBaselineThatIsGoneLeavesNoBar()
{
    m_stage->addRuns();
    m_stage->open();
    m_stage->chooseFromMenu(QStringLiteral("TINY-lm v3"), QStringLiteral("Set as comparison baseline"));
    m_stage->removeRun(QStringLiteral("2026-01-03_00-00-00"));
    m_stage->button(QStringLiteral("Refresh"))->click();
    QVERIFY(!m_stage->shows(QStringLiteral("Comparing against")));
}

void ModelLibraryViewTest::doneCloses()
{
    m_stage->open();
    m_stage->button(QStringLiteral("Done"))->click();
    QVERIFY(!m_stage->view->isVisible());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ModelLibraryViewTest)
#include "ModelLibraryViewTest.moc"
