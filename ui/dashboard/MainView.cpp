#include "ui/dashboard/MainView.h"

#include "ui/dashboard/ActivityLogPanel.h"
#include "ui/dashboard/ArchiveToast.h"
#include "ui/dashboard/FolderAccessBanner.h"
#include "ui/dashboard/LibraryPanel.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/dashboard/LossChartPanel.h"
#include "ui/dashboard/MaxStepsPanel.h"
#include "ui/dashboard/ModelIdentityPanel.h"
#include "ui/dashboard/ModelTypePanel.h"
#include "ui/dashboard/PinnedPlace.h"
#include "ui/dashboard/ProgressPanel.h"
#include "ui/dashboard/RunControls.h"
#include "ui/dashboard/SessionPanel.h"
#include "ui/dashboard/StatusHeader.h"
#include "ui/kit/CollapsibleSection.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ResponsiveColumns.h"
#include "ui/kit/ScrollPage.h"
#include "ui/neurons/NeuronVisualizationView.h"

#include <QApplication>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

namespace zorel::ui::dashboard {

MainView::MainView(const Model &model, const Actions &actions, QWidget *parent)
    : QWidget(parent)
    , m_updates(new LiveUpdates(model.backend, this))
    , m_header(new StatusHeader(model.backend, *m_updates))
    , m_page(new kit::ScrollPage)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(m_page, 1);

    // The header has brought some room of its own.
    QMargins margins = m_page->content()->contentsMargins();
    margins.setTop(kit::spacing::one);
    m_page->content()->setContentsMargins(margins);
    // Added in the order of reading, which becomes that of the Tab key.
    m_page->content()->addWidget(new FolderAccessBanner(model.access, m_page->widget()));
    auto *columns = new kit::ResponsiveColumns;
    columns->setStretch(5, 7);
    m_page->content()->addWidget(columns);
    fillConfiguration(model, *columns->leading());
    fillProgress(model, *columns->trailing());
    m_page->content()->addWidget(new LibraryPanel(model.backend, model.settings, actions));
    m_log = new ActivityLogPanel(model.backend, model.defaults, *m_updates);
    m_page->content()->addWidget(m_log);
    m_page->content()->addStretch(1);
    auto *toast = new ArchiveToast(model.backend, actions, this);
    toast->keepClearOf(m_controlsPlace->bar());

    m_header->setLogExpanded(m_log->logExpanded());
    connect(m_log, &ActivityLogPanel::logExpandedChanged, m_header, &StatusHeader::setLogExpanded);
    connect(m_page->verticalScrollBar(), &QScrollBar::valueChanged, m_header,
            [this](int top) { m_header->setSeparated(top > 0); });
    connect(m_header, &StatusHeader::logToggleRequested, this, &MainView::toggleLog);
    for (kit::CollapsibleSection *section : m_page->widget()->findChildren<kit::CollapsibleSection *>()) {
        connect(section, &kit::CollapsibleSection::expandedChanged, this, [this, section](bool isExpanded) {
            if (isExpanded) {
                showOpened(section);
            }
        });
    }
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *focused) {
        if (focused != nullptr && m_page->widget()->isAncestorOf(focused)) {
            bringIntoSight(m_page->placeOf(focused));
        }
    });
}

MainView::~MainView()
{
    // Taking the panels down moves the focus, when this is no dashboard any more.
    disconnect(qApp, nullptr, this, nullptr);
}

QSize MainView::minimumSizeHint() const
{
    return {640, 480};
}

QSize MainView::sizeHint() const
{
    // Both columns are seen whole.
    return {1200, 912};
}

void MainView::fillConfiguration(const Model &model, QVBoxLayout &column)
{
    column.addWidget(new ModelTypePanel(model.backend, model.settings));
    column.addWidget(new ModelIdentityPanel(model.backend, model.settings));
    column.addWidget(new MaxStepsPanel(model.backend));
    m_controlsPlace = new PinnedPlace(new RunControls(model.backend, model.settings, *m_updates), m_page);
    column.addWidget(m_controlsPlace);
    column.addStretch(1);
}

void MainView::fillProgress(const Model &model, QVBoxLayout &column)
{
    column.addWidget(new ProgressPanel(model.backend, model.settings, *m_updates));
    column.addWidget(new LossChartPanel(model.backend, model.settings, *m_updates));
    column.addWidget(new SessionPanel(model.backend, *m_updates));
    column.addWidget(new neurons::NeuronVisualizationView(model.backend, model.settings));
    column.addStretch(1);
}

void MainView::bringIntoSight(const QWidget *focused)
{
    // All of it: the scroll area itself is content with the text cursor of a field.
    const QRect area(focused->mapTo(m_page->widget(), QPoint(0, 0)), focused->size());
    if (area.height() < m_page->viewport()->height()) {
        m_page->ensureVisible(area.center().x(), area.center().y(), 0, area.height() / 2 + 1);
    }
    m_controlsPlace->uncover(focused);
}

void MainView::showOpened(QWidget *section)
{
    // Once the page has made room for it.
    QTimer::singleShot(0, section, [this, section] {
        m_page->ensureWidgetVisible(section, 0, kit::spacing::two);
        m_controlsPlace->uncover(section);
        // Where there is no room for all of it, it is seen from its heading on.
        m_page->ensureVisible(0, section->mapTo(m_page->widget(), QPoint(0, 0)).y(), 0, 0);
    });
}

void MainView::toggleLog()
{
    m_log->setLogExpanded(!m_log->logExpanded());
}

} // namespace zorel::ui::dashboard
