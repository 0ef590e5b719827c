#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace zorel::ui::kit {

/// A page as wide as its window that scrolls up and down. What gets the focus is scrolled into view, and
/// the Tab key follows the reading order, also through what was added later. What is higher than the page
/// and in sight in part stays where it is. The scroll bar stands in the margin, so that nothing moves when it
/// comes or goes.
class ScrollPage : public QScrollArea
{
    Q_OBJECT

public:
    explicit ScrollPage(QWidget *parent = nullptr);
    ~ScrollPage() override;

    /// Its margins above and below are the owner's; those at the sides are the page's own.
    QVBoxLayout *content() { return m_content; }

    /// Where something on the page is seen: what scrolls it within the page, or itself.
    QWidget *placeOf(QWidget *widget) const;

    /// Where lines begin, spacing::two unless told.
    void setLeadingMargin(int margin);

    QSize minimumSizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void reveal(QWidget *focused);
    void setSideMargins();

    QVBoxLayout *m_content;
    int m_leadingMargin;
};

} // namespace zorel::ui::kit
