#pragma once

#include <QWidget>

class QBoxLayout;
class QVBoxLayout;

namespace zorel::ui::kit {

/// A leading and a trailing column: side by side where there is room (from 1100 on), otherwise the trailing
/// one below the leading one. What is added to the leading column comes first for the Tab key in both.
class ResponsiveColumns : public QWidget
{
    Q_OBJECT

public:
    explicit ResponsiveColumns(QWidget *parent = nullptr);

    QVBoxLayout *leading() { return m_leading; }
    QVBoxLayout *trailing() { return m_trailing; }

    /// How the width is shared; equally unless set.
    void setStretch(int leading, int trailing);
    bool isWide() const;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void choose(int width);
    void share();

    QBoxLayout *m_columns;
    QVBoxLayout *m_leading;
    QVBoxLayout *m_trailing;
    int m_leadingStretch = 1;
    int m_trailingStretch = 1;
};

} // namespace zorel::ui::kit
