#include "ui/kit/BoundedText.h"

#include "ui/kit/TextLabel.h"

#include <QEvent>

#include <algorithm>

namespace zorel::ui::kit {

BoundedText::BoundedText(TextLabel *text, int maximumLines, QWidget *parent)
    : QScrollArea(parent)
    , m_text(text)
    , m_maximumLines(maximumLines)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setWidget(text);
    // What lies behind the text shows through.
    viewport()->setAutoFillBackground(false);
    text->setAutoFillBackground(false);
    text->installEventFilter(this);
}

QSize BoundedText::sizeHint() const
{
    const QSize hint = m_text->sizeHint();
    return {hint.width(), std::min(hint.height(), limit())};
}

QSize BoundedText::minimumSizeHint() const
{
    return {m_text->minimumSizeHint().width(), m_text->fontMetrics().lineSpacing()};
}

int BoundedText::heightForWidth(int width) const
{
    return std::min(m_text->heightForWidth(width), limit());
}

bool BoundedText::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}

/// The half of a line that is cut shows that there is more.
int BoundedText::limit() const
{
    const int line = m_text->fontMetrics().lineSpacing();
    return m_maximumLines * line + line / 2;
}

} // namespace zorel::ui::kit
