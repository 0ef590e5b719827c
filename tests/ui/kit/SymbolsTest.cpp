#include "ui/kit/Symbols.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/Palettes.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/SymbolMask.h"

#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace zorel::tests {

using namespace ui::kit;

class SymbolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QApplication::setPalette(lightPalette()); }
    void hasEverySymbolOfTheScreens_data();
    void hasEverySymbolOfTheScreens();
    void hasEverySymbolNamedInTheSources();
    void drawsEachOfItsSymbols_data();
    void drawsEachOfItsSymbols();
    void drawsNoTwoAlike();
    void keepsToOneStrokeWeight();
    void keepsClearOfTheEdge();
    void complainsAboutUnknownNames();
    void tintsByThePalette();
    void tintsByState();
    void isSharpOnEveryScreen();
    void showsASymbolLabel();
};

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// String literals of sources that are symbol names by their look: what stands where a symbol is asked for,
/// and every dotted name that begins like one of ours.
QStringList namesInSource(const QString &source)
{
    static const QRegularExpression call(QStringLiteral(
        R"~((?:symbolIcon|symbolPixmap|SymbolLabel|setSymbol|ActionButton|Badge|setBadge|hasSymbol)\(\s*)~"
        R"~(QStringLiteral\("([a-z0-9.]+)"\))~"));
    static const QRegularExpression dotted(QStringLiteral(R"~("([a-z]+(?:\.[a-z0-9]+)+)")~"));
    static const QSet<QString> families = [] {
        QSet<QString> first;
        const QStringList names = symbolNames();
        for (const QString &name : names) {
            first.insert(name.section(QLatin1Char('.'), 0, 0));
        }
        return first;
    }();
    QStringList names;
    for (const QRegularExpressionMatch &match : call.globalMatch(source)) {
        names.append(match.captured(1));
    }
    for (const QRegularExpressionMatch &match : dotted.globalMatch(source)) {
        if (families.contains(match.captured(1).section(QLatin1Char('.'), 0, 0))) {
            names.append(match.captured(1));
        }
    }
    return names;
}

} // namespace

void SymbolsTest::hasEverySymbolOfTheScreens_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"arrow.clockwise",
                             "arrow.down.right",
                             "arrow.triangle.2.circlepath",
                             "arrow.up.right",
                             "arrow.up.right.square",
                             "brain.head.profile",
                             "calendar",
                             "chart.line.uptrend.xyaxis",
                             "checkmark.seal.fill",
                             "checkmark.shield.fill",
                             "chevron.right",
                             "clock",
                             "cube",
                             "exclamationmark.shield.fill",
                             "exclamationmark.triangle.fill",
                             "folder",
                             "folder.badge.questionmark",
                             "gearshape",
                             "gearshape.fill",
                             "hourglass",
                             "house.fill",
                             "info.circle",
                             "internaldrive.fill",
                             "lock.open.fill",
                             "lock.shield.fill",
                             "pause.fill",
                             "photo.on.rectangle.angled",
                             "play.fill",
                             "shippingbox",
                             "shippingbox.fill",
                             "stop.fill",
                             "tag.fill",
                             "terminal.fill",
                             "text.alignleft",
                             "text.below.photo",
                             "tray",
                             "tray.full.fill",
                             "wand.and.stars",
                             "wrench.and.screwdriver",
                             "xmark.circle.fill"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void SymbolsTest::hasEverySymbolOfTheScreens()
{
    QFETCH(QString, name);
    QVERIFY(hasSymbol(name));
    QVERIFY(symbolNames().contains(name));
    QVERIFY(!symbolIcon(name).isNull());
}

void SymbolsTest::hasEverySymbolNamedInTheSources()
{
    int found = 0;
    for (const QString &folder : {QStringLiteral("app"), QStringLiteral("ui"), QStringLiteral("updater")}) {
        QDirIterator files(QStringLiteral(ZOREL_SOURCE_FOLDER "/") + folder,
                           {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            const QStringList names = namesInSource(QString::fromUtf8(contentOf(path)));
            for (const QString &name : names) {
                QVERIFY2(hasSymbol(name),
                         qPrintable(QStringLiteral("%1 names the symbol %2").arg(path, name)));
                ++found;
            }
        }
    }
    // The search itself works.
    QVERIFY(found > 5);
    QCOMPARE(
        namesInSource(QStringLiteral("x(\"arrow.nowhere\"); new SymbolLabel(QStringLiteral(\"nothing\"))")),
        QStringList({QStringLiteral("nothing"), QStringLiteral("arrow.nowhere")}));
}

void SymbolsTest::drawsEachOfItsSymbols_data()
{
    QTest::addColumn<QString>("name");
    const QStringList names = symbolNames();
    for (const QString &name : names) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

void SymbolsTest::drawsEachOfItsSymbols()
{
    QFETCH(QString, name);
    for (const int side : {16, 32, 48}) {
        const QImage mask = symbolMask(name, side);
        QCOMPARE(mask.size(), QSize(side, side));
        double ink = 0;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                ink += qAlpha(mask.pixel(x, y)) / 255.0;
            }
        }
        QVERIFY(ink > 0.03 * side * side);
        QVERIFY(ink < 0.85 * side * side);
    }
}

void SymbolsTest::drawsNoTwoAlike()
{
    QHash<QByteArray, QString> seen;
    const QStringList names = symbolNames();
    for (const QString &name : names) {
        const QImage mask = symbolMask(name, 16);
        const QByteArray bits(reinterpret_cast<const char *>(mask.constBits()), mask.sizeInBytes());
        QVERIFY2(!seen.contains(bits), qPrintable(name + QStringLiteral(" looks like ") + seen.value(bits)));
        seen.insert(bits, name);
    }
}

void SymbolsTest::keepsToOneStrokeWeight()
{
    const QStringList names = symbolNames();
    for (const QString &name : names) {
        QXmlStreamReader xml(contentOf(QStringLiteral(":/zorel/symbols/%1.svg").arg(name)));
        QVERIFY(xml.readNextStartElement());
        QCOMPARE(xml.attributes().value(QStringLiteral("viewBox")), QStringLiteral("0 0 24 24"));
        QCOMPARE(xml.attributes().value(QStringLiteral("stroke-width")), QStringLiteral("1.75"));
        while (!xml.atEnd()) {
            xml.readNext();
        }
        QVERIFY2(!xml.hasError(), qPrintable(name));
    }
}

void SymbolsTest::keepsClearOfTheEdge()
{
    const QStringList names = symbolNames();
    for (const QString &name : names) {
        const QImage mask = symbolMask(name, 48);
        for (int along = 0; along < 48; ++along) {
            for (const QPoint &point :
                 {QPoint(along, 0), QPoint(along, 47), QPoint(0, along), QPoint(47, along)}) {
                QVERIFY2(qAlpha(mask.pixel(point)) == 0, qPrintable(name));
            }
        }
    }
}

void SymbolsTest::complainsAboutUnknownNames()
{
    QVERIFY(!hasSymbol(QStringLiteral("no.such.symbol")));
    QVERIFY(!hasSymbol({}));
    QVERIFY(!hasSymbol(QStringLiteral("../symbols/plus")));
    QVERIFY(symbolIcon(QStringLiteral("no.such.symbol")).isNull());
    QTest::ignoreMessage(QtWarningMsg, "There is no symbol \"no.such.symbol\".");
    QVERIFY(symbolPixmap(QStringLiteral("no.such.symbol"), 16, Qt::black, 1).isNull());
    QVERIFY(symbolPixmap({}, 16, Qt::black, 1).isNull());
}

void SymbolsTest::tintsByThePalette()
{
    const QIcon icon = symbolIcon(QStringLiteral("stop.fill"));
    const QIcon accent = symbolIcon(QStringLiteral("stop.fill"), ColorRole::Accent);
    for (const QPalette &palette : {lightPalette(), darkPalette()}) {
        QApplication::setPalette(palette);
        QVERIFY(pixelsOf(icon.pixmap(32).toImage(), color(ColorRole::Text, palette)) > 200);
        QVERIFY(pixelsOf(accent.pixmap(32).toImage(), color(ColorRole::Accent, palette)) > 200);
    }
}

void SymbolsTest::tintsByState()
{
    QApplication::setPalette(lightPalette());
    const QIcon icon = symbolIcon(QStringLiteral("stop.fill"));
    const QPalette palette = QApplication::palette();
    QVERIFY(pixelsOf(icon.pixmap(32, QIcon::Disabled).toImage(),
                     palette.color(QPalette::Disabled, QPalette::WindowText)) > 200);
    QVERIFY(pixelsOf(icon.pixmap(32, QIcon::Selected).toImage(), palette.color(QPalette::HighlightedText)) >
            200);
    QVERIFY(pixelsOf(icon.pixmap(32, QIcon::Active).toImage(), color(ColorRole::Text, palette)) > 200);
}

void SymbolsTest::isSharpOnEveryScreen()
{
    for (const double ratio : {1.0, 1.5, 2.0, 3.0}) {
        const QPixmap pixmap = symbolPixmap(QStringLiteral("clock"), 16, Qt::red, ratio);
        QCOMPARE(pixmap.size(), QSize(qRound(16 * ratio), qRound(16 * ratio)));
        QCOMPARE(pixmap.devicePixelRatio(), ratio);
        const QPixmap icon = symbolIcon(QStringLiteral("clock")).pixmap(QSize(16, 16), ratio);
        QCOMPARE(icon.size(), QSize(qRound(16 * ratio), qRound(16 * ratio)));
    }
}

void SymbolsTest::showsASymbolLabel()
{
    SymbolLabel label(QStringLiteral("stop.fill"), 24, ColorRole::Danger);
    QCOMPARE(label.sizeHint(), QSize(24, 24));
    showAt(label, {24, 24});
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Danger, label.palette())) > 100);
    label.setColorRole(ColorRole::Success);
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Success, label.palette())) > 100);
    label.setSymbol(QStringLiteral("minus"));
    QCOMPARE(label.symbol(), QStringLiteral("minus"));
    QVERIFY(pixelsOf(picture(label), color(ColorRole::Success, label.palette())) < 100);
    QApplication::setPalette(darkPalette());
    label.setSymbol(QStringLiteral("stop.fill"));
    QTRY_VERIFY(pixelsOf(picture(label), color(ColorRole::Success, darkPalette())) > 100);
    QCOMPARE(spoken(&label).role(), QAccessible::Graphic);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::SymbolsTest)
#include "SymbolsTest.moc"
