#include "app/presentation/StatusText.h"

#include "app/presentation/RunState.h"

#include <QTest>

namespace zorel::tests {

using namespace app::presentation;
using app::settings::ModelFamily;

class StatusTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titlesTheProgressByFamily();
    void hintsAtWhatComes_data();
    void hintsAtWhatComes();
    void labelsTheStart();
    void titlesStates();
};

void StatusTextTest::titlesTheProgressByFamily()
{
    QCOMPARE(progressTitle(ModelFamily::textLanguage), QStringLiteral("Pretraining progress"));
    QCOMPARE(progressTitle(ModelFamily::imageGeneration), QStringLiteral("Image training progress"));
    QCOMPARE(progressTitle(ModelFamily::multimodal), QStringLiteral("Multimodal training progress"));
}

void StatusTextTest::hintsAtWhatComes_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<ModelFamily>("family");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *state, ModelFamily family, const char *expected) {
        QTest::addRow("%s %d", state, static_cast<int>(family))
            << QString::fromUtf8(state) << family << QString::fromUtf8(expected);
    };
    row("preparing", ModelFamily::textLanguage,
        "Preparing data — training tokenizer and tokenizing your corpus.\nThis runs once per Training Data "
        "folder.");
    for (const ModelFamily family : {ModelFamily::imageGeneration, ModelFamily::multimodal}) {
        row("preparing", family,
            "Preparing data — indexing images in your Training Data folder.\nThis runs once per image "
            "corpus.");
    }
    for (const ModelFamily family : app::settings::allModelFamilies) {
        row("starting", family, "Warming up — first step takes ~15–20 s for JIT compile.");
        for (const char *state :
             {"", "idle", "running", "paused", "stopping", "done", "error", "Preparing", "x"}) {
            row(state, family, "Press Start to begin training.");
        }
    }
}

void StatusTextTest::hintsAtWhatComes()
{
    QFETCH(QString, state);
    QFETCH(ModelFamily, family);
    QFETCH(QString, expected);
    QCOMPARE(emptyChartHint(state, family), expected);
}

void StatusTextTest::labelsTheStart()
{
    QCOMPARE(startLabel(true), QStringLiteral("Begin training"));
    QCOMPARE(startLabel(false), QStringLiteral("Waiting for the Python backend — check Recent activity"));
}

void StatusTextTest::titlesStates()
{
    for (const char *text :
         {"idle", "starting", "preparing", "running", "paused", "stopping", "done", "error"}) {
        const QString state = QString::fromUtf8(text);
        QVERIFY(runState(state) != RunState::other);
        QCOMPARE(runStateTitle(state).toLower(), state);
        QVERIFY(runStateTitle(state) != state);
    }
    QCOMPARE(runState(QStringLiteral("Running")), RunState::other);
    QCOMPARE(runStateTitle(QStringLiteral("evaluating")), QStringLiteral("evaluating"));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::StatusTextTest)
#include "StatusTextTest.moc"
