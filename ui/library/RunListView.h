#pragma once

#include <QListView>

namespace zorel::ui::library {

/// A list in which nothing gets chosen just because the focus arrives, and in which every key that moves
/// about passes over the rows that are not enabled.
class RunListView : public QListView
{
    Q_OBJECT

public:
    using QListView::QListView;

protected:
    void focusInEvent(QFocusEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
};

} // namespace zorel::ui::library
