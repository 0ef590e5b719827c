#pragma once

#include <QScrollArea>

namespace zorel::ui::kit {

class TextLabel;

/// A text of any length in a place of limited height: as high as the text is, up to a number of lines, and
/// scrolled beyond.
class BoundedText : public QScrollArea
{
    Q_OBJECT

public:
    /// Takes `text` over.
    BoundedText(TextLabel *text, int maximumLines, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int limit() const;

    TextLabel *m_text;
    int m_maximumLines;
};

} // namespace zorel::ui::kit
