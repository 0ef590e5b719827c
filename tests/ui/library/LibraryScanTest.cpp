#include "tests/ui/library/Stage.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/LibrarySidebar.h"

#include <QListView>
#include <QTest>

namespace zorel::tests {

namespace {

class PaintCounter : public QObject
{
public:
    int count = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

/// What is seen while the library is scanned.
class LibraryScanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_stage = std::make_unique<LibraryStage>(); }
    void cleanup() { m_stage.reset(); }

    void scansTheConfiguredFolderWhenShown();
    void saysThatAScanRuns();
    void aScanLeavesTheFocusInTheList();
    void isSeenBeforeItScans();
    void saysThatItScansWhileThereIsNothingToShow();
    void aQuickScanLeavesTheListInItsPlace();
    void aLongScanIsPaintedAndGivesTheFocusBack();

private:
    std::unique_ptr<LibraryStage> m_stage;
};

void LibraryScanTest::scansTheConfiguredFolderWhenShown()
{
    m_stage->addRuns();
    QVERIFY(m_stage->store.models().isEmpty());
    m_stage->open();
    QCOMPARE(m_stage->store.lastScanPath(), m_stage->folders.pathOf(QStringLiteral("runs")));
    QCOMPARE(m_stage->rowCount(), 5);
    QVERIFY(!m_stage->view->detail());
}

void LibraryScanTest::saysThatAScanRuns()
{
    m_stage->addRuns();
    std::unique_ptr<ui::library::LibrarySidebar> sidebar;
    const auto showsMessage = [&sidebar] {
        const auto labels = sidebar->findChildren<ui::kit::TextLabel *>();
        return std::ranges::any_of(labels, [](const auto *label) {
            return label->isVisible() && label->text() == QStringLiteral("Scanning library…");
        });
    };
    bool saidSo = false;
    connect(&m_stage->store, &library::ModelLibraryStore::lastScanPathChanged, this, [&] {
        sidebar = std::make_unique<ui::library::LibrarySidebar>(m_stage->store);
        sidebar->show();
        saidSo = showsMessage() && !sidebar->list()->isVisible();
    });
    m_stage->store.scan(m_stage->folders.pathOf(QStringLiteral("runs")));
    QVERIFY(saidSo);
    QTRY_VERIFY(sidebar->list()->isVisible());
    QVERIFY(!showsMessage());
}

void LibraryScanTest::aScanLeavesTheFocusInTheList()
{
    m_stage->addRuns();
    m_stage->open();
    QTRY_VERIFY(m_stage->list()->isVisible());
    m_stage->list()->setFocus();
    m_stage->addAnotherRun();
    m_stage->store.scan(m_stage->store.lastScanPath());
    QVERIFY(m_stage->list()->isVisible());
    QVERIFY(m_stage->list()->hasFocus());
}

void LibraryScanTest::isSeenBeforeItScans()
{
    m_stage->show();
    QVERIFY(m_stage->store.lastScanPath().isEmpty());
    QVERIFY(m_stage->shows(QStringLiteral("Scanning library…")));
    QVERIFY(!m_stage->shows(QStringLiteral("No trained models yet")));
    QTRY_VERIFY(m_stage->shows(QStringLiteral("No trained models yet")));
    QVERIFY(!m_stage->shows(QStringLiteral("Scanning library…")));
}

void LibraryScanTest::saysThatItScansWhileThereIsNothingToShow()
{
    m_stage->open();
    m_stage->addRuns();
    bool isSaid = false;
    connect(&m_stage->store, &library::ModelLibraryStore::isLoadingChanged, m_stage->view.get(), [&] {
        isSaid |= m_stage->store.isLoading() && m_stage->shows(QStringLiteral("Scanning library…"));
    });
    m_stage->button(QStringLiteral("Refresh"))->click();
    QVERIFY(isSaid);
    QVERIFY(!m_stage->shows(QStringLiteral("Scanning library…")));
    QVERIFY(m_stage->list()->isVisible());
}

void LibraryScanTest::aQuickScanLeavesTheListInItsPlace()
{
    m_stage->addRuns();
    m_stage->open();
    QListView *list = m_stage->list();
    list->setFocus();
    QVERIFY(list->isVisible());
    bool wasHidden = false;
    connect(&m_stage->store, &library::ModelLibraryStore::modelsChanged, m_stage->view.get(),
            [&] { wasHidden |= !list->isVisible(); });
    m_stage->addAnotherRun();
    m_stage->button(QStringLiteral("Refresh"))->click();
    QCOMPARE(list->model()->rowCount(), 7);
    QVERIFY(!wasHidden);
    QVERIFY(list->hasFocus());
}

void LibraryScanTest::aLongScanIsPaintedAndGivesTheFocusBack()
{
    for (int run = 0; run <= 5000; ++run) {
        m_stage->folders.addRun(QStringLiteral("runs/") + QString::number(run), "{}");
    }
    m_stage->open();
    QListView *list = m_stage->list();
    QTRY_VERIFY(list->isVisible());
    list->setFocus();
    QCoreApplication::processEvents();
    // The sidebar has been painted when others hear of the scan.
    PaintCounter paints;
    m_stage->view->sidebar()->installEventFilter(&paints);
    bool isSaid = false;
    connect(&m_stage->store, &library::ModelLibraryStore::isLoadingChanged, m_stage->view.get(), [&] {
        isSaid |= m_stage->store.isLoading() && paints.count > 0 &&
                  m_stage->shows(QStringLiteral("Scanning library…"));
    });
    m_stage->store.scan(m_stage->store.lastScanPath());
    QVERIFY(isSaid);
    QVERIFY(list->isVisible());
    QVERIFY(list->hasFocus());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::LibraryScanTest)
#include "LibraryScanTest.moc"
