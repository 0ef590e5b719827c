#include "ui/library/LibrarySidebar.h"

#include "library/ModelLibraryStore.h"
#include "ui/kit/ContextMenu.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Symbols.h"
#include "ui/library/EmptyPage.h"
#include "ui/library/ModelRunRow.h"
#include "ui/library/RunListModel.h"
#include "ui/library/RunListView.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace zorel::ui::library {

namespace {

constexpr int runsThatTakeTime = 5000;

bool writesText(const QKeyEvent &event)
{
    const auto modifiers = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    return modifiers == Qt::NoModifier && !event.text().isEmpty() && event.text().at(0).isPrint() &&
           event.key() != Qt::Key_Space;
}

} // namespace

LibrarySidebar::LibrarySidebar(const zorel::library::ModelLibraryStore &store, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_model(new RunListModel(this))
    , m_search(new QLineEdit)
    , m_list(new RunListView)
    , m_pages(new QStackedWidget)
    , m_emptyPage(new EmptyPage(
          QStringLiteral("tray"), QStringLiteral("No trained models yet"),
          QStringLiteral("Complete a training run and it will appear here under Finished models.")))
    , m_scanningPage(new EmptyPage(QString(), QStringLiteral("Scanning library…"), QString()))
    , m_noMatchPage(new EmptyPage(QStringLiteral("magnifyingglass"), QStringLiteral("No matching models"),
                                  QStringLiteral("The search looks at names, versions and folder names.")))
{
    prepareSearch();
    prepareList();
    for (QWidget *page : {static_cast<QWidget *>(m_list), m_emptyPage, m_scanningPage, m_noMatchPage}) {
        m_pages->addWidget(page);
    }
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::one);
    column->addWidget(m_search);
    column->addWidget(m_pages, 1);

    connect(&m_store, &zorel::library::ModelLibraryStore::modelsChanged, this, &LibrarySidebar::fillList);
    connect(&m_store, &zorel::library::ModelLibraryStore::isLoadingChanged, this,
            &LibrarySidebar::followLoading);
    fillList();
    showPage();
}

void LibrarySidebar::prepareSearch()
{
    const QString prompt = QStringLiteral("Search models");
    m_search->setPlaceholderText(prompt);
    m_search->setAccessibleName(prompt);
    m_search->setClearButtonEnabled(true);
    m_search->addAction(kit::symbolIcon(QStringLiteral("magnifyingglass"), kit::ColorRole::Secondary),
                        QLineEdit::LeadingPosition);
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, [this] {
        fillList();
        showPage();
    });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, m_search, [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });
}

void LibrarySidebar::prepareList()
{
    m_list->setModel(m_model);
    m_list->setItemDelegate(new ModelRunRow(m_list));
    m_list->setAccessibleName(QStringLiteral("Trained models"));
    m_list->setMouseTracking(true);
    // The frame's surface shows through, the same beside the scroll bar as below the rows.
    m_list->viewport()->setAutoFillBackground(false);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setVerticalScrollMode(QListView::ScrollPerPixel);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->installEventFilter(this);
    connect(m_list, &QListView::customContextMenuRequested, this, &LibrarySidebar::showMenu);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current) {
                if (const auto *run = m_model->run(current); run && run->id != m_selectedId) {
                    m_selectedId = run->id;
                    Q_EMIT runChosen(m_selectedId);
                }
            });
}

void LibrarySidebar::expectScan()
{
    m_expectsScan = true;
    showPage();
}

// A scan holds up the event loop, so what is to be seen meanwhile is painted before it goes on. One that
// takes no time must not make the list flicker.
void LibrarySidebar::followLoading()
{
    if (m_store.isLoading()) {
        if (m_model->rowCount() == 0 || m_store.models().size() > runsThatTakeTime) {
            m_pages->setCurrentWidget(m_scanningPage);
            repaint();
        }
        return;
    }
    m_expectsScan = false;
    showPage();
}

void LibrarySidebar::fillList()
{
    m_model->setGroups(m_store.filteredGroups(m_search->text()));
    setSelected(m_selectedId);
}

void LibrarySidebar::showPage()
{
    if (m_model->rowCount() > 0) {
        m_pages->setCurrentWidget(m_list);
    } else if (m_expectsScan || m_store.isLoading()) {
        m_pages->setCurrentWidget(m_scanningPage);
    } else {
        m_pages->setCurrentWidget(m_store.models().isEmpty() ? m_emptyPage : m_noMatchPage);
    }
}

void LibrarySidebar::setBaseline(const QString &id)
{
    m_model->setBaseline(id);
}

void LibrarySidebar::setSelected(const QString &id)
{
    m_selectedId = id;
    const QModelIndex index = m_model->indexOf(id);
    if (index.isValid()) {
        m_list->setCurrentIndex(index);
    } else {
        m_list->selectionModel()->clear();
    }
}

void LibrarySidebar::showMenu(const QPoint &position)
{
    const QModelIndex index = m_list->indexAt(position);
    const auto *run = m_model->run(index);
    if (!run) {
        return;
    }
    auto *menu = new kit::ContextMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(QStringLiteral("Set as comparison baseline")), &QAction::triggered, this,
            [this, id = run->id] { Q_EMIT baselineChosen(id); });
    connect(menu->addAction(kit::symbolIcon(QStringLiteral("folder")), QStringLiteral("Reveal in Finder")),
            &QAction::triggered, this, [this, path = run->path] { Q_EMIT revealRequested(path); });
    menu->popup(m_list->viewport()->mapToGlobal(position));
}

bool LibrarySidebar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (watched == m_list && writesText(*key)) {
            m_search->setFocus(Qt::OtherFocusReason);
            m_search->end(false);
            m_search->insert(key->text());
            return true;
        }
        if (watched == m_search &&
            (key->key() == Qt::Key_Down || key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
            m_pages->currentWidget() == m_list) {
            m_list->setFocus(Qt::TabFocusReason);
            if (!m_model->run(m_list->currentIndex())) {
                m_list->setCurrentIndex(m_model->firstRun());
            }
            return true;
        }
    }
    if (watched == m_list && event->type() == QEvent::ContextMenu) {
        // From the keyboard the menu belongs to the current row, wherever the pointer is.
        const auto *menu = static_cast<QContextMenuEvent *>(event);
        if (menu->reason() == QContextMenuEvent::Keyboard && m_list->currentIndex().isValid()) {
            showMenu(m_list->visualRect(m_list->currentIndex()).center());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace zorel::ui::library
