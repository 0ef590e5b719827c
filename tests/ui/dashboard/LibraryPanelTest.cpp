#include "ui/dashboard/LibraryPanel.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/kit/Badge.h"

#include <QDir>
#include <QFile>

namespace zorel::tests {

using ui::dashboard::LibraryPanel;

class LibraryPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsItsTexts();
    void showsItsSymbols();
    void opensTheModelLibrary();
    void showsTheNumberOfArchivedRuns();
    void revealsFolders();
    void revealsThePresentFolders();
    void opensTheSettings();

private:
    void press(const char *name) const { button(m_panel.get(), QString::fromUtf8(name))->click(); }

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<LibraryPanel> m_panel;
};

void LibraryPanelTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_panel = std::make_unique<LibraryPanel>(m_stage->backend, m_stage->settings, m_stage->actions);
    m_panel->show();
}

void LibraryPanelTest::cleanup()
{
    m_panel.reset();
    m_stage.reset();
}

void LibraryPanelTest::showsItsTexts()
{
    for (const char *text :
         {"Library",
          "Your training corpora live in Training Data. Every completed run is archived under Finished "
          "models. Browse "
          "past runs to inspect neuron pathways and compare retrainings.",
          "Browse Trained Models", "⌘⇧B · inspect archived runs and compare retrainings",
          "Open Training Data", "Open Finished Models in Finder", "Library Root", "Open Settings (⌘,)"}) {
        QVERIFY2(shows(m_panel.get(), QString::fromUtf8(text)), text);
    }
}

void LibraryPanelTest::showsItsSymbols()
{
    QCOMPARE(symbols(m_panel.get()),
             QStringList({QStringLiteral("tray.full.fill"), QStringLiteral("brain.head.profile"),
                          QStringLiteral("folder"), QStringLiteral("shippingbox.fill"),
                          QStringLiteral("house.fill"), QStringLiteral("gearshape.fill")}));
}

void LibraryPanelTest::opensTheModelLibrary()
{
    press("Browse Trained Models");
    QVERIFY(m_stage->backend.showModelLibrary());
}

void LibraryPanelTest::showsTheNumberOfArchivedRuns()
{
    const auto *count = m_panel->findChild<ui::kit::Badge *>();
    QCOMPARE(count->text(), QStringLiteral("0"));
    const QDir runs(m_stage->settings.finishedModelsPath());
    QVERIFY(runs.mkpath(QStringLiteral("2026-06-01_21-44-12")));
    QFile manifest(runs.filePath(QStringLiteral("2026-06-01_21-44-12/manifest.json")));
    QVERIFY(manifest.open(QIODevice::WriteOnly));
    m_stage->backend.sendPaths();
    QCOMPARE(count->text(), QStringLiteral("1"));
}

void LibraryPanelTest::revealsFolders()
{
    press("Open Training Data");
    press("Open Finished Models in Finder");
    press("Library Root");
    QCOMPARE(m_stage->revealed,
             (QStringList{m_stage->settings.trainingDataPath(), m_stage->settings.finishedModelsPath(),
                          m_stage->settings.libraryRoot()}));
}

void LibraryPanelTest::revealsThePresentFolders()
{
    m_stage->settings.setTrainingDataPath(QStringLiteral("~/my \"texts\""));
    m_stage->settings.setFinishedModelsPath(QStringLiteral("/models\nעברית"));
    press("Open Training Data");
    press("Open Finished Models in Finder");
    press("Library Root");
    QCOMPARE(m_stage->revealed,
             (QStringList{m_stage->sidecar.pathOf(QStringLiteral("user/my \"texts\"")),
                          QStringLiteral("/models\nעברית"), m_stage->settings.libraryRoot()}));
}

void LibraryPanelTest::opensTheSettings()
{
    press("Open Settings (⌘,)");
    QCOMPARE(m_stage->settingsOpenings, 1);
    QVERIFY(m_stage->revealed.isEmpty());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::LibraryPanelTest)
#include "LibraryPanelTest.moc"
