#include "ui/kit/CollapsibleSection.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/PlainText.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/Typography.h"

#include <QBoxLayout>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

constexpr int chevronSize = 14;
constexpr int headerSymbolSize = 18;
constexpr int headerInset = spacing::half;

} // namespace

SectionHeader::SectionHeader(const QString &title, const QString &symbol, QWidget *parent)
    : QAbstractButton(parent)
    , m_title(title)
    , m_symbol(symbol)
{
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleRole(this, QAccessible::Button);
    setDisclosure(this, Disclosure::Collapsed);
    setSpokenName(this, title);
    setTextFont(this, TextRole::Heading, Weight::Semibold);
    connect(this, &QAbstractButton::toggled, this, [this](bool isOpen) {
        setDisclosure(this, isOpen ? Disclosure::Expanded : Disclosure::Collapsed);
    });
}

void SectionHeader::setTitle(const QString &title)
{
    m_title = title;
    setSpokenName(this, title);
    updateGeometry();
    update();
}

int SectionHeader::textLeft() const
{
    const int symbolWidth = m_symbol.isEmpty() ? 0 : headerSymbolSize + spacing::one;
    return headerInset + chevronSize + spacing::half + symbolWidth;
}

QSize SectionHeader::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {textLeft() + metrics.horizontalAdvance(m_title) + headerInset + 1,
            std::max(metrics.height(), headerSymbolSize) + 2 * headerInset};
}

QSize SectionHeader::minimumSizeHint() const
{
    return {textLeft() + 6 * QFontMetrics(font()).averageCharWidth(), sizeHint().height()};
}

void SectionHeader::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (isDown() || underMouse()) {
        paintPanel(painter, rect(), controlCornerRadius, color(ColorRole::HoverBackground, palette()));
    }
    const auto placed = [this](int left, int side) {
        return QStyle::visualRect(layoutDirection(), rect(), QRect(left, (height() - side) / 2, side, side))
            .topLeft();
    };
    const QString closed = layoutDirection() == Qt::RightToLeft ? QStringLiteral("chevron.left")
                                                                : QStringLiteral("chevron.right");
    painter.drawPixmap(placed(headerInset, chevronSize),
                       symbolPixmap(isChecked() ? QStringLiteral("chevron.down") : closed, chevronSize,
                                    color(ColorRole::Secondary, palette()), devicePixelRatioF()));
    if (!m_symbol.isEmpty()) {
        painter.drawPixmap(placed(headerInset + chevronSize + spacing::half, headerSymbolSize),
                           symbolPixmap(m_symbol, headerSymbolSize, color(ColorRole::Accent, palette()),
                                        devicePixelRatioF()));
    }
    const QRect textRect = QStyle::visualRect(
        layoutDirection(), rect(), QRect(textLeft(), 0, width() - textLeft() - headerInset + 1, height()));
    painter.setPen(color(ColorRole::Text, palette()));
    paintLine(painter, textRect, QFontMetrics(font()).elidedText(m_title, Qt::ElideRight, textRect.width()),
              this);
    if (showsFocus(this)) {
        paintFocusRing(painter, rect(), controlCornerRadius, palette());
    }
}

void SectionHeader::keyPressEvent(QKeyEvent *event)
{
    // Return presses, as Space does; the arrows open and close.
    const int opening = layoutDirection() == Qt::RightToLeft ? Qt::Key_Left : Qt::Key_Right;
    const int closing = layoutDirection() == Qt::RightToLeft ? Qt::Key_Right : Qt::Key_Left;
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn || (event->key() == opening && !isChecked()) || (event->key() == closing && isChecked())) {
        click();
    } else if (event->key() != opening && event->key() != closing) {
        QAbstractButton::keyPressEvent(event);
    }
}

CollapsibleSection::CollapsibleSection(const QString &title, const QString &symbol, QWidget *parent)
    : QWidget(parent)
    , m_header(new SectionHeader(title, symbol))
    , m_headerLayout(new QHBoxLayout)
    , m_body(new QWidget)
    , m_content(new QVBoxLayout(m_body))
{
    setAccessibleRole(this, QAccessible::Grouping);
    setSpokenName(this, title);
    m_headerLayout->setContentsMargins(0, 0, 0, 0);
    m_headerLayout->setSpacing(spacing::one);
    m_headerLayout->addWidget(m_header, 1);
    m_content->setContentsMargins(headerInset, spacing::one, 0, headerInset);
    m_content->setSpacing(spacing::one);
    auto *layout = new QVBoxLayout(this);
    constexpr int inset = spacing::two - headerInset;
    layout->setContentsMargins(inset, inset, spacing::two, inset);
    layout->setSpacing(0);
    layout->addLayout(m_headerLayout);
    layout->addWidget(m_body, 1);
    m_body->hide();
    connect(m_header, &QAbstractButton::toggled, this, [this](bool isOpen) {
        m_body->setVisible(isOpen);
        Q_EMIT expandedChanged(isOpen);
    });
}

bool CollapsibleSection::expanded() const
{
    return m_header->isChecked();
}

void CollapsibleSection::setExpanded(bool expanded)
{
    m_header->setChecked(expanded);
}

void CollapsibleSection::setTitle(const QString &title)
{
    m_header->setTitle(title);
    setSpokenName(this, title);
}

void CollapsibleSection::addHeaderWidget(QWidget *widget)
{
    m_headerLayout->addWidget(widget);
}

void CollapsibleSection::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintPanel(painter, rect(), cornerRadius, color(ColorRole::CardBackground, palette()),
               color(ColorRole::CardBorder, palette()));
}

} // namespace zorel::ui::kit
