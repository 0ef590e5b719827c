#include "ui/library/ModelLibraryView.h"

#include "app/settings/ZorelSettings.h"
#include "library/ModelLibraryStore.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ScrollPage.h"
#include "ui/library/BaselineBar.h"
#include "ui/library/ComparisonSheet.h"
#include "ui/library/EmptyPage.h"
#include "ui/library/LibrarySidebar.h"
#include "ui/library/ModelDetailView.h"
#include "ui/library/RunTexts.h"

#include <QLineEdit>
#include <QShowEvent>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace zorel::ui::library {

using zorel::library::ModelLibraryStore;

namespace {

constexpr QSize preferredSize(1040, 720);
constexpr int sidebarWidth = 320;
constexpr int smallestSidebar = 220;

QWidget *makeNothingSelected()
{
    return new EmptyPage(
        QStringLiteral("shippingbox"), QStringLiteral("Select a trained model"),
        QStringLiteral("Pick a finished run from the sidebar to inspect its metrics and neuron pathways."));
}

} // namespace

ModelLibraryView::ModelLibraryView(ModelLibraryStore &store, const app::settings::ZorelSettings &settings,
                                   LibraryActions actions, QWidget *parent)
    : kit::Sheet(QStringLiteral("Trained Models"), parent)
    , m_store(store)
    , m_settings(settings)
    , m_actions(std::move(actions))
    , m_sidebar(new LibrarySidebar(store))
    , m_baselineBar(new BaselineBar)
    , m_pane(new QStackedWidget)
    , m_nothingSelected(makeNothingSelected())
    , m_detail(new ModelDetailView(store, m_actions.reveal))
{
    addHeaderWidget(makeHeaderButtons());

    auto *leading = new QWidget;
    auto *column = new QVBoxLayout(leading);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::one);
    column->addWidget(m_sidebar, 1);
    column->addWidget(m_baselineBar);
    leading->setMinimumWidth(smallestSidebar);

    auto *splitter = new QSplitter(Qt::Horizontal);
    splitter->addWidget(leading);
    splitter->addWidget(makeDetailPane());
    splitter->setChildrenCollapsible(false);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({sidebarWidth, preferredSize.width() - sidebarWidth});
    // The scroll bar of the detail pane stands in the sheet's margin.
    QMargins margins = content()->contentsMargins();
    if (isRightToLeft()) {
        margins.setLeft(kit::spacing::one);
    } else {
        margins.setRight(kit::spacing::one);
    }
    content()->setContentsMargins(margins);
    content()->addWidget(splitter, 1);
    resize(parent ? preferredSize.boundedTo(parent->size()) : preferredSize);

    connect(m_sidebar, &LibrarySidebar::runChosen, this, &ModelLibraryView::select);
    connect(m_sidebar, &LibrarySidebar::baselineChosen, this, &ModelLibraryView::setBaseline);
    connect(m_sidebar, &LibrarySidebar::revealRequested, this,
            [this](const QString &path) { m_actions.reveal(path); });
    connect(m_baselineBar, &BaselineBar::clearRequested, this, [this] { setBaseline({}); });
    connect(m_baselineBar, &BaselineBar::compareRequested, this, &ModelLibraryView::compare);
    connect(&m_store, &ModelLibraryStore::modelsChanged, this, &ModelLibraryView::refresh);
    m_sidebar->searchField()->setFocus();
    refresh();
}

QWidget *ModelLibraryView::makeHeaderButtons()
{
    auto *buttons = new QWidget;
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::one);
    auto *refreshButton = new kit::ActionButton(QStringLiteral("arrow.clockwise"), QStringLiteral("Refresh"));
    auto *done =
        new kit::ActionButton(QString(), QStringLiteral("Done"), kit::ActionButton::Style::Prominent);
    refreshButton->setShortcut(QKeySequence::Refresh);
    connect(refreshButton, &kit::ActionButton::clicked, this, &ModelLibraryView::rescan);
    connect(done, &kit::ActionButton::clicked, this, &ModelLibraryView::accept);
    row->addWidget(refreshButton);
    row->addWidget(done);
    return buttons;
}

QWidget *ModelLibraryView::makeDetailPane()
{
    auto *page = new kit::ScrollPage;
    // In line with the search field and the buttons above.
    page->content()->setContentsMargins(0, 0, 0, kit::spacing::two);
    page->content()->addWidget(m_detail);
    m_detailPage = page;
    // As high as the sidebar's own message, which the search field pushes down.
    m_nothingSelected->setContentsMargins(
        0, m_sidebar->searchField()->sizeHint().height() + kit::spacing::one, 0, 0);
    m_pane->addWidget(m_nothingSelected);
    m_pane->addWidget(m_detailPage);
    return m_pane;
}

ModelDetailView *ModelLibraryView::detail() const
{
    return m_pane->currentWidget() == m_detailPage ? m_detail : nullptr;
}

ComparisonSheet *ModelLibraryView::comparison() const
{
    return m_comparison;
}

void ModelLibraryView::showEvent(QShowEvent *event)
{
    kit::Sheet::showEvent(event);
    if (!event->spontaneous()) {
        m_scansWhenSeen = true;
        m_sidebar->expectScan();
    }
}

// A large library takes a moment to scan: the window is not to wait for it.
void ModelLibraryView::paintEvent(QPaintEvent *event)
{
    kit::Sheet::paintEvent(event);
    if (std::exchange(m_scansWhenSeen, false)) {
        QMetaObject::invokeMethod(this, &ModelLibraryView::rescan, Qt::QueuedConnection);
    }
}

void ModelLibraryView::rescan()
{
    m_store.scan(m_settings.expanded(m_settings.finishedModelsPath()));
}

void ModelLibraryView::select(const QString &id)
{
    m_selectedId = id;
    refresh();
}

void ModelLibraryView::setBaseline(const QString &id)
{
    m_baselineId = id;
    refresh();
}

// A chosen or marked run that is gone counts as none; it is back when a later scan finds it again.
void ModelLibraryView::refresh()
{
    const auto *selected = m_store.modelWithId(m_selectedId);
    const auto *baseline = m_store.modelWithId(m_baselineId);
    if (selected) {
        m_detail->setModel(*selected);
    } else {
        m_detail->clear();
    }
    m_pane->setCurrentWidget(selected ? m_detailPage : m_nothingSelected);

    m_sidebar->setBaseline(baseline ? baseline->id : QString());
    m_baselineBar->setVisible(baseline != nullptr);
    if (baseline) {
        m_baselineBar->setBaselineText(nameAndVersion(*baseline));
        m_baselineBar->setComparable(!selected ? QStringLiteral("Select a run to compare with the baseline.")
                                     : selected == baseline
                                         ? QStringLiteral("Select a run other than the baseline.")
                                         : QString());
    }
}

void ModelLibraryView::compare()
{
    const auto *baseline = m_store.modelWithId(m_baselineId);
    const auto *candidate = m_store.modelWithId(m_selectedId);
    if (!baseline || !candidate || baseline == candidate) {
        return;
    }
    m_comparison = new ComparisonSheet(m_store, {*baseline, *candidate}, this);
    m_comparison->setAttribute(Qt::WA_DeleteOnClose);
    m_comparison->open();
}

} // namespace zorel::ui::library
