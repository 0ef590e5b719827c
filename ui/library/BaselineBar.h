#pragma once

#include <QWidget>

namespace zorel::ui::kit {
class ActionButton;
class ElidedLabel;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::library {

/// Names the run that others are compared with.
class BaselineBar : public QWidget
{
    Q_OBJECT

public:
    explicit BaselineBar(QWidget *parent = nullptr);

    void setBaselineText(const QString &nameAndVersion);
    /// `reason` says why it is not possible; empty when it is.
    void setComparable(const QString &reason);

Q_SIGNALS:
    void clearRequested();
    void compareRequested();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    kit::ElidedLabel *m_name;
    kit::TextLabel *m_hint;
    kit::ActionButton *m_compare;
};

} // namespace zorel::ui::library
