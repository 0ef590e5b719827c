#pragma once

#include "ui/kit/ActionButton.h"

namespace zorel::ui::kit {
class SymbolLabel;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

/// The button that starts a run: its title, and under it what a press means at the moment.
class StartButton : public kit::ActionButton
{
    Q_OBJECT

public:
    explicit StartButton(QWidget *parent = nullptr);

    void setLabel(const QString &label);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void followEnabled();

    kit::SymbolLabel *m_symbol;
    kit::TextLabel *m_title;
    kit::TextLabel *m_label;
};

} // namespace zorel::ui::dashboard
