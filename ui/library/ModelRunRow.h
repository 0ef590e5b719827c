#pragma once

#include <QStyledItemDelegate>

namespace zorel::library {
struct ArchivedModelRecord;
}

namespace zorel::ui::library {

/// Draws the rows of a RunListModel: a group's name, or a run with its version, final loss, date and, for the
/// comparison baseline, a badge.
class ModelRunRow : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void paintGroup(QPainter &painter, const QStyleOptionViewItem &option, const QString &name) const;
    void paintRun(QPainter &painter, const QStyleOptionViewItem &option,
                  const zorel::library::ArchivedModelRecord &run, bool isBaseline) const;
};

} // namespace zorel::ui::library
