#include "ui/library/ModelRunRow.h"

#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/PlainText.h"
#include "ui/kit/Typography.h"
#include "ui/library/RunListModel.h"
#include "ui/library/RunTexts.h"

#include <QPainter>

namespace zorel::ui::library {

namespace {

constexpr int margin = kit::spacing::one;
constexpr int inset = kit::spacing::half; // of a row's surface within the row
constexpr int padding = 6;                // above and below a row's two lines, which belong together
constexpr int badgePadding = 6;

int lineHeight(kit::TextRole role)
{
    return QFontMetrics(kit::textFont(role)).height();
}

const RunListModel &modelOf(const QModelIndex &index)
{
    return *static_cast<const RunListModel *>(index.model());
}

/// Draws the badge at the trailing end of `line` and returns what is left of it.
QRect paintBaselineBadge(QPainter &painter, const QStyleOptionViewItem &option, const QRect &line,
                         bool isSelected)
{
    const QString text = QStringLiteral("baseline");
    painter.setFont(kit::textFont(kit::TextRole::Caption2, kit::Weight::Medium));
    const int width = painter.fontMetrics().horizontalAdvance(text) + 2 * badgePadding;
    const QRect trailing(line.right() - width + 1, line.top(), width, line.height());
    const QRect badge = QStyle::visualRect(option.direction, line, trailing);
    const QColor tone = kit::color(kit::ColorRole::Accent, option.palette);
    const QColor surface = isSelected ? kit::color(kit::ColorRole::CardBackground, option.palette)
                                      : kit::tint(kit::ColorRole::Accent, option.palette);
    kit::paintPanel(painter, badge, kit::controlCornerRadius, surface);
    painter.setPen(tone);
    painter.drawText(badge, Qt::AlignCenter, text);
    return QStyle::visualRect(option.direction, line, line.adjusted(0, 0, -width - margin, 0));
}

} // namespace

void ModelRunRow::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const RunListModel &model = modelOf(index);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setLayoutDirection(option.direction);
    if (const auto *run = model.run(index)) {
        paintRun(*painter, option, *run, index.data(RunListModel::IsBaselineRole).toBool());
    } else {
        paintGroup(*painter, option, model.groupName(index));
    }
    painter->restore();
}

void ModelRunRow::paintGroup(QPainter &painter, const QStyleOptionViewItem &option, const QString &name) const
{
    painter.setFont(kit::textFont(kit::TextRole::Caption, kit::Weight::Semibold));
    // A heading is not enabled, and is to be read all the same.
    QPalette palette = option.palette;
    palette.setCurrentColorGroup(QPalette::Active);
    painter.setPen(kit::color(kit::ColorRole::Secondary, palette));
    const QRect line = option.rect.adjusted(margin + inset, margin, -margin - inset, 0);
    painter.drawText(line, Qt::AlignLeading | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(kit::singleLine(name), Qt::ElideMiddle, line.width()));
}

void ModelRunRow::paintRun(QPainter &painter, const QStyleOptionViewItem &option,
                           const zorel::library::ArchivedModelRecord &run, bool isBaseline) const
{
    const QRect surface = option.rect.adjusted(inset, 1, -inset, -1);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    if (isSelected) {
        kit::paintPanel(painter, surface, kit::controlCornerRadius,
                        kit::color(kit::ColorRole::SelectionBackground, option.palette));
    } else if (option.state.testFlag(QStyle::State_MouseOver)) {
        kit::paintPanel(painter, surface, kit::controlCornerRadius,
                        kit::color(kit::ColorRole::HoverBackground, option.palette));
    }
    if (option.state.testFlag(QStyle::State_HasFocus) &&
        option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        kit::paintFocusRing(painter, surface, kit::controlCornerRadius, option.palette);
    }

    const QRect content = surface.adjusted(margin, padding, -margin, -padding);
    QRect nameLine(content.left(), content.top(), content.width(), lineHeight(kit::TextRole::Body));
    if (isBaseline) {
        nameLine = paintBaselineBadge(painter, option, nameLine, isSelected);
    }
    painter.setFont(kit::textFont(kit::TextRole::Body, kit::Weight::Medium));
    painter.setPen(kit::color(kit::ColorRole::Text, option.palette));
    painter.drawText(nameLine, Qt::AlignLeading | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(kit::singleLine(nameAndVersion(run)), Qt::ElideMiddle,
                                                      nameLine.width()));

    const QRect figures(content.left(), content.bottom() - lineHeight(kit::TextRole::Caption) + 1,
                        content.width(), lineHeight(kit::TextRole::Caption));
    painter.setFont(kit::tabularFont(kit::TextRole::Caption));
    painter.setPen(kit::color(kit::ColorRole::Secondary, option.palette));
    const QString loss = rowLossText(run);
    painter.drawText(figures, Qt::AlignLeading | Qt::AlignVCenter, loss);
    const int used = painter.fontMetrics().horizontalAdvance(loss) + 2 * margin;
    const QRect rest = QStyle::visualRect(option.direction, figures, figures.adjusted(used, 0, 0, 0));
    painter.drawText(rest, Qt::AlignTrailing | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(shortDateText(run), Qt::ElideRight, rest.width()));
}

// Asked for every row of the list at once: nothing here may cost more than a few additions.
QSize ModelRunRow::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const int line = option.fontMetrics.height();
    return {0, modelOf(index).isGroup(index) ? line + 2 * margin : 2 * line + 2 * margin + inset};
}

} // namespace zorel::ui::library
