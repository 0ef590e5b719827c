#include "ui/kit/FigureValue.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Colors.h"
#include "ui/kit/PlainText.h"
#include "ui/kit/Typography.h"

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace zorel::ui::kit {

FigureValue::FigureValue(QString sample, QWidget *parent)
    : QWidget(parent)
    , m_sample(std::move(sample))
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleRole(this, QAccessible::StaticText);
    setTextFont(this, TextRole::Title, Weight::Semibold, FontKind::Tabular);
    makeRoom();
}

void FigureValue::setText(const QString &text)
{
    if (m_text == text) {
        return;
    }
    m_text = text;
    setSpokenName(this, text);
    makeRoom();
    update();
}

void FigureValue::makeRoom()
{
    const QFontMetrics metrics(font());
    const int needed =
        std::max(metrics.horizontalAdvance(singleLine(m_text)), metrics.horizontalAdvance(m_sample)) + 1;
    if (needed > m_widest) {
        m_widest = needed;
        updateGeometry();
    }
}

QSize FigureValue::sizeHint() const
{
    return {m_widest, QFontMetrics(font()).height()};
}

QSize FigureValue::minimumSizeHint() const
{
    const QFontMetrics metrics(font());
    return {std::min(m_widest, 4 * metrics.averageCharWidth()), metrics.height()};
}

void FigureValue::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(color(ColorRole::Text, palette()));
    paintLine(painter, rect(), QFontMetrics(font()).elidedText(singleLine(m_text), Qt::ElideRight, width()),
              this);
}

void FigureValue::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange) {
        m_widest = 0;
        makeRoom();
    }
    QWidget::changeEvent(event);
}

} // namespace zorel::ui::kit
