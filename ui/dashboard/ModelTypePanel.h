#pragma once

#include "app/settings/ModelFamily.h"
#include "app/settings/TrainingCapability.h"

#include <QWidget>

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class ChoicePicker;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

/// What is to be built, and how it is trained.
class ModelTypePanel : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the panel.
    ModelTypePanel(backend::bridge::BackendController &backend, app::settings::ZorelSettings &settings,
                   QWidget *parent = nullptr);

    // What a choice of the user does. The profile is sent after every choice, even when nothing changed.
    void chooseFamily(app::settings::ModelFamily family);
    void chooseCapability(app::settings::TrainingCapability capability);

private:
    void followFamily();
    void followCapability();

    backend::bridge::BackendController &m_backend;
    app::settings::ZorelSettings &m_settings;
    kit::ChoicePicker *m_families;
    QWidget *m_hint;
    kit::TextLabel *m_hintText;
    kit::ChoicePicker *m_capabilities;
};

} // namespace zorel::ui::dashboard
