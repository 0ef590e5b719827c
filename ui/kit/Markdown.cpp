#include "ui/kit/Markdown.h"

#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Typography.h"

#include <QPalette>
#include <QString>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextList>
#include <QTextTable>

#include <vector>

namespace zorel::ui::kit {

namespace {

constexpr qreal listIndent = 20;
constexpr qreal cellPadding = 6;

/// As on the web; Qt alone underlines _this_, which is in italics elsewhere.
QTextDocument::MarkdownFeatures markdownFeatures()
{
    constexpr int underlining = 0x4000;
    return QTextDocument::MarkdownFeatures::fromInt(
        (QTextDocument::MarkdownDialectGitHub | QTextDocument::MarkdownNoHTML) & ~underlining);
}

/// Takes out what would fetch or show something from elsewhere.
void dropImagesAndLinks(QTextDocument &document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        std::vector<QTextCursor> images;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const QTextCharFormat format = fragment.charFormat();
            if (!format.isImageFormat() && !format.isAnchor()) {
                continue;
            }
            QTextCursor cursor(&document);
            cursor.setPosition(fragment.position());
            cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
            images.push_back(cursor);
        }
        for (QTextCursor &cursor : images) {
            if (cursor.charFormat().isImageFormat()) {
                cursor.removeSelectedText();
            } else {
                QTextCharFormat plain;
                plain.setFontWeight(cursor.charFormat().fontWeight());
                plain.setFontItalic(cursor.charFormat().fontItalic());
                cursor.setCharFormat(plain);
            }
        }
    }
}

bool isCode(const QTextBlock &block)
{
    return block.blockFormat().hasProperty(QTextFormat::BlockCodeFence) ||
           block.blockFormat().hasProperty(QTextFormat::BlockCodeLanguage);
}

QTextCursor cursorOver(const QTextBlock &block)
{
    QTextCursor cursor(block);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    return cursor;
}

/// Of the size of what they stand above, but for the first level: notes are no page of their own.
void styleHeading(const QTextBlock &block)
{
    QTextCharFormat format;
    format.setFontWeight(textFont(TextRole::Body, Weight::Semibold).weight());
    format.setProperty(QTextFormat::FontSizeAdjustment, block.blockFormat().headingLevel() == 1 ? 1 : 0);
    cursorOver(block).mergeCharFormat(format);
}

void styleCode(QTextDocument &document, const QTextBlock &block)
{
    const QFont font = monospacedFont(TextRole::Caption);
    QTextCharFormat format;
    format.setFontFamilies(font.families());
    format.setFontPointSize(font.pointSizeF());
    if (isCode(block)) {
        cursorOver(block).mergeCharFormat(format);
        return;
    }
    std::vector<QTextCursor> words;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        if (it.fragment().charFormat().fontFixedPitch()) {
            QTextCursor cursor(&document);
            cursor.setPosition(it.fragment().position());
            cursor.setPosition(it.fragment().position() + it.fragment().length(), QTextCursor::KeepAnchor);
            words.push_back(cursor);
        }
    }
    for (QTextCursor &cursor : words) {
        cursor.mergeCharFormat(format);
    }
}

bool isInTable(const QTextBlock &block)
{
    return QTextCursor(block).currentTable() != nullptr;
}

/// The space below; what stands above a text is the space below the text before it.
qreal spaceBelow(const QTextBlock &block)
{
    const QTextBlock next = block.next();
    if (!next.isValid() || isInTable(block) || (isCode(block) && isCode(next))) {
        return 0;
    }
    const bool isTight = block.textList() != nullptr && next.textList() != nullptr;
    return isTight || block.blockFormat().headingLevel() > 0 ? spacing::half : spacing::one;
}

void styleBlock(const QTextBlock &block, const QPalette &palette)
{
    QTextBlockFormat format = block.blockFormat();
    const bool isLaterHeading = format.headingLevel() > 0 && block.blockNumber() > 0;
    format.setTopMargin(isLaterHeading ? spacing::one : 0);
    format.setBottomMargin(spaceBelow(block));
    // Lines of code are wider than the label now and then; nothing scrolls sideways.
    format.setNonBreakableLines(false);
    if (isCode(block)) {
        format.setBackground(tint(ColorRole::Secondary, palette));
    }
    const int quoteLevel = format.intProperty(QTextFormat::BlockQuoteLevel);
    if (quoteLevel > 0) {
        format.setLeftMargin(quoteLevel * spacing::two);
        format.setRightMargin(0);
    }
    QTextCursor(block).setBlockFormat(format);
}

void styleTable(QTextTable &table, const QPalette &palette)
{
    QTextTableFormat format = table.format();
    format.setCellPadding(cellPadding);
    format.setCellSpacing(0);
    format.setBorderCollapse(true);
    format.setBorder(1);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setBorderBrush(color(ColorRole::Separator, palette));
    format.setMargin(0);
    format.setTopMargin(spacing::one); // the space below the text before it counts for nothing here
    format.setBottomMargin(spacing::half);
    table.setFormat(format);

    QTextCharFormat bold;
    bold.setFontWeight(textFont(TextRole::Body, Weight::Semibold).weight());
    for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(0, column);
        QTextCursor cursor = cell.firstCursorPosition();
        cursor.setPosition(cell.lastPosition(), QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(bold);
    }
}

void styleTables(QTextFrame &frame, const QPalette &palette)
{
    const QList<QTextFrame *> children = frame.childFrames();
    for (QTextFrame *child : children) {
        if (auto *table = qobject_cast<QTextTable *>(child)) {
            styleTable(*table, palette);
        }
        styleTables(*child, palette);
    }
}

} // namespace

void setMarkdown(QTextDocument &document, const QString &markdown)
{
    document.setMarkdown(markdown, markdownFeatures());
    document.setIndentWidth(listIndent);
    dropImagesAndLinks(document);
}

void styleMarkdown(QTextDocument &document, const QPalette &palette)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0) {
            styleHeading(block);
        }
        styleCode(document, block);
        styleBlock(block, palette);
    }
    styleTables(*document.rootFrame(), palette);
}

} // namespace zorel::ui::kit
