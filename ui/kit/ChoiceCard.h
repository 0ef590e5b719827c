#pragma once

#include <QRadioButton>

namespace zorel::ui::kit {

struct Choice;

/// One choice of a ChoicePicker.
class ChoiceCard : public QRadioButton
{
    Q_OBJECT

public:
    explicit ChoiceCard(const Choice &choice, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool hitButton(const QPoint &position) const override;
    void paintEvent(QPaintEvent *event) override;
};

} // namespace zorel::ui::kit
