#include "ui/library/BaselineBar.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/Colors.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/TextLabel.h"

#include <QGridLayout>
#include <QPainter>

namespace zorel::ui::library {

BaselineBar::BaselineBar(QWidget *parent)
    : QWidget(parent)
    , m_name(new kit::ElidedLabel)
    , m_hint(new kit::TextLabel(QString(), kit::TextRole::Caption, kit::Weight::Regular,
                                kit::ColorRole::Secondary))
    , m_compare(
          new kit::ActionButton(QString(), QStringLiteral("Compare"), kit::ActionButton::Style::Prominent))
{
    const QString heading = QStringLiteral("Comparing against");
    setAccessibleName(heading);
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(kit::spacing::one, kit::spacing::one, kit::spacing::one, kit::spacing::one);
    grid->setSpacing(kit::spacing::half);
    m_name->setTextStyle(kit::TextRole::Body, kit::Weight::Medium);
    auto *clear = new kit::ActionButton(QString(), QStringLiteral("Clear"));
    grid->addWidget(
        new kit::TextLabel(heading, kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary),
        0, 0, 1, 3);
    grid->addWidget(m_name, 1, 0, 1, 3);
    grid->addWidget(m_hint, 2, 0, 1, 3);
    grid->addWidget(clear, 3, 1);
    grid->addWidget(m_compare, 3, 2);
    grid->setColumnStretch(0, 1);
    connect(clear, &kit::ActionButton::clicked, this, &BaselineBar::clearRequested);
    connect(m_compare, &kit::ActionButton::clicked, this, &BaselineBar::compareRequested);
}

void BaselineBar::setBaselineText(const QString &nameAndVersion)
{
    m_name->setText(nameAndVersion);
}

void BaselineBar::setComparable(const QString &reason)
{
    m_compare->setEnabled(reason.isEmpty());
    m_hint->setText(reason);
    m_hint->setVisible(!reason.isEmpty());
    m_compare->setAccessibleDescription(reason);
}

void BaselineBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    kit::paintPanel(painter, rect(), kit::controlCornerRadius, kit::tint(kit::ColorRole::Accent, palette()));
}

} // namespace zorel::ui::library
