#pragma once

#include "ui/kit/ItemLayout.h"

namespace zorel::ui::kit {

/// Items of one width side by side in as many columns as fit, each row as high as its highest item.
class TileLayout : public ItemLayout
{
public:
    /// No column gets narrower than this, unless there is only one.
    explicit TileLayout(int narrowestTile, QWidget *parent = nullptr);

    QSize sizeHint() const override;

private:
    int arrange(const QRect &area, Pass pass) const override;
    int columnsFor(int width) const;

    int m_narrowestTile;
};

} // namespace zorel::ui::kit
