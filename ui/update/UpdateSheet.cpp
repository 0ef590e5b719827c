#include "ui/update/UpdateSheet.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/ScrollPage.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "updater/AvailableUpdate.h"
#include "updater/DownloadsPage.h"
#include "updater/InstallState.h"
#include "updater/UpdateChecker.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace zorel::ui::update {

using kit::ActionButton;
using zorel::updater::InstallState;
using zorel::updater::UpdateChecker;

namespace {

constexpr int sheetWidth = 560;
constexpr int notesHeight = 220;
constexpr int mostFailureHeight = 110; // a tool may have much to say
constexpr qreal headingSymbol = 40;

QString detailsOf(const zorel::updater::AvailableUpdate &update)
{
    QStringList details;
    if (update.minOsVersion && !update.minOsVersion->isEmpty()) {
        details << QStringLiteral("macOS ") + *update.minOsVersion;
    }
    if (update.architecture && !update.architecture->isEmpty()) {
        details << *update.architecture;
    }
    return details.join(QStringLiteral(" · "));
}

std::optional<double> fractionOf(const InstallState &state)
{
    const auto *downloading = state.get<InstallState::Downloading>();
    if (!downloading || !downloading->total || *downloading->total <= 0) {
        return std::nullopt;
    }
    return static_cast<double>(downloading->received) / static_cast<double>(*downloading->total);
}

/// In the order in which they are added.
enum Page { Offer, Progress, Failure };

QHBoxLayout *makeRow(QWidget *page)
{
    auto *row = new QHBoxLayout(page);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::one);
    return row;
}

} // namespace

UpdateSheet::UpdateSheet(UpdateChecker &checker, std::function<void(const QUrl &)> openPage, QWidget *parent)
    : kit::Sheet(QStringLiteral("A new version is available"), parent)
    , m_checker(checker)
    , m_openPage(std::move(openPage))
    , m_sentence(new kit::TextLabel(QString()))
    , m_notes(new kit::TextLabel(QString()))
    , m_details(new kit::TextLabel(QString(), kit::TextRole::Caption, kit::Weight::Regular,
                                   kit::ColorRole::Secondary))
    , m_progressText(new kit::TextLabel(QString()))
    , m_failureText(
          new kit::TextLabel(QString(), kit::TextRole::Body, kit::Weight::Regular, kit::ColorRole::Danger))
    , m_progress(new kit::ProgressMeter(QStringLiteral("Update progress")))
    , m_cancel(new ActionButton(QString(), QStringLiteral("Cancel")))
    , m_failure(new kit::ScrollPage)
    , m_install(new ActionButton(QString(), QStringLiteral("Install Update"), ActionButton::Style::Prominent))
    , m_again(new ActionButton(QString(), QStringLiteral("Try Again"), ActionButton::Style::Prominent))
    , m_pages(new QStackedWidget)
{
    content()->addWidget(makeHeading());
    content()->addWidget(makeNotes(), 1);
    content()->addWidget(m_details);
    m_pages->addWidget(makeOfferPage());
    m_pages->addWidget(makeProgressPage());
    m_pages->addWidget(makeFailurePage());
    m_pages->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    content()->addWidget(m_pages);
    resize(sheetWidth, sizeHint().height());

    connect(&m_checker, &UpdateChecker::presentedUpdateChanged, this, &UpdateSheet::showUpdate);
    connect(&m_checker, &UpdateChecker::installChanged, this, &UpdateSheet::showInstall);
    showUpdate();
    showInstall();
    m_install->setFocus(Qt::OtherFocusReason);
}

QWidget *UpdateSheet::makeHeading()
{
    auto *heading = new QWidget;
    auto *row = makeRow(heading);
    row->setSpacing(kit::spacing::two);
    row->addWidget(
        new kit::SymbolLabel(QStringLiteral("brain.head.profile"), headingSymbol, kit::ColorRole::Accent), 0,
        Qt::AlignTop);
    row->addWidget(m_sentence, 1);
    return heading;
}

QWidget *UpdateSheet::makeNotes()
{
    auto *card = new kit::Card(QStringLiteral("Release notes"));
    auto *page = new kit::ScrollPage;
    page->setMinimumHeight(notesHeight);
    page->content()->setContentsMargins(0, 0, 0, 0);
    page->setLeadingMargin(0);
    page->content()->addWidget(m_notes);
    page->content()->addStretch();
    m_notes->setCopyable();
    card->content()->addWidget(page);
    return card;
}

QWidget *UpdateSheet::makeOfferPage()
{
    auto *page = new QWidget;
    auto *row = makeRow(page);
    auto *skip = new ActionButton(QString(), QStringLiteral("Skip This Version"));
    auto *later = new ActionButton(QString(), QStringLiteral("Remind Me Later"));
    m_install->setDefault(true);
    connect(skip, &ActionButton::clicked, &m_checker, &UpdateChecker::skipThisVersion);
    connect(later, &ActionButton::clicked, &m_checker, &UpdateChecker::remindLater);
    connect(m_install, &ActionButton::clicked, &m_checker, &UpdateChecker::startInstall);
    row->addWidget(skip);
    row->addStretch(1);
    row->addWidget(later);
    row->addWidget(m_install);
    return page;
}

QWidget *UpdateSheet::makeProgressPage()
{
    auto *page = new QWidget;
    auto *row = makeRow(page);
    auto *column = new QVBoxLayout;
    column->setSpacing(kit::spacing::half);
    m_progressText->setFontKind(kit::FontKind::Tabular);
    column->addWidget(m_progressText);
    column->addWidget(m_progress);
    row->addLayout(column, 1);
    row->addWidget(m_cancel, 0, Qt::AlignBottom);
    connect(m_cancel, &ActionButton::clicked, &m_checker, &UpdateChecker::cancelInstall);
    return page;
}

QWidget *UpdateSheet::makeFailurePage()
{
    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::one);
    m_failureText->setCopyable();
    m_failure->content()->setContentsMargins(0, 0, 0, 0);
    m_failure->setLeadingMargin(0);
    m_failure->content()->addWidget(m_failureText);
    m_failure->setFixedHeight(m_failureText->minimumSizeHint().height());
    column->addWidget(m_failure);
    auto *buttons = new QWidget;
    auto *row = makeRow(buttons);
    auto *downloads = new ActionButton(QStringLiteral("arrow.up.right.square"),
                                       QStringLiteral("Open Downloads Page"), ActionButton::Style::Link);
    auto *close = new ActionButton(QString(), QStringLiteral("Close"));
    connect(downloads, &ActionButton::clicked, this, [this] { m_openPage(zorel::updater::downloadsPage()); });
    connect(close, &ActionButton::clicked, &m_checker, &UpdateChecker::remindLater);
    connect(m_again, &ActionButton::clicked, &m_checker, &UpdateChecker::retryInstall);
    row->addWidget(downloads);
    row->addStretch(1);
    row->addWidget(close);
    row->addWidget(m_again);
    column->addWidget(buttons);
    return page;
}

void UpdateSheet::showUpdate()
{
    const auto &update = m_checker.presentedUpdate();
    if (!update) {
        return;
    }
    m_sentence->setText(QStringLiteral("Talvex LLM Trainer ") + update->version +
                        QStringLiteral(" is available — you have ") + m_checker.currentVersion());
    m_notes->setMarkdown(update->notes.isEmpty()
                             ? QStringLiteral("_No release notes were provided for this version._")
                             : update->notes);
    const QString details = detailsOf(*update);
    m_details->setText(details);
    m_details->setVisible(!details.isEmpty());
}

void UpdateSheet::showInstall()
{
    const InstallState &state = m_checker.install();
    if (state.is<InstallState::Failed>()) {
        showFailure(state.text());
    } else if (state.isUnderWay()) {
        m_progressText->setText(state.text());
        m_progress->setFraction(fractionOf(state));
        m_cancel->setEnabled(!state.is<InstallState::Relaunching>());
        showPage(Progress);
    } else {
        showPage(Offer);
    }
}

void UpdateSheet::showFailure(const QString &message)
{
    m_failureText->setText(message);
    m_failure->setFixedHeight(std::min(m_failureText->sizeHint().height(), mostFailureHeight));
    showPage(Failure);
}

void UpdateSheet::showPage(int page)
{
    if (m_pages->currentIndex() != page) {
        m_pages->setCurrentIndex(page);
        ActionButton *const first[] = {m_install, m_cancel, m_again};
        first[page]->setFocus(Qt::OtherFocusReason);
    }
}

void UpdateSheet::closeEvent(QCloseEvent *event)
{
    // Otherwise it is the application that quits, which this sheet must not prevent: the installer waits for
    // that.
    if (event->spontaneous()) {
        kit::Sheet::closeEvent(event);
    }
}

void UpdateSheet::reject()
{
    if (!m_checker.install().isUnderWay()) {
        m_checker.remindLater();
    }
}

} // namespace zorel::ui::update
