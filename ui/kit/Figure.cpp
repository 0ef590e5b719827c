#include "ui/kit/Figure.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/FigureValue.h"
#include "ui/kit/TextLabel.h"

#include <QBoxLayout>

namespace zorel::ui::kit {

Figure::Figure(const QString &label, const QString &sample, QWidget *parent)
    : QWidget(parent)
    , m_value(new FigureValue(sample))
    , m_label(new TextLabel(label, TextRole::Caption, Weight::Regular, ColorRole::Secondary))
{
    setAccessibleRole(this, QAccessible::Grouping);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_value);
    layout->addWidget(m_label);
    setValue(QStringLiteral("—"));
}

QString Figure::value() const
{
    return m_value->text();
}

void Figure::setValue(const QString &value)
{
    if (m_value->text() != value) {
        m_value->setText(value);
        tell();
    }
}

QString Figure::label() const
{
    return m_label->text();
}

void Figure::setLabel(const QString &label)
{
    if (m_label->text() != label) {
        m_label->setText(label);
        tell();
    }
}

void Figure::tell()
{
    setSpokenName(this, QStringLiteral("%1: %2").arg(label(), value()));
}

} // namespace zorel::ui::kit
