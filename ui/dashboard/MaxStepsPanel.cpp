#include "ui/dashboard/MaxStepsPanel.h"

#include "app/presentation/Figures.h"
#include "app/presentation/StepCount.h"
#include "backend/bridge/BackendController.h"
#include "backend/protocol/Commands.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"
#include "ui/kit/Typography.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

namespace zorel::ui::dashboard {

using app::presentation::groupedText;
using backend::bridge::BackendController;

namespace {

QWidget *rowOf(const std::vector<QWidget *> &widgets)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(kit::spacing::one);
    for (QWidget *widget : widgets) {
        layout->addWidget(widget);
    }
    return row;
}

} // namespace

MaxStepsPanel::MaxStepsPanel(BackendController &backend, QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
{
    auto *card = new kit::Card(QStringLiteral("Training round"));
    m_current = new kit::ElidedLabel;
    m_current->setTextStyle(kit::TextRole::Body, kit::Weight::Semibold, kit::FontKind::Tabular);
    auto *unit = new kit::ElidedLabel;
    unit->setText(QStringLiteral("steps"));
    card->addHeaderWidget(rowOf({m_current, unit}));
    card->content()->addWidget(new kit::TextLabel(
        QStringLiteral(
            "How many optimizer steps the trainer should run. Editable live — lower it to stop sooner, "
            "raise it to keep going."),
        kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary));
    auto *controls = new kit::FlowLayout;
    controls->addWidget(makeField());
    controls->addWidget(makeStepper());
    controls->addWidget(makeQuickButtons());
    card->content()->addLayout(controls);
    m_complaint = new kit::TextLabel(QStringLiteral("Type a whole number without grouping, such as 5000."),
                                     kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Danger);
    m_complaint->hide();
    card->content()->addWidget(m_complaint);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(card);

    connect(&m_backend, &BackendController::desiredMaxStepsChanged, this, &MaxStepsPanel::followSteps);
    followSteps();
}

QString MaxStepsPanel::stepsText() const
{
    return m_field->text();
}

QWidget *MaxStepsPanel::makeField()
{
    m_field = new QLineEdit;
    m_field->setAccessibleName(QStringLiteral("Training round, steps"));
    kit::setTextFont(m_field, kit::TextRole::Body, kit::Weight::Regular, kit::FontKind::Tabular);
    m_field->setFixedWidth(12 * kit::gridUnit);
    auto *apply = new kit::ActionButton(QString(), QStringLiteral("Apply"));
    m_field->setMinimumHeight(apply->sizeHint().height());
    connect(apply, &QPushButton::clicked, this, &MaxStepsPanel::apply);
    connect(m_field, &QLineEdit::returnPressed, this, &MaxStepsPanel::apply);
    connect(m_field, &QLineEdit::textChanged, this, [this] { m_complaint->hide(); });
    return rowOf({m_field, apply});
}

QWidget *MaxStepsPanel::makeStepper()
{
    const auto makeButton = [this](const QString &symbol, const QString &name, Direction direction) {
        auto *button = new kit::ActionButton(symbol, name);
        button->setDisplay(kit::ActionButton::Display::SymbolOnly);
        button->setAutoRepeat(true);
        connect(button, &QPushButton::clicked, this, [this, direction] { move(direction); });
        return button;
    };
    m_fewer = makeButton(QStringLiteral("minus"), QStringLiteral("Fewer steps"), Direction::down);
    m_more = makeButton(QStringLiteral("plus"), QStringLiteral("More steps"), Direction::up);
    QWidget *stepper = rowOf({m_fewer, m_more});
    stepper->layout()->setSpacing(kit::spacing::half);
    return stepper;
}

QWidget *MaxStepsPanel::makeQuickButtons()
{
    std::vector<QWidget *> buttons;
    for (const std::int64_t steps : app::presentation::quickStepCounts) {
        auto *button = new kit::ActionButton(QString(), groupedText(steps));
        button->setAccessibleDescription(QStringLiteral("Set %1 steps").arg(groupedText(steps)));
        connect(button, &QPushButton::clicked, this, [this, steps] { m_backend.setMaxSteps(steps); });
        buttons.push_back(button);
    }
    return rowOf(buttons);
}

void MaxStepsPanel::apply()
{
    const auto steps = app::presentation::parseStepCount(stepsText());
    m_complaint->setVisible(!steps && !stepsText().isEmpty());
    if (steps) {
        m_backend.setMaxSteps(*steps);
        m_field->clear();
    }
}

void MaxStepsPanel::move(Direction direction)
{
    // The training scripts may have reported any number; only one at the ends of 64 bits cannot be moved.
    const std::int64_t current =
        std::clamp(m_backend.desiredMaxSteps(), -2 * backend::protocol::maximumMaxSteps,
                   2 * backend::protocol::maximumMaxSteps);
    const std::int64_t increment = app::presentation::stepperIncrement(current);
    m_backend.setMaxSteps(current + static_cast<std::int64_t>(direction) * increment);
}

void MaxStepsPanel::followSteps()
{
    const std::int64_t steps = m_backend.desiredMaxSteps();
    m_current->setText(groupedText(steps));
    m_field->setPlaceholderText(QString::number(steps));
    m_fewer->setEnabled(steps > backend::protocol::minimumMaxSteps);
    m_more->setEnabled(steps < backend::protocol::maximumMaxSteps);
}

} // namespace zorel::ui::dashboard
