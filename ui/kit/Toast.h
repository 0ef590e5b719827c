#pragma once

#include <QPointer>
#include <QWidget>

class QHBoxLayout;

namespace zorel::ui::kit {

/// A notice over the bottom of a window, in the middle, or above what must stay in reach there. Hidden at
/// first; it never takes the focus.
class Toast : public QWidget
{
    Q_OBJECT

public:
    explicit Toast(QWidget *parentWindow);

    QHBoxLayout *content() { return m_content; }
    /// Never covers `widget`, which lies in the same window, as long as there is room above it.
    void keepClearOf(QWidget *widget);
    /// Has its accessible name read out: the one it was given, else the names of what it shows.
    void showToast();
    void hideToast();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void place();
    void nameItself();

    QHBoxLayout *m_content;
    QString m_ownName;
    QPointer<QWidget> m_kept;
};

} // namespace zorel::ui::kit
