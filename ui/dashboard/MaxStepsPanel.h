#pragma once

#include <QString>
#include <QWidget>

#include <cstdint>

class QLineEdit;

namespace zorel::backend::bridge {
class BackendController;
}

namespace zorel::ui::kit {
class ElidedLabel;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

/// How many steps the next or the present run takes.
class MaxStepsPanel : public QWidget
{
    Q_OBJECT

public:
    /// `backend` must outlive the panel.
    explicit MaxStepsPanel(backend::bridge::BackendController &backend, QWidget *parent = nullptr);

    /// What is being typed into the field.
    QString stepsText() const;

private:
    enum class Direction : std::int8_t { down = -1, up = 1 };

    QWidget *makeField();
    QWidget *makeStepper();
    QWidget *makeQuickButtons();
    /// Sends what the field holds when that is a number, and says so when it is none.
    void apply();
    void move(Direction direction);
    void followSteps();

    backend::bridge::BackendController &m_backend;
    kit::ElidedLabel *m_current = nullptr;
    QLineEdit *m_field = nullptr;
    kit::TextLabel *m_complaint = nullptr;
    QWidget *m_fewer = nullptr;
    QWidget *m_more = nullptr;
};

} // namespace zorel::ui::dashboard
