#include "ui/dashboard/LogView.h"

#include "ui/dashboard/LogLineKind.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Typography.h"

#include <QEvent>
#include <QScrollBar>
#include <QSyntaxHighlighter>
#include <QTextBlock>

#include <algorithm>

namespace zorel::ui::dashboard {

/// Colours whole lines by their kind; errors and warnings are bold as well, for those who see no colours.
class LogHighlighter : public QSyntaxHighlighter
{
public:
    LogHighlighter(QTextDocument *document, const QPalette &palette)
        : QSyntaxHighlighter(document)
    {
        takeColors(palette);
    }

    void takeColors(const QPalette &palette)
    {
        m_error.setForeground(kit::color(kit::ColorRole::Danger, palette));
        m_error.setFontWeight(QFont::DemiBold);
        m_warning.setForeground(kit::color(kit::ColorRole::Warning, palette));
        m_warning.setFontWeight(QFont::DemiBold);
        m_step.setForeground(kit::color(kit::ColorRole::Accent, palette));
    }

protected:
    void highlightBlock(const QString &text) override
    {
        switch (logLineKind(text)) {
        case LogLineKind::error:
            setFormat(0, static_cast<int>(text.size()), m_error);
            break;
        case LogLineKind::warning:
            setFormat(0, static_cast<int>(text.size()), m_warning);
            break;
        case LogLineKind::step:
            setFormat(0, static_cast<int>(text.size()), m_step);
            break;
        case LogLineKind::ordinary:
            break;
        }
    }

private:
    QTextCharFormat m_error;
    QTextCharFormat m_warning;
    QTextCharFormat m_step;
};

namespace {

/// The last `count` lines as paragraphs. A line break inside a line stays inside its paragraph.
QString paragraphs(const std::deque<QString> &lines, std::size_t count)
{
    QString text;
    for (auto line = lines.end() - static_cast<std::ptrdiff_t>(count); line != lines.end(); ++line) {
        const qsizetype start = text.size();
        text += *line;
        for (const QChar lineBreak :
             {QChar(QLatin1Char('\n')), QChar(QLatin1Char('\r')), QChar(QChar::ParagraphSeparator)}) {
            std::replace(text.begin() + start, text.end(), lineBreak, QChar(QChar::LineSeparator));
        }
        text += QLatin1Char('\n');
    }
    text.chop(1);
    return text;
}

} // namespace

LogView::LogView(int maximumLines, QWidget *parent)
    : QPlainTextEdit(parent)
    , m_highlighter(new LogHighlighter(document(), palette()))
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setMaximumBlockCount(maximumLines);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTabChangesFocus(true);
    kit::setTextFont(this, kit::TextRole::Caption, kit::Weight::Regular, kit::FontKind::Monospaced);
}

void LogView::setLines(const std::deque<QString> &lines)
{
    setPlainText(paragraphs(lines, lines.size()));
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void LogView::appendNewest(const std::deque<QString> &lines, std::size_t count)
{
    const std::size_t known = std::min(count, lines.size());
    if (known == lines.size()) {
        setLines(lines);
        return;
    }
    QScrollBar *bar = verticalScrollBar();
    const bool followsEnd = bar->value() == bar->maximum();
    // Moves with its paragraph when older ones are dropped.
    const QTextCursor top(firstVisibleBlock());
    const int linesIntoTop = bar->value() - firstVisibleBlock().firstLineNumber();

    insertAtEnd(QLatin1Char('\n') + paragraphs(lines, known));

    if (followsEnd) {
        bar->setValue(bar->maximum());
    } else {
        bar->setValue(top.block().firstLineNumber() + linesIntoTop);
    }
}

void LogView::insertAtEnd(const QString &text)
{
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertText(text);
}

void LogView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        m_highlighter->takeColors(palette());
        m_highlighter->rehighlight();
    }
}

} // namespace zorel::ui::dashboard
