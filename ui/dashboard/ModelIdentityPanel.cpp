#include "ui/dashboard/ModelIdentityPanel.h"

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/CollapsibleSection.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace zorel::ui::dashboard {

using app::settings::ZorelSettings;

ModelIdentityPanel::ModelIdentityPanel(backend::bridge::BackendController &backend, ZorelSettings &settings,
                                       QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_settings(settings)
    , m_section(new kit::CollapsibleSection(QStringLiteral("Model Identity"), QStringLiteral("tag.fill")))
{
    m_section->content()->addWidget(new kit::TextLabel(
        QStringLiteral(
            "Like an Apple Info.plist for your custom model — these values are baked into the archived "
            "model's ModelInfo.json and the auto-generated README. Editable any time before the run "
            "finishes."),
        kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary));
    m_section->content()->addLayout(makeForm());

    auto *reset =
        new kit::ActionButton(QStringLiteral("arrow.counterclockwise"), QStringLiteral("Reset Identity"));
    connect(reset, &QPushButton::clicked, this, &ModelIdentityPanel::reset);
    m_section->content()->addWidget(reset, 0, Qt::AlignLeft);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_section);
}

QFormLayout *ModelIdentityPanel::makeForm()
{
    auto *form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->setHorizontalSpacing(kit::spacing::two);
    form->setVerticalSpacing(kit::spacing::one);
    const auto addField = [form](const QString &name, QWidget *field) {
        auto *label = new QLabel(name);
        label->setBuddy(field);
        form->addRow(label, field);
        return label;
    };
    const auto addLine = [&](const QString &name, const QString &placeholder, const Binding &binding) {
        QWidget *field = makeLineField(name, placeholder, binding);
        // A form leaves the names of high fields at their upper edge.
        addField(name, field)->setMinimumHeight(field->sizeHint().height());
    };
    addLine(QStringLiteral("Name"), QStringLiteral("MyModel"),
            {&ZorelSettings::modelName, &ZorelSettings::setModelName, &ZorelSettings::modelNameChanged});
    addLine(
        QStringLiteral("Version"), QStringLiteral("1.0.0"),
        {&ZorelSettings::modelVersion, &ZorelSettings::setModelVersion, &ZorelSettings::modelVersionChanged});
    addLine(
        QStringLiteral("Author"), QStringLiteral("you@example.com"),
        {&ZorelSettings::modelAuthor, &ZorelSettings::setModelAuthor, &ZorelSettings::modelAuthorChanged});
    addLine(
        QStringLiteral("License"), QStringLiteral("MIT"),
        {&ZorelSettings::modelLicense, &ZorelSettings::setModelLicense, &ZorelSettings::modelLicenseChanged});
    const QString description = QStringLiteral("Description");
    addField(description,
             makeTextField(description, QStringLiteral("A short summary of what this model does."),
                           {&ZorelSettings::modelDescription, &ZorelSettings::setModelDescription,
                            &ZorelSettings::modelDescriptionChanged}));
    return form;
}

bool ModelIdentityPanel::identityExpanded() const
{
    return m_section->expanded();
}

QWidget *ModelIdentityPanel::makeLineField(const QString &name, const QString &placeholder,
                                           const Binding &binding)
{
    auto *field = new QLineEdit((m_settings.*binding.value)());
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(name);
    // Not textEdited, which misses what assistive technology and input by voice write.
    connect(field, &QLineEdit::textChanged, this,
            [this, binding](const QString &text) { store(binding, text); });
    connect(&m_settings, binding.changed, field, [this, binding, field] {
        const QString &value = (m_settings.*binding.value)();
        if (value != field->text()) {
            const QSignalBlocker silence(field);
            field->setText(value);
        }
    });
    return field;
}

QWidget *ModelIdentityPanel::makeTextField(const QString &name, const QString &placeholder,
                                           const Binding &binding)
{
    auto *field = new QPlainTextEdit((m_settings.*binding.value)());
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(name);
    // A field of one line tells its placeholder by itself.
    field->setAccessibleDescription(placeholder);
    field->setTabChangesFocus(true);
    field->setFixedHeight(field->fontMetrics().lineSpacing() * 3 + 2 * kit::spacing::one);
    connect(field, &QPlainTextEdit::textChanged, this, [this, binding, field] {
        // Formatting is a change, too.
        if (const QString text = field->toPlainText(); text != (m_settings.*binding.value)()) {
            store(binding, text);
        }
    });
    connect(&m_settings, binding.changed, field, [this, binding, field] {
        const QString &value = (m_settings.*binding.value)();
        if (value != field->toPlainText()) {
            const QSignalBlocker silence(field);
            field->setPlainText(value);
        }
    });
    return field;
}

void ModelIdentityPanel::store(const Binding &binding, const QString &text)
{
    (m_settings.*binding.setValue)(text);
    m_backend.sendModelIdentity();
}

void ModelIdentityPanel::reset()
{
    m_settings.resetModelIdentity();
    m_backend.sendModelIdentity();
}

} // namespace zorel::ui::dashboard
