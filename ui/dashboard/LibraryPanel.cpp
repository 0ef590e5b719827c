#include "ui/dashboard/LibraryPanel.h"

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Card.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/TextLabel.h"

#include <QVBoxLayout>

#include <utility>

namespace zorel::ui::dashboard {

LibraryPanel::LibraryPanel(backend::bridge::BackendController &backend,
                           const app::settings::ZorelSettings &settings, Actions actions, QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_settings(settings)
    , m_actions(std::move(actions))
{
    auto *card = new kit::Card(QStringLiteral("Library"), QStringLiteral("tray.full.fill"));
    auto *text = new kit::TextLabel(QString());
    text->setMarkdown(QStringLiteral(
        "Your training corpora live in **Training Data**. Every completed run is archived under "
        "**Finished models**. Browse past runs to inspect neuron pathways and compare retrainings."));
    card->content()->addWidget(text);

    card->content()->addLayout(makeBrowseRow());

    auto *buttons = new kit::FlowLayout;
    const auto addButton = [&](const char *symbol, const char *title, std::function<void()> action) {
        auto *button = new kit::ActionButton(QString::fromLatin1(symbol), QString::fromUtf8(title));
        connect(button, &QPushButton::clicked, this, std::move(action));
        buttons->addWidget(button);
    };
    addButton("folder", "Open Training Data",
              [this] { m_actions.reveal(m_settings.expanded(m_settings.trainingDataPath())); });
    addButton("shippingbox.fill", "Open Finished Models in Finder",
              [this] { m_actions.reveal(m_settings.expanded(m_settings.finishedModelsPath())); });
    addButton("house.fill", "Library Root", [this] { m_actions.reveal(m_settings.libraryRoot()); });
    addButton("gearshape.fill", "Open Settings (⌘,)", [this] { m_actions.openSettings(); });
    card->content()->addLayout(buttons);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(card);
}

QLayout *LibraryPanel::makeBrowseRow()
{
    auto *browse =
        new kit::ActionButton(QStringLiteral("brain.head.profile"), QStringLiteral("Browse Trained Models"),
                              kit::ActionButton::Style::Prominent);
    connect(browse, &QPushButton::clicked, this, [this] { m_backend.setShowModelLibrary(true); });
    m_count = new kit::Badge(QString(), QString(), kit::ColorRole::Accent);
    connect(&m_backend, &backend::bridge::BackendController::archivedCountChanged, this,
            &LibraryPanel::showCount);
    showCount();

    auto *row = new kit::FlowLayout;
    row->addWidget(browse);
    row->addWidget(m_count);
    row->addWidget(new kit::TextLabel(QStringLiteral("⌘⇧B · inspect archived runs and compare retrainings"),
                                      kit::TextRole::Caption, kit::Weight::Regular,
                                      kit::ColorRole::Secondary));
    return row;
}

void LibraryPanel::showCount()
{
    m_count->setBadge(QString(), QString::number(m_backend.archivedCount()), kit::ColorRole::Accent);
    m_count->setAccessibleName(QStringLiteral("Archived runs: ") +
                               QString::number(m_backend.archivedCount()));
}

} // namespace zorel::ui::dashboard
