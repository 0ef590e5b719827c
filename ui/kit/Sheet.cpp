#include "ui/kit/Sheet.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ReadingOrder.h"
#include "ui/kit/TextLabel.h"

#include <QBoxLayout>

namespace zorel::ui::kit {

Sheet::Sheet(const QString &title, QWidget *parent)
    : QDialog(parent, Qt::Sheet)
    , m_title(new TextLabel(title, TextRole::Title, Weight::Semibold))
    , m_header(new QHBoxLayout)
    , m_content(new QVBoxLayout)
    , m_buttons(new QHBoxLayout)
{
    setWindowModality(Qt::WindowModal);
    setWindowTitle(title);
    m_header->setSpacing(spacing::one);
    m_header->addWidget(m_title, 1);
    m_content->setSpacing(spacing::one);
    m_buttons->setSpacing(spacing::one);
    m_buttons->addStretch(1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::three, 0, spacing::three);
    for (QBoxLayout *part : {static_cast<QBoxLayout *>(m_header), static_cast<QBoxLayout *>(m_content),
                             static_cast<QBoxLayout *>(m_buttons)}) {
        part->setContentsMargins(spacing::three, 0, spacing::three, 0);
    }
    layout->setSpacing(spacing::two);
    layout->addLayout(m_header);
    layout->addLayout(m_content, 1);
    layout->addLayout(m_buttons);
}

void Sheet::setTitle(const QString &title)
{
    setWindowTitle(title);
    m_title->setText(title);
}

void Sheet::addHeaderWidget(QWidget *widget)
{
    m_header->addWidget(widget);
}

ActionButton *Sheet::addButton(const QString &title, ActionButton::Style style, const QString &symbol)
{
    auto *button = new ActionButton(symbol, title, style);
    button->setDefault(style == ActionButton::Style::Prominent);
    m_buttons->addWidget(button);
    return button;
}

void Sheet::showEvent(QShowEvent *event)
{
    applyReadingOrder(this);
    QDialog::showEvent(event);
}

bool Sheet::focusNextPrevChild(bool next)
{
    applyReadingOrder(this);
    return QDialog::focusNextPrevChild(next);
}

} // namespace zorel::ui::kit
