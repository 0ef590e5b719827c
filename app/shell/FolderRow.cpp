#include "app/shell/FolderRow.h"

#include "app/folders/FolderAccessChecker.h"
#include "app/settings/ZorelSettings.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Badge.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace zorel::app::shell {

namespace kit = ui::kit;
using folders::ConfiguredFolder;
using folders::FolderAccessChecker;
using settings::ZorelSettings;

namespace {

template <class Layout>
Layout *tight(Layout *layout)
{
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

} // namespace

FolderRow::FolderRow(ConfiguredFolder folder, const ZorelSettings &settings,
                     const FolderAccessChecker &access, QWidget *parent)
    : QWidget(parent)
    , m_folder(folder)
    , m_settings(settings)
    , m_access(access)
    , m_path(new kit::ElidedLabel)
    , m_defaultBadge(new kit::Badge(QString(), QString(), kit::ColorRole::Secondary))
    , m_accessBadge(new kit::Badge(QString(), QString(), kit::ColorRole::Success))
    , m_warning(makeWarning())
{
    setAccessibleName(folders::displayName(folder));
    auto *column = tight(new QVBoxLayout(this));
    column->setSpacing(kit::spacing::one);
    column->addWidget(makeHeading());
    m_path->setTextStyle(kit::TextRole::Caption, kit::Weight::Regular, kit::FontKind::Monospaced);
    column->addWidget(m_path);
    column->addWidget(new kit::TextLabel(folders::helpText(folder), kit::TextRole::Caption,
                                         kit::Weight::Regular, kit::ColorRole::Secondary));
    column->addWidget(makeButtons());
    column->addWidget(m_warning);
    follow();
    refresh();
}

QWidget *FolderRow::makeHeading()
{
    auto *heading = new QWidget;
    auto *row = tight(new QHBoxLayout(heading));
    row->setSpacing(kit::spacing::one);
    row->addWidget(new kit::SymbolLabel(folders::symbolName(m_folder)));
    row->addWidget(
        new kit::TextLabel(folders::displayName(m_folder), kit::TextRole::Body, kit::Weight::Semibold), 1);
    row->addWidget(m_defaultBadge);
    row->addWidget(m_accessBadge);
    return heading;
}

QWidget *FolderRow::makeButtons()
{
    auto *buttons = new QWidget;
    auto *flow = tight(new kit::FlowLayout(buttons));
    auto *choose = new kit::ActionButton(QString(), QStringLiteral("Choose…"));
    auto *reveal = new kit::ActionButton(QString(), QStringLiteral("Reveal in Finder"));
    connect(choose, &kit::ActionButton::clicked, this, &FolderRow::chooseRequested);
    connect(reveal, &kit::ActionButton::clicked, this, &FolderRow::revealRequested);
    const QString name = folders::displayName(m_folder);
    choose->setAccessibleDescription(name);
    reveal->setAccessibleDescription(name);
    flow->addWidget(choose);
    flow->addWidget(reveal);
    return buttons;
}

QWidget *FolderRow::makeWarning()
{
    auto *warning = new QWidget;
    auto *column = tight(new QVBoxLayout(warning));
    column->setSpacing(kit::spacing::one);

    auto *line = new QWidget;
    auto *words = tight(new QHBoxLayout(line));
    words->setSpacing(kit::spacing::half);
    words->addWidget(new kit::SymbolLabel(QStringLiteral("exclamationmark.triangle.fill"), kit::symbolSize,
                                          kit::ColorRole::Warning));
    words->addWidget(new kit::TextLabel(QStringLiteral("macOS is blocking access to this folder."),
                                        kit::TextRole::Caption, kit::Weight::Medium, kit::ColorRole::Warning),
                     1);
    column->addWidget(line);

    auto *buttons = new QWidget;
    auto *flow = tight(new kit::FlowLayout(buttons));
    auto *grant = new kit::ActionButton(QStringLiteral("lock.open.fill"),
                                        QStringLiteral("Grant Access in System Settings"));
    auto *recheck = new kit::ActionButton(QString(), QStringLiteral("Re-check after granting"));
    connect(grant, &kit::ActionButton::clicked, this, &FolderRow::privacySettingsRequested);
    connect(recheck, &kit::ActionButton::clicked, this, &FolderRow::recheckRequested);
    const QString name = folders::displayName(m_folder);
    grant->setAccessibleDescription(name);
    recheck->setAccessibleDescription(name);
    flow->addWidget(grant);
    flow->addWidget(recheck);
    column->addWidget(buttons);
    return warning;
}

void FolderRow::follow()
{
    for (const auto signal :
         {&ZorelSettings::trainingDataPathChanged, &ZorelSettings::finishedModelsPathChanged,
          &ZorelSettings::modelRootPathChanged}) {
        connect(&m_settings, signal, this, &FolderRow::refresh);
    }
    connect(&m_access, &FolderAccessChecker::lastCheckedAtChanged, this, &FolderRow::refresh);
}

void FolderRow::refresh()
{
    m_path->setText(folders::path(m_settings, m_folder));
    m_defaultBadge->setBadge(QString(),
                             folders::isDefault(m_settings, m_folder) ? QStringLiteral("Default")
                                                                      : QStringLiteral("Custom"),
                             kit::ColorRole::Secondary);
    const bool isAllowed = m_access.isAllowed(m_folder);
    if (isAllowed) {
        m_accessBadge->setBadge(QStringLiteral("checkmark.shield.fill"), QStringLiteral("Allowed"),
                                kit::ColorRole::Success);
    } else {
        m_accessBadge->setBadge(QStringLiteral("exclamationmark.shield.fill"), QStringLiteral("Needs access"),
                                kit::ColorRole::Warning);
    }
    m_warning->setVisible(!isAllowed);
}

} // namespace zorel::app::shell
