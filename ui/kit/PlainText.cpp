#include "ui/kit/PlainText.h"

#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QTextOption>
#include <QWidget>

namespace zorel::ui::kit {

namespace {

constexpr qsizetype longestToolTip = 2000;
/// From here on a tooltip would be wider than many screens, so it has to wrap.
constexpr qsizetype widestToolTip = 100;

bool turnsDirection(char16_t character)
{
    return (character >= 0x202a && character <= 0x202e) || (character >= 0x2066 && character <= 0x2069);
}

QString withBreaks(const QString &text)
{
    // Paths have no spaces to break at.
    constexpr qsizetype piece = 40;
    QString broken;
    qsizetype sinceSpace = 0;
    for (const QChar character : text) {
        sinceSpace = character.isSpace() ? 0 : sinceSpace + 1;
        if (sinceSpace > piece && !character.isLowSurrogate()) {
            broken += QChar(0x200b);
            sinceSpace = 0;
        }
        broken += character;
    }
    return broken;
}

} // namespace

QString singleLine(const QString &text)
{
    QString line = text;
    for (QChar &character : line) {
        const char16_t code = character.unicode();
        if (code == u'\n' || code == u'\r' || code == QChar::LineSeparator ||
            code == QChar::ParagraphSeparator) {
            character = u'↵';
        } else if (code == u'\t') {
            character = u'⇥';
        } else if (code < 0x20 || (code >= 0x7f && code < 0xa0) || turnsDirection(code)) {
            character = QChar::ReplacementCharacter;
        }
    }
    return line;
}

void paintLine(QPainter &painter, const QRectF &rect, const QString &line, const QWidget *widget)
{
    const Qt::Alignment side = QStyle::visualAlignment(widget->layoutDirection(), Qt::AlignLeading);
    QTextOption option(side | Qt::AlignAbsolute | Qt::AlignVCenter);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(rect, line, option);
}

QString plainToolTip(const QString &text)
{
    QString shown = text;
    if (shown.size() > longestToolTip) {
        shown = shown.left(longestToolTip / 2) + QChar(0x2026) + shown.right(longestToolTip / 2);
    }
    if (shown.size() > widestToolTip || Qt::mightBeRichText(shown)) {
        shown =
            QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(withBreaks(shown).toHtmlEscaped());
    }
    return shown;
}

void setPlainToolTip(QWidget *widget, const QString &text)
{
    widget->setToolTip(plainToolTip(text));
}

} // namespace zorel::ui::kit
