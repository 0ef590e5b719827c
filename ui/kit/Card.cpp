#include "ui/kit/Card.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QBoxLayout>
#include <QPainter>

namespace zorel::ui::kit {

namespace {

constexpr double toneBorderAmount = 0.45;

} // namespace

Card::Card(const QString &title, const QString &symbol, QWidget *parent)
    : QWidget(parent)
    , m_header(new QWidget(this))
    , m_headerLayout(new QHBoxLayout(m_header))
    , m_title(new TextLabel(title, TextRole::Heading, Weight::Semibold))
    , m_content(new QVBoxLayout)
{
    setAccessibleRole(this, QAccessible::Grouping);
    setSpokenName(this, title);
    m_headerLayout->setContentsMargins(0, 0, 0, 0);
    m_headerLayout->setSpacing(spacing::one);
    if (!symbol.isEmpty()) {
        m_symbol = new SymbolLabel(symbol, 18, ColorRole::Accent);
        m_headerLayout->addWidget(m_symbol);
    }
    m_headerLayout->addWidget(m_title, 1);
    m_header->setVisible(!title.isEmpty() || !symbol.isEmpty());

    m_content->setContentsMargins(0, 0, 0, 0);
    m_content->setSpacing(spacing::one);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::two, spacing::two, spacing::two, spacing::two);
    layout->setSpacing(spacing::one + spacing::half);
    layout->addWidget(m_header);
    layout->addLayout(m_content, 1);
}

void Card::setTitle(const QString &title)
{
    m_title->setText(title);
    setSpokenName(this, title);
    m_header->setVisible(!title.isEmpty() || m_symbol || m_headerLayout->count() > 1);
}

void Card::setTone(ColorRole tone)
{
    m_tone = tone;
    if (m_symbol) {
        m_symbol->setColorRole(tone);
    }
    update();
}

void Card::addHeaderWidget(QWidget *widget)
{
    m_headerLayout->addWidget(widget);
    m_header->show();
}

void Card::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor card = color(ColorRole::CardBackground, palette());
    if (m_tone) {
        paintPanel(painter, rect(), cornerRadius, tint(*m_tone, palette()),
                   mixed(card, color(*m_tone, palette()), toneBorderAmount));
    } else {
        paintPanel(painter, rect(), cornerRadius, card, color(ColorRole::CardBorder, palette()));
    }
}

} // namespace zorel::ui::kit
