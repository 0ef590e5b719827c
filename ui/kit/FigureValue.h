#pragma once

#include <QString>
#include <QWidget>

namespace zorel::ui::kit {

/// The number of a figure: one line of tabular digits, cut at its end where there is no room.
class FigureValue : public QWidget
{
    Q_OBJECT

public:
    /// Never narrower than `sample`.
    explicit FigureValue(QString sample = {}, QWidget *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void makeRoom();

    QString m_sample;
    QString m_text;
    /// What the widest text so far took; never shrinks, so that the neighbours stay where they are.
    int m_widest = 0;
};

} // namespace zorel::ui::kit
