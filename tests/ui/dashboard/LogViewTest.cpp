#include "ui/dashboard/LogView.h"

#include "ui/kit/Colors.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include <cmath>

namespace zorel::tests {

using ui::dashboard::LogView;

class LogViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsALineAsAParagraph();
    void keepsALineWithBreaksInOneParagraph();
    void keepsTheNewestLines();
    void followsTheEnd();
    void keepsWhatIsReadWhereItIs();
    void keepsWhatIsReadWhenOlderLinesAreDropped();
    void keepsTheSelection();
    void canBeCopiedAndNotChanged();
    void drawsTheKindsDistinctly_data();
    void drawsTheKindsDistinctly();
    void followsTheTextOfEveryLine();

private:
    static constexpr int capacity = 200;

    void add(int count);
    QString topLine() const;
    QColor colorOf(int line) const;

    std::deque<QString> m_lines;
    std::unique_ptr<LogView> m_view;
};

void LogViewTest::init()
{
    m_lines.clear();
    m_view = std::make_unique<LogView>(capacity);
    m_view->resize(400, 200);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void LogViewTest::cleanup()
{
    m_view.reset();
}

/// As the controller's log grows, and then one update of the view.
void LogViewTest::add(int count)
{
    static int number = 0;
    for (int added = 0; added < count; ++added) {
        m_lines.push_back(QStringLiteral("line %1").arg(number++));
        if (m_lines.size() > capacity) {
            m_lines.pop_front();
        }
    }
    m_view->appendNewest(m_lines, static_cast<std::size_t>(count));
}

QString LogViewTest::topLine() const
{
    return m_view->cursorForPosition(QPoint(0, 2)).block().text();
}

QColor LogViewTest::colorOf(int line) const
{
    const auto formats = m_view->document()->findBlockByNumber(line).layout()->formats();
    return formats.isEmpty() ? QColor() : formats.constFirst().format.foreground().color();
}

void LogViewTest::showsALineAsAParagraph()
{
    m_lines = {QStringLiteral("first"), QString(), QStringLiteral("  third <b>&amp;")};
    m_view->setLines(m_lines);
    QCOMPARE(m_view->blockCount(), 3);
    QCOMPARE(m_view->toPlainText(), QStringLiteral("first\n\n  third <b>&amp;"));
    m_lines.push_back(QStringLiteral("fourth"));
    m_view->appendNewest(m_lines, 1);
    QCOMPARE(m_view->toPlainText(), QStringLiteral("first\n\n  third <b>&amp;\nfourth"));
}

void LogViewTest::keepsALineWithBreaksInOneParagraph()
{
    m_lines = {QStringLiteral("ordinary"), QStringLiteral("ERROR\nsecond\r\nthird")};
    m_view->setLines(m_lines);
    QCOMPARE(m_view->blockCount(), 2);
}

void LogViewTest::keepsTheNewestLines()
{
    for (int turn = 0; turn < 10; ++turn) {
        add(capacity / 3);
        QCOMPARE(m_view->blockCount(), static_cast<int>(m_lines.size()));
        QCOMPARE(m_view->document()->firstBlock().text(), m_lines.front());
        QCOMPARE(m_view->document()->lastBlock().text(), m_lines.back());
    }
    add(5 * capacity); // more than the log holds, in one go
    QCOMPARE(m_view->blockCount(), capacity);
    QCOMPARE(m_view->document()->firstBlock().text(), m_lines.front());
    QCOMPARE(m_view->document()->lastBlock().text(), m_lines.back());
}

void LogViewTest::followsTheEnd()
{
    for (int turn = 0; turn < 8; ++turn) {
        add(40);
        QScrollBar *bar = m_view->verticalScrollBar();
        QVERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), bar->maximum());
    }
}

void LogViewTest::keepsWhatIsReadWhereItIs()
{
    add(100);
    m_view->verticalScrollBar()->setValue(30);
    const QString read = topLine();
    add(50);
    QCOMPARE(topLine(), read);
    m_view->verticalScrollBar()->setValue(m_view->verticalScrollBar()->maximum());
    add(10);
    QCOMPARE(m_view->verticalScrollBar()->value(), m_view->verticalScrollBar()->maximum());
}

void LogViewTest::keepsWhatIsReadWhenOlderLinesAreDropped()
{
    add(capacity);
    m_view->verticalScrollBar()->setValue(120);
    const QString read = topLine();
    add(50);
    QCOMPARE(topLine(), read);
    add(60);
    QCOMPARE(topLine(), read);
    // Dropped at last: the oldest line comes to its place.
    add(60);
    QCOMPARE(topLine(), m_lines.front());
}

void LogViewTest::keepsTheSelection()
{
    add(50);
    QTextCursor cursor(m_view->document()->findBlockByNumber(10));
    cursor.select(QTextCursor::BlockUnderCursor);
    m_view->setTextCursor(cursor);
    const QString selected = m_view->textCursor().selectedText();
    add(capacity - 45);
    QCOMPARE(m_view->textCursor().selectedText(), selected);
}

void LogViewTest::canBeCopiedAndNotChanged()
{
    m_lines = {QStringLiteral("first"), QStringLiteral("second")};
    m_view->setLines(m_lines);
    QTest::keyClick(m_view.get(), Qt::Key_X);
    QCOMPARE(m_view->toPlainText(), QStringLiteral("first\nsecond"));
    m_view->selectAll();
    m_view->copy();
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("first\nsecond"));
}

void LogViewTest::drawsTheKindsDistinctly_data()
{
    QTest::addColumn<QColor>("background");
    QTest::newRow("light") << QColor(0xef, 0xef, 0xef);
    QTest::newRow("dark") << QColor(0x2b, 0x2b, 0x2e);
}

void LogViewTest::drawsTheKindsDistinctly()
{
    QFETCH(QColor, background);
    m_lines = {QStringLiteral("ordinary"), QStringLiteral("a ERROR"), QStringLiteral("a WARN"),
               QStringLiteral("a step=1")};
    m_view->setLines(m_lines);
    m_view->setPalette(QPalette(background)); // after the lines: they change with it
    std::vector<QColor> colors{m_view->palette().color(QPalette::Text)};
    for (int line = 1; line < 4; ++line) {
        colors.push_back(colorOf(line));
    }
    QVERIFY(!colorOf(0).isValid());
    for (std::size_t index = 0; index < colors.size(); ++index) {
        QVERIFY(ui::kit::contrastRatio(colors[index], m_view->palette().color(QPalette::Base)) >= 4.5);
        QCOMPARE(std::count(colors.begin(), colors.end(), colors[index]), 1);
    }
}

void LogViewTest::followsTheTextOfEveryLine()
{
    m_lines = {QString(70'000, QLatin1Char('x')), QStringLiteral("עברית \"quoted\" %1 %s"),
               QString(QChar(0))};
    m_view->setLines(m_lines);
    QCOMPARE(m_view->blockCount(), 3);
    QCOMPARE(m_view->document()->findBlockByNumber(0).text(), m_lines[0]);
    QCOMPARE(m_view->document()->findBlockByNumber(1).text(), m_lines[1]);
    QVERIFY(m_view->horizontalScrollBar()->maximum() == 0); // wrapped, whatever the line
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::LogViewTest)
#include "LogViewTest.moc"
