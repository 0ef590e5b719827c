#pragma once

#include <QWidget>

namespace zorel::updater {
class UpdateChecker;
}
namespace zorel::ui::kit {
class ActionButton;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::update {

/// Checks for updates at the press of a button, and says when that was done last and how it went. Main thread
/// only.
class UpdatesBlock : public QWidget
{
    Q_OBJECT

public:
    /// The checker must outlive the block.
    explicit UpdatesBlock(zorel::updater::UpdateChecker &checker, QWidget *parent = nullptr);

private:
    void refresh();

    zorel::updater::UpdateChecker &m_checker;
    kit::ActionButton *m_check;
    kit::TextLabel *m_checking;
    kit::TextLabel *m_lastCheck;
    kit::TextLabel *m_failure;
};

} // namespace zorel::ui::update
