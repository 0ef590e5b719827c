#pragma once

#include "ui/kit/Sheet.h"
#include "ui/library/LibraryActions.h"

#include <QPointer>

class QStackedWidget;

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::library {
struct ArchivedModelRecord;
class ModelLibraryStore;
} // namespace zorel::library
namespace zorel::ui::library {

class BaselineBar;
class ComparisonSheet;
class LibrarySidebar;
class ModelDetailView;

/// The library of archived runs: a list to search, the chosen run, and the comparison of two. Scans the
/// Finished models folder when it is shown, once it can be seen. Main thread only.
class ModelLibraryView : public kit::Sheet
{
    Q_OBJECT

public:
    /// Store and settings must outlive the view.
    ModelLibraryView(zorel::library::ModelLibraryStore &store, const app::settings::ZorelSettings &settings,
                     LibraryActions actions, QWidget *parent);

    LibrarySidebar *sidebar() const { return m_sidebar; }
    /// Null while no run is chosen.
    ModelDetailView *detail() const;
    ComparisonSheet *comparison() const;

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *makeHeaderButtons();
    QWidget *makeDetailPane();
    void rescan();
    void refresh();
    void select(const QString &id);
    void setBaseline(const QString &id);
    void compare();

    zorel::library::ModelLibraryStore &m_store;
    const app::settings::ZorelSettings &m_settings;
    LibraryActions m_actions;
    QString m_selectedId;
    QString m_baselineId;
    bool m_scansWhenSeen = false;
    LibrarySidebar *m_sidebar;
    BaselineBar *m_baselineBar;
    QStackedWidget *m_pane;
    QWidget *m_nothingSelected;
    QWidget *m_detailPage;
    ModelDetailView *m_detail;
    QPointer<ComparisonSheet> m_comparison;
};

} // namespace zorel::ui::library
