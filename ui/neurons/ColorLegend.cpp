#include "ui/neurons/ColorLegend.h"

#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>
#include <QPainter>

namespace zorel::ui::neurons {

namespace {

constexpr qreal swatchRadius = 2;

class Swatch : public QWidget
{
public:
    explicit Swatch(QRgb color)
        : m_color(QColor::fromRgb(color))
    {
        setFixedSize(ColorLegend::swatchSize, ColorLegend::swatchSize);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_color);
        painter.drawRoundedRect(rect(), swatchRadius, swatchRadius);
    }

private:
    QColor m_color;
};

} // namespace

ColorLegend::ColorLegend(const std::vector<Entry> &entries, int gap, QWidget *parent)
    : QWidget(parent)
{
    auto *items = new kit::FlowLayout(this);
    items->setContentsMargins(0, 0, 0, 0);
    items->setGaps(gap, kit::spacing::half);
    for (const Entry &entry : entries) {
        auto *item = new QWidget(this);
        auto *row = new QHBoxLayout(item);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(kit::spacing::half);
        row->addWidget(new Swatch(entry.color));
        row->addWidget(new kit::TextLabel(entry.title, kit::TextRole::Caption2, kit::Weight::Regular,
                                          kit::ColorRole::Secondary));
        items->addWidget(item);
    }
}

} // namespace zorel::ui::neurons
