#pragma once

#include <QRgb>
#include <QString>
#include <QWidget>

#include <vector>

namespace zorel::ui::neurons {

/// What the colours of a grid mean: small squares, each with its words.
class ColorLegend : public QWidget
{
    Q_OBJECT

public:
    struct Entry
    {
        QString title;
        QRgb color = 0;
    };

    static constexpr int swatchSize = 12;

    ColorLegend(const std::vector<Entry> &entries, int gap, QWidget *parent = nullptr);
};

} // namespace zorel::ui::neurons
