#pragma once

#include "app/settings/ZorelSettings.h"
#include "library/ModelLibraryStore.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "tests/support/RunFolders.h"
#include "ui/library/ComparisonSheet.h"
#include "ui/library/ModelLibraryView.h"
#include "ui/library/RunListModel.h"

#include <QModelIndex>
#include <QStringList>

#include <memory>

class QLineEdit;
class QListView;

namespace zorel::ui::kit {
class ActionButton;
} // namespace zorel::ui::kit

namespace zorel::tests {

/// Texts of the labels that are shown with `root`, in the order in which they were made.
QStringList visibleTexts(const QWidget &root);

/// Run folders as the library lists them.
struct ListedRuns
{
    /// Lists what the folders hold now.
    void list();

    RunFolders folders;
    library::ModelLibraryStore store;
    ui::library::RunListModel model;
};

/// What a run folder holds; an empty text is no file.
struct RunContent
{
    QByteArray manifest = "{}";
    QByteArray snapshot = {};
    QByteArray curve = {};
};

/// The comparison of two runs.
class ComparisonStage
{
public:
    /// Can be called again, for two other runs.
    void compare(const RunContent &baseline, const RunContent &candidate);

    ui::library::ComparisonSheet &sheet() const { return *m_sheet; }
    QString pathOf(const QString &entry) const { return m_folders.pathOf(entry); }
    QStringList texts() const { return visibleTexts(*m_sheet); }
    bool shows(const QString &text) const { return texts().contains(text); }

private:
    QString write(const QString &folder, const RunContent &run) const;

    RunFolders m_folders;
    library::ModelLibraryStore m_store;
    std::unique_ptr<ui::library::ComparisonSheet> m_sheet;
};

/// The library's sheet, over a folder without runs.
class LibraryStage
{
public:
    LibraryStage();

    /// "poet" in the versions 1.0.0 and 1.1.0, of the first two days of 2026, and "TINY-lm" v3 by Ada, of the
    /// third.
    void addRuns();
    /// A run that is newer than those.
    void addAnotherRun(const QByteArray &manifest = "{}") const;
    /// Takes a run's manifest away.
    void removeRun(const QString &folder) const;

    /// Makes the sheet, which scans when it has been seen.
    void show();
    /// Shows the sheet and waits for the scan.
    void open();

    bool shows(const QString &text) const;
    /// A visible one; null when there is none.
    ui::kit::ActionButton *button(const QString &title) const;
    QListView *list() const;
    QLineEdit *searchField() const;
    /// Of the list, by its text.
    QModelIndex row(const QString &text) const;
    int rowCount() const;
    /// With the mouse.
    void choose(const QString &text) const;
    void chooseFromMenu(const QString &rowText, const QString &entry) const;

    RunFolders folders;
    InMemoryUserDefaults defaults;
    app::settings::ZorelSettings settings;
    library::ModelLibraryStore store;
    QStringList revealed;
    std::unique_ptr<ui::library::ModelLibraryView> view;
};

} // namespace zorel::tests
