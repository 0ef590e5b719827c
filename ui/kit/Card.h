#pragma once

#include "ui/kit/Colors.h"

#include <QString>
#include <QWidget>

#include <optional>

class QHBoxLayout;
class QVBoxLayout;

namespace zorel::ui::kit {

class SymbolLabel;
class TextLabel;

/// A rounded panel with a heading, a group of its title's name for assistive technology. Without a title and
/// a symbol it has no heading.
class Card : public QWidget
{
    Q_OBJECT

public:
    explicit Card(const QString &title, const QString &symbol = {}, QWidget *parent = nullptr);

    void setTitle(const QString &title);
    /// Surface, edge and symbol in the tone of a text role: for what the user has to deal with.
    void setTone(ColorRole tone);
    QVBoxLayout *content() { return m_content; }
    /// At the trailing end of the heading.
    void addHeaderWidget(QWidget *widget);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *m_header;
    QHBoxLayout *m_headerLayout;
    SymbolLabel *m_symbol = nullptr;
    TextLabel *m_title;
    std::optional<ColorRole> m_tone;
    QVBoxLayout *m_content;
};

} // namespace zorel::ui::kit
