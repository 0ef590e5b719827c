#pragma once

#include <QLayout>

#include <vector>

namespace zorel::ui::kit {

/// Keeps its items in the order in which they came; its height follows from its width. Where they stand is
/// for the class below to say. Without margins unless set.
class ItemLayout : public QLayout
{
public:
    ~ItemLayout() override;

    void addItem(QLayoutItem *item) override;
    int count() const override;
    QLayoutItem *itemAt(int index) const override;
    QLayoutItem *takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect &rect) override;

protected:
    enum class Pass { Measure, Place };

    explicit ItemLayout(QWidget *parent);

    /// The height that the items take in the width of the area, which has no margins any more. Only `Place`
    /// moves them.
    virtual int arrange(const QRect &area, Pass pass) const = 0;

    const std::vector<QLayoutItem *> &items() const { return m_items; }
    static int heightOf(const QLayoutItem *item, int width);
    /// The place is given for a script that runs from the left, and mirrored within the area for the others.
    void place(QLayoutItem *item, const QRect &area, const QRect &place) const;

private:
    std::vector<QLayoutItem *> m_items;
};

} // namespace zorel::ui::kit
