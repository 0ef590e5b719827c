#pragma once

#include <QListView>

namespace zorel::ui::library {

/// A list in which nothing gets chosen just because the focus arrives.
class RunListView : public QListView
{
    Q_OBJECT

public:
    using QListView::QListView;

protected:
    void focusInEvent(QFocusEvent *event) override;
};

} // namespace zorel::ui::library
