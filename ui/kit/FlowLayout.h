#pragma once

#include "ui/kit/ItemLayout.h"

#include <vector>

namespace zorel::ui::kit {

/// Items one after the other at the width they like, wrapped into lines like words; in the layout direction.
/// Items stand in the middle of their line's height. An item wider than the whole width is cut to it.
class FlowLayout : public ItemLayout
{
public:
    explicit FlowLayout(QWidget *parent = nullptr);

    /// Between items of a line and between lines; 8 and 8 unless set.
    void setGaps(int horizontal, int vertical);

    QSize sizeHint() const override;

private:
    int arrange(const QRect &area, Pass pass) const override;
    void placeLine(const QRect &area, int top, int height, const std::vector<QLayoutItem *> &line) const;
    static QSize sizeIn(const QLayoutItem *item, int room);

    int m_horizontalGap;
    int m_verticalGap;
};

} // namespace zorel::ui::kit
