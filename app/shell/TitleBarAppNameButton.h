#pragma once

#include <QPushButton>

#include <functional>

namespace zorel::app::shell {

/// The application's name in the toolbar. Pressing it runs the action.
class TitleBarAppNameButton : public QPushButton
{
    Q_OBJECT

public:
    TitleBarAppNameButton(const QString &displayName, std::function<void()> action,
                          QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_displayName;
};

} // namespace zorel::app::shell
