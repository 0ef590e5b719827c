#include "terminal/LiveBlock.h"
#include "terminal/TextWidth.h"

#include <QTest>

#include <limits>

namespace zorel::tests {

using namespace terminal;

namespace {

RunProgress training()
{
    RunProgress progress;
    progress.phase = TerminalRun::Phase::training;
    progress.status.state = QStringLiteral("running");
    progress.status.step = 900;
    progress.status.maxSteps = 2000;
    progress.status.loss = 3.21454;
    progress.status.valLoss = 3.3;
    progress.status.tokensPerSec = 12345.6;
    progress.status.elapsedS = 65;
    progress.remainingS = 79.4;
    return progress;
}

RunProgress preparing()
{
    RunProgress progress;
    progress.phase = TerminalRun::Phase::training;
    progress.status.state = QStringLiteral("preparing");
    progress.status.prepProgress = 0.999;
    progress.status.prepDetail = QStringLiteral("训练分词器 corpus\x1b[31m.txt");
    progress.status.prepElapsedS = 7199;
    progress.status.prepEtaS = 1;
    return progress;
}

const TerminalStyle plain{TerminalStyle::Characters::unicode, TerminalStyle::Colours::none};
const TerminalStyle coloured{TerminalStyle::Characters::unicode, TerminalStyle::Colours::ansi};
const TerminalStyle ascii{TerminalStyle::Characters::ascii, TerminalStyle::Colours::none};

} // namespace

class LiveBlockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesOutWhatDoesNotFit_data();
    void leavesOutWhatDoesNotFit();
    void neverReachesTheLastColumn_data();
    void neverReachesTheLastColumn();
    void drawsBars();
    void survivesOddValues();
    void measuresText();
    void cutsText();
    void translatesSignsOnly();
};

void LiveBlockTest::leavesOutWhatDoesNotFit_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("figures");
    const QString all =
        QStringLiteral("loss 3.2145 · validation 3.3000 · 12346 tokens/sec · 1m05s elapsed · 1m19s left");
    QTest::newRow("everything") << int(all.size()) + 1 << all;
    QTest::newRow("one column short")
        << int(all.size()) << QStringLiteral("loss 3.2145 · 12346 tokens/sec · 1m05s elapsed · 1m19s left");
    QTest::newRow("narrower") << 50 << QStringLiteral("loss 3.2145 · 12346 tokens/sec · 1m19s left");
    QTest::newRow("narrow") << 30 << QStringLiteral("loss 3.2145 · 1m19s left");
    QTest::newRow("very narrow") << 12 << QStringLiteral("loss 3.2145");
    QTest::newRow("absurd") << 6 << QStringLiteral("loss…");
}

void LiveBlockTest::leavesOutWhatDoesNotFit()
{
    QFETCH(int, columns);
    QFETCH(QString, figures);
    QCOMPARE(liveBlock(training(), plain, columns)[1].text, figures);
}

void LiveBlockTest::neverReachesTheLastColumn_data()
{
    QTest::addColumn<int>("columns");
    for (const int columns : {1, 2, 3, 5, 8, 13, 20, 30, 40, 60, 80, 132, 300}) {
        QTest::addRow("%d columns", columns) << columns;
    }
}

void LiveBlockTest::neverReachesTheLastColumn()
{
    QFETCH(int, columns);
    RunProgress waiting;
    waiting.phase = TerminalRun::Phase::waitingForBackend;
    for (const RunProgress &progress : {training(), preparing(), waiting}) {
        for (const TerminalStyle &style : {plain, ascii}) {
            for (const BlockLine &line : liveBlock(progress, style, columns)) {
                QCOMPARE(line.width, textWidth(line.text));
                QVERIFY(line.width <= qMax(1, columns - 1));
                QVERIFY(!line.text.contains(u'\x1b'));
            }
        }
        // Colours take no room.
        const QList<BlockLine> with = liveBlock(progress, coloured, columns);
        const QList<BlockLine> without = liveBlock(progress, plain, columns);
        for (qsizetype line = 0; line < with.size(); ++line) {
            QCOMPARE(with[line].width, without[line].width);
        }
    }
}

void LiveBlockTest::drawsBars()
{
    QCOMPARE(plain.bar(0, 4), QStringLiteral("────"));
    QCOMPARE(plain.bar(0.5, 4), QStringLiteral("━━──"));
    QCOMPARE(plain.bar(0.4, 4), QStringLiteral("━╸──"));
    QCOMPARE(plain.bar(1, 4), QStringLiteral("━━━━"));
    QCOMPARE(plain.bar(7, 4), QStringLiteral("━━━━"));
    QCOMPARE(plain.bar(std::numeric_limits<double>::quiet_NaN(), 4), QStringLiteral("────"));
    QCOMPARE(ascii.bar(0.5, 10), QStringLiteral("[####....]"));
    QCOMPARE(coloured.bar(0.5, 2), QStringLiteral("\x1b[32m━\x1b[0m\x1b[2m─\x1b[0m"));
}

void LiveBlockTest::survivesOddValues()
{
    RunProgress odd = training();
    odd.status.state = QStringLiteral("\x1b]0;owned\x07");
    odd.status.maxSteps = 0;
    odd.status.loss = std::numeric_limits<double>::infinity();
    odd.status.elapsedS = -5;
    odd.remainingS = 1e300;
    const QList<BlockLine> lines = liveBlock(odd, plain, 120);
    QVERIFY(lines[0].text.contains(QStringLiteral("100%  900 / 0")));
    QVERIFY(!lines[0].text.contains(u'\x1b'));
    QCOMPARE(lines[1].text,
             QStringLiteral("loss — · validation 3.3000 · 12346 tokens/sec · -5s elapsed · — left"));
}

void LiveBlockTest::measuresText()
{
    QCOMPARE(textWidth(QString()), 0);
    QCOMPARE(textWidth(QStringLiteral("abc")), 3);
    QCOMPARE(textWidth(QStringLiteral("日本")), 4);
    QCOMPARE(textWidth(QStringLiteral("한")), 2);
    QCOMPARE(textWidth(QStringLiteral("e\u0301")), 1);
    QCOMPARE(textWidth(QStringLiteral("🚀")), 2);
    QCOMPARE(textWidth(QStringLiteral("━╸─…·")), 5);
}

void LiveBlockTest::cutsText()
{
    const QString ellipsis = QStringLiteral("…");
    QCOMPARE(elided(QStringLiteral("abc"), 3, ellipsis), QStringLiteral("abc"));
    QCOMPARE(elided(QStringLiteral("abcd"), 3, ellipsis), QStringLiteral("ab…"));
    QCOMPARE(elided(QStringLiteral("日本語"), 5, ellipsis), QStringLiteral("日本…"));
    QCOMPARE(elided(QStringLiteral("日本語"), 4, ellipsis), QStringLiteral("日…"));
    QCOMPARE(elided(QStringLiteral("🚀🚀🚀"), 3, ellipsis), QStringLiteral("🚀…"));
    QCOMPARE(elided(QStringLiteral("abcd"), 0, ellipsis), QString());
}

void LiveBlockTest::translatesSignsOnly()
{
    QCOMPARE(ascii.shown(QStringLiteral("✓ a → “ü”…")), QStringLiteral("* a -> \"ü\"..."));
    QCOMPARE(plain.shown(QStringLiteral("✓ →")), QStringLiteral("✓ →"));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::LiveBlockTest)
#include "LiveBlockTest.moc"
