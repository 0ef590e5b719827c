#pragma once

#include <QPlainTextEdit>

#include <cstddef>
#include <deque>

namespace zorel::ui::dashboard {

class LogHighlighter;

/// The log as one text that can be selected and copied; a line of the log is a paragraph. Follows the end,
/// unless the reader has scrolled up: then what is being read stays where it is.
class LogView : public QPlainTextEdit
{
    Q_OBJECT

public:
    /// Keeps the newest `maximumLines`.
    explicit LogView(int maximumLines, QWidget *parent = nullptr);

    /// Replaces what is shown and goes to its end.
    void setLines(const std::deque<QString> &lines);
    /// Adds the last `count` of `lines`.
    void appendNewest(const std::deque<QString> &lines, std::size_t count);

protected:
    void changeEvent(QEvent *event) override;

private:
    void insertAtEnd(const QString &text);

    LogHighlighter *m_highlighter;
};

} // namespace zorel::ui::dashboard
