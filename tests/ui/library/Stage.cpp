#include "tests/ui/library/Stage.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/LibrarySidebar.h"

#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QTest>

namespace zorel::tests {

using ui::library::ComparisonSheet;
using ui::library::ModelLibraryView;

QStringList visibleTexts(const QWidget &root)
{
    QStringList found;
    const auto labels = root.findChildren<ui::kit::TextLabel *>();
    for (const auto *label : labels) {
        if (label->isVisibleTo(&root)) {
            found << label->text();
        }
    }
    return found;
}

void ListedRuns::list()
{
    store.scan(folders.path());
    model.setGroups(store.groupedByName());
}

void ComparisonStage::compare(const RunContent &baseline, const RunContent &candidate)
{
    const QString baselineId = write(QStringLiteral("baseline"), baseline);
    const QString candidateId = write(QStringLiteral("candidate"), candidate);
    m_store.scan(m_folders.path());
    const auto *first = m_store.modelWithId(baselineId);
    const auto *second = m_store.modelWithId(candidateId);
    QVERIFY(first && second);
    m_sheet =
        std::make_unique<ComparisonSheet>(m_store, library::ModelRunComparison{*first, *second}, nullptr);
}

QString ComparisonStage::write(const QString &folder, const RunContent &run) const
{
    m_folders.remove(folder);
    m_folders.addRun(folder, run.manifest, run.curve, run.snapshot);
    return m_folders.pathOf(folder);
}

LibraryStage::LibraryStage()
    : settings(defaults, platform::StandardFolders::below(folders.path()))
{
    settings.setFinishedModelsPath(QStringLiteral("~/runs"));
    folders.write(QStringLiteral("runs/.keep"), {});
}

void LibraryStage::addRuns()
{
    folders.addRun(
        QStringLiteral("runs/2026-01-01_00-00-00"),
        R"({"model_identity":{"name":"poet","version":"1.0.0"},"archived_at":"2026-01-01T00:00:00Z"})");
    folders.addRun(
        QStringLiteral("runs/2026-01-02_00-00-00"),
        R"({"model_identity":{"name":"poet","version":"1.1.0"},"archived_at":"2026-01-02T00:00:00Z"})");
    folders.addRun(
        QStringLiteral("runs/2026-01-03_00-00-00"),
        R"({"model_identity":{"name":"TINY-lm","version":"3","author":"Ada"},"archived_at":"2026-01-03T00:00:00Z"})");
}

void LibraryStage::addAnotherRun(const QByteArray &manifest) const
{
    folders.addRun(QStringLiteral("runs/2026-02-01_00-00-00"), manifest);
}

void LibraryStage::removeRun(const QString &folder) const
{
    QVERIFY(
        QFile::remove(folders.pathOf(QStringLiteral("runs/") + folder + QStringLiteral("/manifest.json"))));
}

void LibraryStage::show()
{
    view = std::make_unique<ModelLibraryView>(store, settings,
                                              ui::library::LibraryActions{[this](const QString &path) {
                                                  revealed << path;
                                              }},
                                              nullptr);
    view->open();
}

void LibraryStage::open()
{
    show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    QTRY_VERIFY(!store.lastScanPath().isEmpty());
}

bool LibraryStage::shows(const QString &text) const
{
    const auto labels = view->findChildren<ui::kit::TextLabel *>();
    return std::any_of(labels.begin(), labels.end(),
                       [&](const auto *label) { return label->isVisible() && label->text() == text; });
}

ui::kit::ActionButton *LibraryStage::button(const QString &title) const
{
    const auto buttons = view->findChildren<ui::kit::ActionButton *>();
    for (auto *candidate : buttons) {
        if (candidate->title() == title && candidate->isVisible()) {
            return candidate;
        }
    }
    return nullptr;
}

QListView *LibraryStage::list() const
{
    return view->sidebar()->list();
}

QLineEdit *LibraryStage::searchField() const
{
    return view->sidebar()->searchField();
}

QModelIndex LibraryStage::row(const QString &text) const
{
    const auto *model = list()->model();
    for (int number = 0; number < model->rowCount(); ++number) {
        if (model->index(number, 0).data().toString() == text) {
            return model->index(number, 0);
        }
    }
    return {};
}

int LibraryStage::rowCount() const
{
    return list()->model()->rowCount();
}

void LibraryStage::choose(const QString &text) const
{
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualRect(row(text)).center());
}

void LibraryStage::chooseFromMenu(const QString &rowText, const QString &entry) const
{
    Q_EMIT list()->customContextMenuRequested(list()->visualRect(row(rowText)).center());
    auto *menu = view->findChild<QMenu *>();
    QVERIFY(menu);
    const auto actions = menu->actions();
    for (QAction *action : actions) {
        if (action->text() == entry) {
            action->trigger();
        }
    }
    delete menu;
}

} // namespace zorel::tests
