#pragma once

#include "ui/kit/Colors.h"

#include <QPushButton>

namespace zorel::ui::kit {

/// A button with a symbol, a title or both. Its title is text as it stands: an ampersand is an ampersand.
class ActionButton : public QPushButton
{
    Q_OBJECT

public:
    /// Prominent: the one thing to do here. Plain: without a surface until the pointer is over it. Link: in
    /// the accent colour.
    enum class Style { Prominent, Bordered, Plain, Link };
    /// SymbolOnly: the pointer shows the title, and it stays the accessible name.
    enum class Display { SymbolAndTitle, SymbolOnly };

    explicit ActionButton(const QString &symbol, const QString &title, Style style = Style::Bordered,
                          QWidget *parent = nullptr);

    QString title() const { return m_title; }
    void setTitle(const QString &title);
    QString symbol() const { return m_symbol; }
    void setSymbol(const QString &name);
    void setDisplay(Display display);
    /// The colour of symbol and title; for a prominent button this has no effect.
    void setTone(ColorRole tone);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void titleChanged();
    int padding() const;
    bool showsTitle() const;
    QColor foreground() const;
    void paintSurface(QPainter &painter) const;
    void paintContent(QPainter &painter) const;

    QString m_symbol;
    QString m_title;
    Style m_style;
    Display m_display = Display::SymbolAndTitle;
    ColorRole m_tone;
};

} // namespace zorel::ui::kit
