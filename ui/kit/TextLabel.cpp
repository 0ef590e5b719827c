#include "ui/kit/TextLabel.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/ContextMenu.h"
#include "ui/kit/Markdown.h"
#include "ui/kit/Painting.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QTextDocumentFragment>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace zorel::ui::kit {

namespace {

/// About as many characters as are pleasant to read in one line.
constexpr int pleasantCharacters = 64;
constexpr int fewestCharacters = 6;

} // namespace

TextLabel::TextLabel(const QString &text, TextRole role, Weight weight, ColorRole colorRole, QWidget *parent)
    : QWidget(parent)
    , m_source(text)
    , m_role(role)
    , m_weight(weight)
    , m_colorRole(colorRole)
{
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAccessibleRole(this, QAccessible::StaticText);
    m_document.setUndoRedoEnabled(false);
    m_document.setDocumentMargin(0);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_document.setDefaultTextOption(option);
    applyAlignment();
    setTextFont(this, role, weight);
    m_document.setDefaultFont(font());
    contentChanged();
}

void TextLabel::setText(const QString &text)
{
    if (m_isMarkdown || m_source != text) {
        m_isMarkdown = false;
        m_source = text;
        contentChanged();
    }
}

void TextLabel::setMarkdown(const QString &markdown)
{
    if (!m_isMarkdown || m_source != markdown) {
        m_isMarkdown = true;
        m_source = markdown;
        contentChanged();
    }
}

void TextLabel::setColorRole(ColorRole role)
{
    if (m_colorRole != role) {
        m_colorRole = role;
        update();
    }
}

void TextLabel::setFontKind(FontKind kind)
{
    setTextFont(this, m_role, m_weight, kind);
}

void TextLabel::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    applyAlignment();
    update();
}

/// At the leading edge of the window's direction, whatever the direction of the text, as fields and buttons
/// are.
void TextLabel::applyAlignment()
{
    QTextOption option = m_document.defaultTextOption();
    option.setAlignment(QStyle::visualAlignment(layoutDirection(), m_alignment & Qt::AlignHorizontal_Mask) |
                        Qt::AlignAbsolute);
    m_document.setDefaultTextOption(option);
}

void TextLabel::setCopyable()
{
    m_isCopyable = true;
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::IBeamCursor);
}

QString TextLabel::selectedText() const
{
    return m_selection.isNull() ? QString() : m_selection.selection().toPlainText();
}

void TextLabel::contentChanged()
{
    m_selection = {};
    if (m_isMarkdown) {
        kit::setMarkdown(m_document, m_source);
        styleMarkdown(m_document, palette());
    } else {
        m_document.setPlainText(m_source);
    }
    setSpokenName(this, text());
    forgetSizes();
    update();
}

void TextLabel::fontChanged()
{
    m_document.setDefaultFont(font());
    if (m_isMarkdown) {
        styleMarkdown(m_document, palette());
    }
    forgetSizes();
}

void TextLabel::forgetSizes()
{
    m_hint.reset();
    m_unwrapped.reset();
    m_heights.clear();
    m_layoutWidth.reset();
    updateGeometry();
}

QSize TextLabel::unwrapped() const
{
    if (!m_unwrapped) {
        m_document.setTextWidth(-1);
        m_layoutWidth.reset();
        m_unwrapped = QSize(static_cast<int>(std::ceil(m_document.idealWidth())), documentHeight());
    }
    return *m_unwrapped;
}

int TextLabel::documentHeight() const
{
    return static_cast<int>(std::ceil(m_document.size().height()));
}

QSize TextLabel::sizeHint() const
{
    if (!m_hint) {
        const int pleasant = QFontMetrics(font()).averageCharWidth() * pleasantCharacters;
        const int width = std::min(unwrapped().width(), pleasant);
        m_hint = QSize(width, heightForWidth(width));
    }
    return *m_hint;
}

QSize TextLabel::minimumSizeHint() const
{
    const QFontMetrics metrics(font());
    return {std::min(sizeHint().width(), metrics.averageCharWidth() * fewestCharacters), metrics.height()};
}

void TextLabel::layOutFor(int width) const
{
    const int usable = std::max(width, 1);
    if (m_layoutWidth != usable) {
        m_document.setTextWidth(usable);
        m_layoutWidth = usable;
    }
}

int TextLabel::heightForWidth(int width) const
{
    // Laying a text out takes far longer than all else of a layout, which asks for several widths in turn.
    constexpr std::size_t mostHeights = 8;
    if (width >= unwrapped().width()) {
        return unwrapped().height();
    }
    const auto known = std::ranges::find(m_heights, width, &QSize::width);
    if (known != m_heights.end()) {
        return known->height();
    }
    layOutFor(width);
    if (m_heights.size() == mostHeights) {
        m_heights.erase(m_heights.begin());
    }
    return m_heights.emplace_back(width, documentHeight()).height();
}

QPointF TextLabel::layOut() const
{
    layOutFor(width());
    const double spare = std::max(height() - m_document.size().height(), 0.0);
    if (m_alignment.testFlag(Qt::AlignTop)) {
        return {0, 0};
    }
    return {0, std::floor(m_alignment.testFlag(Qt::AlignBottom) ? spare : spare / 2)};
}

void TextLabel::paintEvent(QPaintEvent *)
{
    const QPointF start = layOut();
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = palette();
    context.palette.setColor(QPalette::Text, color(m_colorRole, palette()));
    if (m_selection.hasSelection()) {
        QTextCharFormat chosen;
        chosen.setBackground(palette().brush(QPalette::Active, QPalette::Highlight));
        chosen.setForeground(palette().brush(QPalette::Active, QPalette::HighlightedText));
        context.selections.append({m_selection, chosen});
    }
    QPainter painter(this);
    painter.save();
    painter.translate(start);
    m_document.documentLayout()->draw(&painter, context);
    painter.restore();
    if (showsFocus(this)) {
        paintFocusRing(painter, rect(), 2, palette());
    }
}

void TextLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange) {
        fontChanged();
    } else if (event->type() == QEvent::PaletteChange && m_isMarkdown) {
        styleMarkdown(m_document, palette());
        forgetSizes();
        update();
    } else if (event->type() == QEvent::LayoutDirectionChange) {
        applyAlignment();
    }
    QWidget::changeEvent(event);
}

int TextLabel::positionAt(const QPointF &point) const
{
    const QPointF start = layOut();
    return m_document.documentLayout()->hitTest(point - start, Qt::FuzzyHit);
}

void TextLabel::mousePressEvent(QMouseEvent *event)
{
    if (!m_isCopyable || event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    const int position = positionAt(event->position());
    const bool extends = event->modifiers().testFlag(Qt::ShiftModifier) && !m_selection.isNull();
    if (!extends) {
        m_selection = QTextCursor(&m_document);
    }
    m_selection.setPosition(std::max(position, 0),
                            extends ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor);
    update();
}

void TextLabel::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_isCopyable || !event->buttons().testFlag(Qt::LeftButton) || m_selection.isNull()) {
        QWidget::mouseMoveEvent(event);
        return;
    }
    m_selection.setPosition(std::max(positionAt(event->position()), 0), QTextCursor::KeepAnchor);
    update();
}

void TextLabel::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!m_isCopyable || event->button() != Qt::LeftButton) {
        QWidget::mouseDoubleClickEvent(event);
        return;
    }
    m_selection = QTextCursor(&m_document);
    m_selection.setPosition(std::max(positionAt(event->position()), 0));
    m_selection.select(QTextCursor::WordUnderCursor);
    update();
}

void TextLabel::keyPressEvent(QKeyEvent *event)
{
    if (m_isCopyable && event->matches(QKeySequence::Copy)) {
        copySelection();
    } else if (m_isCopyable && event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void TextLabel::focusOutEvent(QFocusEvent *event)
{
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) {
        m_selection = {};
        update();
    }
    QWidget::focusOutEvent(event);
}

void TextLabel::contextMenuEvent(QContextMenuEvent *event)
{
    if (!m_isCopyable) {
        QWidget::contextMenuEvent(event);
        return;
    }
    auto *menu = new ContextMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *copy = menu->addAction(tr("Copy"), this, [this] { copySelection(); });
    copy->setEnabled(m_selection.hasSelection());
    menu->addAction(tr("Select All"), this, [this] { selectAll(); });
    menu->popup(event->globalPos());
}

void TextLabel::copySelection() const
{
    if (m_selection.hasSelection()) {
        QApplication::clipboard()->setText(selectedText());
    }
}

void TextLabel::selectAll()
{
    m_selection = QTextCursor(&m_document);
    m_selection.select(QTextCursor::Document);
    update();
}

} // namespace zorel::ui::kit
