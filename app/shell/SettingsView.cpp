#include "app/shell/SettingsView.h"

#include "app/folders/FolderAccessChecker.h"
#include "app/settings/ZorelSettings.h"
#include "app/shell/FolderRow.h"
#include "backend/bridge/BackendController.h"
#include "ui/kit/Accessibility.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ScrollPage.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/TextLabel.h"

#include <QFileDialog>
#include <QKeyEvent>
#include <QTabWidget>
#include <QVBoxLayout>

namespace zorel::app::shell {

namespace kit = ui::kit;
using folders::ConfiguredFolder;

namespace {

constexpr QSize preferredSize(680, 620);

kit::TextLabel *footer(const QString &text)
{
    return new kit::TextLabel(text, kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary);
}

QString changesTakeEffectLater()
{
    return QStringLiteral(
        "Changes take effect on the next training run. An in-progress run keeps writing to its original "
        "location until it finishes.");
}

/// A page of the window: a card, what is said below it, and a button.
QWidget *makePage(kit::Card *card, const std::vector<QWidget *> &below)
{
    auto *page = new kit::ScrollPage;
    QVBoxLayout *column = page->content();
    column->setContentsMargins(kit::spacing::two, kit::spacing::two, kit::spacing::two, kit::spacing::two);
    column->setSpacing(kit::spacing::two);
    column->addWidget(card);
    for (QWidget *widget : below) {
        column->addWidget(widget, 0,
                          qobject_cast<kit::ActionButton *>(widget) ? Qt::AlignLeading : Qt::Alignment());
    }
    column->addStretch(1);
    return page;
}

} // namespace

SettingsView::SettingsView(settings::ZorelSettings &settings, backend::bridge::BackendController &backend,
                           folders::FolderAccessChecker &access, Reveal reveal, QWidget *about,
                           QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_settings(settings)
    , m_backend(backend)
    , m_access(access)
    , m_reveal(std::move(reveal))
{
    setWindowTitle(QStringLiteral("Settings"));
    kit::setAccessibleRole(this, QAccessible::Window);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(kit::spacing::one, kit::spacing::one, kit::spacing::one, kit::spacing::one);
    auto *tabs = new QTabWidget;
    tabs->setDocumentMode(true);
    addTab(*tabs, makeLibraryTab(), QStringLiteral("tray.full.fill"), QStringLiteral("Library"));
    addTab(*tabs, makeAdvancedTab(), QStringLiteral("wrench.and.screwdriver"), QStringLiteral("Advanced"));
    addTab(*tabs, about, QStringLiteral("info.circle"), QStringLiteral("About"));
    column->addWidget(tabs);
    resize(preferredSize);
}

void SettingsView::addTab(QTabWidget &tabs, QWidget *page, const QString &symbol, const QString &title)
{
    tabs.addTab(page, kit::symbolIcon(symbol), title);
}

QWidget *SettingsView::makeLibraryTab()
{
    auto *card = new kit::Card(QStringLiteral("Folders"));
    card->content()->setSpacing(kit::spacing::three);
    card->content()->addWidget(makeRow(ConfiguredFolder::trainingData));
    card->content()->addWidget(makeRow(ConfiguredFolder::finishedModels));
    auto *reset = new kit::ActionButton(QString(), QStringLiteral("Reset Folders to Defaults"));
    connect(reset, &kit::ActionButton::clicked, this, &SettingsView::resetFolders);
    return makePage(card,
                    {footer(QStringLiteral(
                         "Training Data holds text corpora or image folders depending on the model type "
                         "you selected. Finished models is where completed runs are saved.")),
                     footer(changesTakeEffectLater()), reset});
}

QWidget *SettingsView::makeAdvancedTab()
{
    auto *card = new kit::Card(QStringLiteral("Working Directory"));
    card->content()->addWidget(makeRow(ConfiguredFolder::modelRoot));
    card->content()->addWidget(footer(QStringLiteral("Default: ~/Library/Application Support/Zorel/Model")));
    auto *reset = new kit::ActionButton(QString(), QStringLiteral("Reset Working Directory"));
    connect(reset, &kit::ActionButton::clicked, this, &SettingsView::resetWorkingDirectory);
    return makePage(card, {footer(changesTakeEffectLater()), reset});
}

FolderRow *SettingsView::makeRow(ConfiguredFolder folder)
{
    auto *row = new FolderRow(folder, m_settings, m_access);
    connect(row, &FolderRow::chooseRequested, this, [this, folder] { chooseFolder(folder); });
    connect(row, &FolderRow::revealRequested, this,
            [this, folder] { m_reveal(m_settings.expanded(folders::path(m_settings, folder))); });
    connect(row, &FolderRow::privacySettingsRequested, this,
            [this, folder] { m_access.openPrivacySettings(folder); });
    connect(row, &FolderRow::recheckRequested, this, [this, folder] { m_access.recheck(folder); });
    return row;
}

void SettingsView::chooseFolder(ConfiguredFolder folder)
{
    delete m_chooser;
    m_chooser = new QFileDialog(this, QString(), m_settings.expanded(folders::path(m_settings, folder)));
    m_chooser->setAttribute(Qt::WA_DeleteOnClose);
    m_chooser->setFileMode(QFileDialog::Directory);
    m_chooser->setOption(QFileDialog::ShowDirsOnly);
    m_chooser->setLabelText(QFileDialog::Accept, QStringLiteral("Choose"));
    connect(m_chooser, &QFileDialog::fileSelected, this,
            [this, folder](const QString &path) { takeFolder(folder, path); });
    m_chooser->open();
}

QFileDialog *SettingsView::folderChooser() const
{
    return m_chooser;
}

void SettingsView::takeFolder(ConfiguredFolder folder, const QString &path)
{
    if (path.isEmpty()) {
        return;
    }
    folders::setPath(m_settings, folder, path);
    m_settings.ensureFoldersExist();
    m_backend.sendPaths();
    m_access.recheck(folder);
}

void SettingsView::resetFolders()
{
    for (const auto folder : {ConfiguredFolder::trainingData, ConfiguredFolder::finishedModels}) {
        folders::setPath(m_settings, folder, folders::defaultPath(m_settings, folder));
    }
    m_settings.ensureFoldersExist();
    m_backend.sendPaths();
    m_access.refresh();
}

void SettingsView::resetWorkingDirectory()
{
    folders::setPath(m_settings, ConfiguredFolder::modelRoot,
                     folders::defaultPath(m_settings, ConfiguredFolder::modelRoot));
    m_settings.ensureFoldersExist();
    m_backend.sendPaths();
    m_access.refresh();
}

void SettingsView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace zorel::app::shell
