#pragma once

#include <QWidget>

class QLineEdit;
class QListView;
class QPoint;
class QStackedWidget;

namespace zorel::library {
struct ArchivedModelRecord;
class ModelLibraryStore;
} // namespace zorel::library
namespace zorel::ui::library {

class RunListModel;

/// The runs of the library, grouped by name, with a search field. Typing in the list searches.
class LibrarySidebar : public QWidget
{
    Q_OBJECT

public:
    /// The store must outlive the sidebar.
    explicit LibrarySidebar(const zorel::library::ModelLibraryStore &store, QWidget *parent = nullptr);

    /// Until the next scan is over, a library without runs is one that is being scanned.
    void expectScan();
    void setBaseline(const QString &id);
    /// Marks a run as chosen without telling; an id that is not listed marks none.
    void setSelected(const QString &id);

    QLineEdit *searchField() const { return m_search; }
    QListView *list() const { return m_list; }

Q_SIGNALS:
    /// The user chose a run.
    void runChosen(const QString &id);
    void baselineChosen(const QString &id);
    void revealRequested(const QString &path);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void prepareSearch();
    void prepareList();
    void fillList();
    void followLoading();
    void showPage();
    void showMenu(const QPoint &position);

    const zorel::library::ModelLibraryStore &m_store;
    RunListModel *m_model;
    QLineEdit *m_search;
    QListView *m_list;
    QStackedWidget *m_pages;
    QWidget *m_emptyPage;
    QWidget *m_scanningPage;
    QWidget *m_noMatchPage;
    QString m_selectedId;
    bool m_expectsScan = false;
};

} // namespace zorel::ui::library
