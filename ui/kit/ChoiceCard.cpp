#include "ui/kit/ChoiceCard.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/ChoicePicker.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QBoxLayout>
#include <QPainter>

namespace zorel::ui::kit {

ChoiceCard::ChoiceCard(const Choice &choice, QWidget *parent)
    : QRadioButton(parent)
{
    setAttribute(Qt::WA_Hover);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred, QSizePolicy::RadioButton);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    // Pressing tells the picker; a stock radio button can only be toggled, which tells nobody.
    setAccessibleRole(this, QAccessible::RadioButton);
    setSpokenName(this, choice.title);
    setAccessibleDescription(choice.summary);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 10, 12, 10);
    layout->setSpacing(10);
    if (!choice.symbol.isEmpty()) {
        auto *symbol = new SymbolLabel(choice.symbol, 22, ColorRole::Accent);
        symbol->setAttribute(Qt::WA_TransparentForMouseEvents);
        layout->addWidget(symbol, 0, Qt::AlignTop);
    }
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    for (TextLabel *label :
         {new TextLabel(choice.title, TextRole::Body, Weight::Semibold),
          new TextLabel(choice.summary, TextRole::Caption, Weight::Regular, ColorRole::Secondary)}) {
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        if (label->text().isEmpty()) {
            label->hide();
        }
        texts->addWidget(label);
    }
    texts->addStretch(1);
    layout->addLayout(texts, 1);
}

QSize ChoiceCard::sizeHint() const
{
    return layout()->sizeHint();
}

QSize ChoiceCard::minimumSizeHint() const
{
    return layout()->minimumSize();
}

bool ChoiceCard::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void ChoiceCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isHovered = underMouse() && isEnabled();
    const ColorRole fill = isChecked() ? ColorRole::SelectionBackground
                           : isDown()  ? ColorRole::PressedBackground
                           : isHovered ? ColorRole::HoverBackground
                                       : ColorRole::ControlBackground;
    const ColorRole border = isChecked() ? ColorRole::Accent : ColorRole::ControlBorder;
    paintPanel(painter, rect(), controlCornerRadius, color(fill, palette()), color(border, palette()));
    if (showsFocus(this)) {
        paintFocusRing(painter, rect(), controlCornerRadius, palette());
    }
}

} // namespace zorel::ui::kit
