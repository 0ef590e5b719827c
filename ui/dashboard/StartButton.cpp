#include "ui/dashboard/StartButton.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QEvent>
#include <QHBoxLayout>

namespace zorel::ui::dashboard {

namespace {

constexpr int symbolPoints = 20;
constexpr int verticalPadding = 6;

} // namespace

StartButton::StartButton(QWidget *parent)
    : kit::ActionButton(QString(), QString(), Style::Prominent, parent)
    , m_symbol(new kit::SymbolLabel(QStringLiteral("play.fill"), symbolPoints))
    , m_title(new kit::TextLabel(QStringLiteral("Start"), kit::TextRole::Body, kit::Weight::Semibold))
    , m_label(new kit::TextLabel(QString(), kit::TextRole::Caption))
{
    kit::setSpokenName(this, m_title->text());
    auto *texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(m_title);
    texts->addWidget(m_label);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(kit::spacing::two, verticalPadding, kit::spacing::two, verticalPadding);
    layout->setSpacing(kit::spacing::one + kit::spacing::half);
    layout->addWidget(m_symbol);
    layout->addLayout(texts, 1);
    for (QWidget *part : findChildren<QWidget *>()) {
        part->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    followEnabled();
}

void StartButton::setLabel(const QString &label)
{
    m_label->setText(label);
    setAccessibleDescription(label);
}

QSize StartButton::sizeHint() const
{
    return layout()->totalSizeHint();
}

QSize StartButton::minimumSizeHint() const
{
    return layout()->totalMinimumSize();
}

void StartButton::changeEvent(QEvent *event)
{
    kit::ActionButton::changeEvent(event);
    if (event->type() == QEvent::EnabledChange) {
        followEnabled();
    }
}

void StartButton::followEnabled()
{
    // Only the surface of a button that can be pressed is of the accent colour.
    const kit::ColorRole role = isEnabled() ? kit::ColorRole::OnAccent : kit::ColorRole::Text;
    m_symbol->setColorRole(role);
    m_title->setColorRole(role);
    m_label->setColorRole(role);
}

} // namespace zorel::ui::dashboard
