#pragma once

#include "ui/kit/Colors.h"

#include <QString>
#include <QWidget>

namespace zorel::ui::kit {

/// A symbol that follows the palette. Decoration for assistive technology, unless it is given an accessible
/// name.
class SymbolLabel : public QWidget
{
    Q_OBJECT

public:
    explicit SymbolLabel(const QString &name, qreal points = 16, ColorRole role = ColorRole::Secondary,
                         QWidget *parent = nullptr);

    QString symbol() const { return m_name; }
    void setSymbol(const QString &name);
    void setColorRole(ColorRole role);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_name;
    qreal m_points;
    ColorRole m_role;
};

} // namespace zorel::ui::kit
