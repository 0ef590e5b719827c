#pragma once

#include <QString>
#include <QWidget>

namespace zorel::ui::kit {

class FigureValue;
class TextLabel;

/// A big number over its small label. The number's digits do not move when it changes, and changing it costs
/// no layout unless it has become wider than ever.
class Figure : public QWidget
{
    Q_OBJECT

public:
    /// There is room for `sample` from the start, so that the neighbours stay where they are.
    explicit Figure(const QString &label, const QString &sample = {}, QWidget *parent = nullptr);

    QString value() const;
    void setValue(const QString &value);
    QString label() const;
    void setLabel(const QString &label);

private:
    void tell();

    FigureValue *m_value;
    TextLabel *m_label;
};

} // namespace zorel::ui::kit
