#pragma once

#include "ui/kit/Colors.h"
#include "ui/kit/Typography.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QWidget>

#include <optional>
#include <vector>

namespace zorel::ui::kit {

/// Text that wraps to the width it gets, inside words where it must, so that no text can force a layout
/// wider. Its text is plain, whatever it holds, unless it was set as Markdown.
class TextLabel : public QWidget
{
    Q_OBJECT

public:
    explicit TextLabel(const QString &text, TextRole role = TextRole::Body, Weight weight = Weight::Regular,
                       ColorRole colorRole = ColorRole::Text, QWidget *parent = nullptr);

    /// What is read: of Markdown, the text without its marks.
    QString text() const { return m_document.toPlainText(); }
    void setText(const QString &text);
    /// Without HTML and images; links are shown as their text and lead nowhere.
    void setMarkdown(const QString &markdown);
    void setColorRole(ColorRole role);
    void setFontKind(FontKind kind);
    /// Leading and in the middle of the height unless set.
    void setAlignment(Qt::Alignment alignment);

    /// From now on the text can be selected and copied, with the mouse and with the keyboard.
    void setCopyable();
    QString selectedText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void contentChanged();
    void applyAlignment();
    void fontChanged();
    void copySelection() const;
    void selectAll();
    int positionAt(const QPointF &point) const;
    /// Where the text begins; lays it out for the present width.
    QPointF layOut() const;
    void layOutFor(int width) const;
    QSize unwrapped() const;
    int documentHeight() const;
    void forgetSizes();

    QString m_source;
    bool m_isMarkdown = false;
    TextRole m_role;
    Weight m_weight;
    ColorRole m_colorRole;
    // Laid out anew for each width that is asked for.
    mutable QTextDocument m_document;
    mutable std::optional<QSize> m_hint;
    /// Of the text in as few lines as it has itself.
    mutable std::optional<QSize> m_unwrapped;
    /// What layouts ask for again and again: heights by widths.
    mutable std::vector<QSize> m_heights;
    /// What the document is laid out for; nothing when it must be laid out anew.
    mutable std::optional<int> m_layoutWidth;
    Qt::Alignment m_alignment = Qt::AlignLeading | Qt::AlignVCenter;
    bool m_isCopyable = false;
    QTextCursor m_selection;
};

} // namespace zorel::ui::kit
