#pragma once

#include <QWidget>

class QFormLayout;

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class CollapsibleSection;
}

namespace zorel::ui::dashboard {

/// The name and the other facts that a finished model carries. Every edit is stored and sent at once.
class ModelIdentityPanel : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the panel.
    ModelIdentityPanel(backend::bridge::BackendController &backend, app::settings::ZorelSettings &settings,
                       QWidget *parent = nullptr);

    bool identityExpanded() const;

private:
    using Setter = void (app::settings::ZorelSettings::*)(const QString &);
    using Getter = const QString &(app::settings::ZorelSettings::*)() const;
    using Signal = void (app::settings::ZorelSettings::*)();
    /// One setting and how it is read, written and watched.
    struct Binding
    {
        Getter value;
        Setter setValue;
        Signal changed;
    };

    QFormLayout *makeForm();
    QWidget *makeLineField(const QString &name, const QString &placeholder, const Binding &binding);
    QWidget *makeTextField(const QString &name, const QString &placeholder, const Binding &binding);
    void store(const Binding &binding, const QString &text);
    void reset();

    backend::bridge::BackendController &m_backend;
    app::settings::ZorelSettings &m_settings;
    kit::CollapsibleSection *m_section;
};

} // namespace zorel::ui::dashboard
