#pragma once

#include "ui/kit/Colors.h"
#include "ui/kit/Typography.h"

#include <QWidget>

namespace zorel::ui::kit {

/// One line of text, cut where there is no room; the tooltip and the accessible name hold the full text. Line
/// breaks and other controls are shown as pictures of themselves, so that a file's name cannot pretend to be
/// another.
class ElidedLabel : public QWidget
{
    Q_OBJECT

public:
    explicit ElidedLabel(Qt::TextElideMode mode = Qt::ElideMiddle, QWidget *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);
    void setColorRole(ColorRole role);
    /// Body unless set.
    void setTextStyle(TextRole role, Weight weight = Weight::Regular, FontKind kind = FontKind::Proportional);
    /// What is drawn at the present width.
    QString shownText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void measure();

    QString m_text;
    QString m_line;
    int m_lineWidth = 0;
    Qt::TextElideMode m_mode;
    ColorRole m_colorRole = ColorRole::Text;
};

} // namespace zorel::ui::kit
