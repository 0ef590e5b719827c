#include "ui/library/ComparisonSheet.h"
#include "tests/ui/library/Stage.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/LineChart.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/DifferenceCard.h"
#include "ui/library/NoticeLine.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace zorel::tests {

using ui::library::ComparisonSheet;
using ui::library::DifferenceCard;

namespace {

enum class Tone { none, green, orange, other };

/// Of the most colourful pixel.
Tone toneOf(ui::kit::SymbolLabel *symbol)
{
    if (!symbol) {
        return Tone::none;
    }
    const QImage picture = symbol->grab().toImage();
    QColor colourful;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor pixel = picture.pixelColor(x, y);
            colourful = pixel.hsvSaturation() > colourful.hsvSaturation() ? pixel : colourful;
        }
    }
    const int hue = colourful.hsvHue();
    return hue >= 15 && hue <= 45 ? Tone::orange : hue >= 100 && hue <= 160 ? Tone::green : Tone::other;
}

} // namespace

class ComparisonSheetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_stage = std::make_unique<ComparisonStage>(); }

    void namesBothRuns();
    void standsInLineWithItsTitle();
    void warnsWhenFamiliesDiffer();
    void doesNotWarnWhenVersionsDiffer();
    void showsADifference_data();
    void showsADifference();
    void drawsBothCurvesInOneChart();
    void saysWhichCurveIsMissing();
    void aChartWithoutCurvesIsALineHigh();
    void itsCardsReachFromTheTitleToTheButtons();
    void saysThatThePictureIsCopied();
    void savesAPictureAndTheFigures();
    void saysWhenAFileCannotBeWritten();
    void backCloses();

private:
    DifferenceCard *card(const QString &title) const;

    std::unique_ptr<ComparisonStage> m_stage;
};

DifferenceCard *ComparisonSheetTest::card(const QString &title) const
{
    const auto cards = m_stage->sheet().findChildren<DifferenceCard *>();
    for (auto *candidate : cards) {
        if (visibleTexts(*candidate).first() == title) {
            return candidate;
        }
    }
    qFatal("no such card");
}

void ComparisonSheetTest::standsInLineWithItsTitle()
{
    m_stage->compare({R"({"step":1})"}, {R"({"step":2})"});
    ComparisonSheet &sheet = m_stage->sheet();
    sheet.show();
    const auto left = [&sheet](const QWidget *widget) {
        return widget->mapTo(&sheet, QPoint(0, 0)).x();
    };
    const auto *title = sheet.findChild<ui::kit::TextLabel *>();
    QCOMPARE(title->text(), QStringLiteral("Compare retrainings"));
    QTRY_COMPARE(left(card(QStringLiteral("Loss change"))), left(title));
}

void ComparisonSheetTest::namesBothRuns()
{
    m_stage->compare({R"({"model_identity":{"name":"poet","version":"1"}})"},
                     {R"({"model_identity":{"name":"poet","version":"2"}})"});
    QVERIFY(m_stage->shows(QStringLiteral("Compare retrainings")));
    QVERIFY(m_stage->shows(QStringLiteral("Baseline")));
    QVERIFY(m_stage->shows(QStringLiteral("Candidate")));
}

void ComparisonSheetTest::warnsWhenFamiliesDiffer()
{
    m_stage->compare({R"({"model_identity":{"name":"poet"},"model_family":"text_language"})"},
                     {R"({"model_identity":{"name":"poet"},"model_family":"multimodal"})"});
    QVERIFY(m_stage->shows(QStringLiteral(
        "These runs use different model names or families — treat the comparison as exploratory.")));
    auto *triangle =
        m_stage->sheet().findChild<ui::library::NoticeLine *>()->findChild<ui::kit::SymbolLabel *>();
    QCOMPARE(triangle->symbol(), QStringLiteral("exclamationmark.triangle.fill"));
    QVERIFY(toneOf(triangle) == Tone::orange);
}

void ComparisonSheetTest::doesNotWarnWhenVersionsDiffer()
{
    m_stage->compare({R"({"model_identity":{"name":"poet","version":"1"}})"},
                     {R"({"model_identity":{"name":"poet","version":"2"}})"});
    QVERIFY(m_stage->texts().filter(QStringLiteral("exploratory")).isEmpty());
}

void ComparisonSheetTest::showsADifference_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QByteArray>("baseline");
    QTest::addColumn<QByteArray>("candidate");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("arrow");
    QTest::addColumn<Tone>("tone");
    const QString up = QStringLiteral("arrow.up.right");
    const QString down = QStringLiteral("arrow.down.right");
    const QString loss = QStringLiteral("Loss change");
    const QString steps = QStringLiteral("Steps");
    const QString time = QStringLiteral("Training time");
    QTest::addRow("an unchanged loss")
        << loss << QByteArray(R"({"final_loss":2.5})") << QByteArray(R"({"final_loss":2.5})")
        << QStringLiteral("+0.0000") << up << Tone::orange;
    QTest::addRow("a smaller loss") << loss << QByteArray(R"({"final_loss":2.5})")
                                    << QByteArray(R"({"final_loss":2.25})") << QStringLiteral("-0.2500")
                                    << down << Tone::green;
    QTest::addRow("fewer steps") << steps << QByteArray(R"({"step":1000})") << QByteArray(R"({"step":800})")
                                 << QStringLiteral("1,000 → 800 (-200)") << up << Tone::orange;
    QTest::addRow("as many steps") << steps << QByteArray(R"({"step":800})") << QByteArray(R"({"step":800})")
                                   << QStringLiteral("800 → 800 (+0)") << down << Tone::green;
    QTest::addRow("less time, without a sign")
        << time << QByteArray(R"({"elapsed_seconds":100})") << QByteArray(R"({"elapsed_seconds":40})")
        << QStringLiteral("1m0s") << QString() << Tone::none;
    QTest::addRow("more time") << time << QByteArray(R"({"elapsed_seconds":40})")
                               << QByteArray(R"({"elapsed_seconds":100})") << QStringLiteral("+1m0s")
                               << QString() << Tone::none;
}

void ComparisonSheetTest::showsADifference()
{
    QFETCH(QString, title);
    QFETCH(QByteArray, baseline);
    QFETCH(QByteArray, candidate);
    QFETCH(Tone, tone);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_stage->compare({baseline}, {candidate});
    auto *arrow = card(title)->findChild<ui::kit::SymbolLabel *>();
    QTEST(visibleTexts(*card(title)).last(), "value");
    QTEST(arrow ? arrow->symbol() : QString(), "arrow");
    QVERIFY(toneOf(arrow) == tone);
}

void ComparisonSheetTest::drawsBothCurvesInOneChart()
{
    m_stage->compare({.curve = curveText(10)}, {.curve = curveText(4)});
    const auto charts = m_stage->sheet().findChildren<ui::kit::LineChart *>();
    QCOMPARE(charts.size(), 1);
    QCOMPARE(charts.first()->accessibleName(), QStringLiteral("Loss curves"));
    const ui::kit::ChartContent &content = charts.first()->content();
    QCOMPARE(content.stepTitle, QStringLiteral("Step"));
    QCOMPARE(content.valueTitle, QStringLiteral("Loss"));
    QCOMPARE(content.legendKey, QStringLiteral("Run"));
    QCOMPARE(content.nameOf(0), QStringLiteral("Baseline"));
    QCOMPARE(content.nameOf(1), QStringLiteral("Candidate"));
    QCOMPARE(charts.first()->points(0).size(), std::size_t{10});
    QCOMPARE(charts.first()->points(1).size(), std::size_t{4});
    QVERIFY2(!m_stage->texts().filter(QStringLiteral("4")).isEmpty(), "says over which steps both have data");
}

void ComparisonSheetTest::saysWhichCurveIsMissing()
{
    m_stage->compare({.curve = curveText(10)}, {});
    QVERIFY(m_stage->shows(QStringLiteral("The candidate run has no loss curve.")));
    m_stage->compare({.curve = curveText(10)}, {.curve = curveText(10)});
    QVERIFY(m_stage->texts().filter(QStringLiteral("no loss curve")).isEmpty());
}

void ComparisonSheetTest::aChartWithoutCurvesIsALineHigh()
{
    const auto chartHeight = [this] {
        return m_stage->sheet().findChild<ui::kit::LineChart *>()->maximumHeight();
    };
    m_stage->compare({}, {});
    QVERIFY(chartHeight() < 100);
    m_stage->compare({}, {.curve = curveText(10)});
    QCOMPARE(chartHeight(), QWIDGETSIZE_MAX);
    QVERIFY(m_stage->sheet().findChild<ui::kit::LineChart *>()->minimumHeight() > 200);
}

void ComparisonSheetTest::itsCardsReachFromTheTitleToTheButtons()
{
    m_stage->compare({}, {});
    ComparisonSheet &sheet = m_stage->sheet();
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    const auto placeOf = [&sheet](const QWidget *widget) {
        return QRect(widget->mapTo(&sheet, QPoint()), widget->size());
    };
    const auto buttons = sheet.findChildren<ui::kit::ActionButton *>();
    const auto back = std::ranges::find(buttons, QStringLiteral("Back"), &ui::kit::ActionButton::title);
    QVERIFY(back != buttons.end());
    QTRY_COMPARE(placeOf(card(QStringLiteral("Training time"))).right(), placeOf(*back).right());
    QCOMPARE(placeOf(card(QStringLiteral("Loss change"))).left(),
             placeOf(sheet.findChild<ui::kit::TextLabel *>()).left());
}

void ComparisonSheetTest::saysThatThePictureIsCopied()
{
    m_stage->compare({}, {});
    m_stage->sheet().show();
    m_stage->sheet().copyImage();
    QVERIFY(QGuiApplication::clipboard()->image().width() > 300);
    QVERIFY(m_stage->shows(QStringLiteral("Copied to the clipboard.")));
}

void ComparisonSheetTest::savesAPictureAndTheFigures()
{
    m_stage->compare({R"({"final_loss":2.5})"}, {R"({"final_loss":2.0})"});
    ComparisonSheet &sheet = m_stage->sheet();
    sheet.show();
    const QString picture = m_stage->pathOf(QStringLiteral("comparison.png"));
    sheet.saveImage(picture);
    QVERIFY(QImage(picture).width() > 300);
    const QString file = m_stage->pathOf(QStringLiteral("comparison.json"));
    sheet.saveFigures(file);
    QFile written(file);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(QJsonDocument::fromJson(written.readAll()).object(),
             QJsonDocument::fromJson(sheet.figures()).object());
    QVERIFY(!QJsonDocument::fromJson(sheet.figures()).object().isEmpty());
    QVERIFY(m_stage->shows(QStringLiteral("Saved → ") + file));
}

void ComparisonSheetTest::saysWhenAFileCannotBeWritten()
{
    m_stage->compare({}, {});
    const QString path = m_stage->pathOf(QStringLiteral("missing/comparison.json"));
    m_stage->sheet().saveFigures(path);
    QVERIFY(m_stage->shows(QStringLiteral("Could not be saved → ") + path));
}

void ComparisonSheetTest::backCloses()
{
    m_stage->compare({}, {});
    m_stage->sheet().open();
    const auto buttons = m_stage->sheet().findChildren<ui::kit::ActionButton *>();
    for (auto *button : buttons) {
        if (button->title() == QStringLiteral("Back")) {
            button->click();
        }
    }
    QVERIFY(!m_stage->sheet().isVisible());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ComparisonSheetTest)
#include "ComparisonSheetTest.moc"
