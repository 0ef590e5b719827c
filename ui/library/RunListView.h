#pragma once

#include <QListView>

namespace zorel::ui::library {

/// A list in which nothing gets chosen just because the focus arrives, and whose menu comes at every press of
/// the right button, however soon after the one before.
class RunListView : public QListView
{
    Q_OBJECT

public:
    using QListView::QListView;

protected:
    void focusInEvent(QFocusEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
};

} // namespace zorel::ui::library
