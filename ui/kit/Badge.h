#pragma once

#include "ui/kit/Colors.h"

#include <QWidget>

namespace zorel::ui::kit {

/// A short fact on a faint surface of its tone: a symbol, a text or both.
class Badge : public QWidget
{
    Q_OBJECT

public:
    Badge(const QString &symbol, const QString &text, ColorRole tone, QWidget *parent = nullptr);

    QString symbol() const { return m_symbol; }
    QString text() const { return m_text; }
    void setBadge(const QString &symbol, const QString &text, ColorRole tone);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    int textLeft() const;

    QString m_symbol;
    QString m_text;
    ColorRole m_tone;
};

} // namespace zorel::ui::kit
