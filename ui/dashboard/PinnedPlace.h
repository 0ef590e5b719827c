#pragma once

#include <QWidget>

class QScrollArea;

namespace zorel::ui::dashboard {

/// The place of a bar in a scrolling page. The bar stands there while the place is in sight, and near the
/// nearer edge of the view otherwise, so that it can always be seen and reached; what scrolls beneath it
/// fades out before it.
class PinnedPlace : public QWidget
{
    Q_OBJECT

public:
    /// Takes `bar` over into the page's content. The place itself is then put into the content's layout.
    PinnedPlace(QWidget *bar, QScrollArea *page);

    QWidget *bar() { return m_bar; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;

    /// Scrolls by as much as the bar hides of `widget`, which lies in the page.
    void uncover(const QWidget *widget);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// From the place up to the content: when one of them moves, so does the place.
    void watchAncestors();
    void placeBar();
    void placeBackdrop(int viewTop, int viewBottom);

    QWidget *m_bar;
    QScrollArea *m_page;
    QWidget *m_backdrop;
};

} // namespace zorel::ui::dashboard
