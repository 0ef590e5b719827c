#include "ui/dashboard/FolderAccessBanner.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Colors.h"

namespace zorel::tests {

using app::folders::ConfiguredFolder;
using ui::dashboard::FolderAccessBanner;

class FolderAccessBannerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isShownOnlyWhileAFolderIsBlocked_data();
    void isShownOnlyWhileAFolderIsBlocked();
    void showsItsTexts();
    void showsItsSymbols();
    void opensThePrivacySettings();
    void checksEveryFolderAgain();
    void staysWhereItIsDuringACheck();
    void isOfTheColourOfWarnings();

private:
    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<QWidget> m_window;
    FolderAccessBanner *m_banner = nullptr;
};

void FolderAccessBannerTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_window = std::make_unique<QWidget>();
    m_banner = new FolderAccessBanner(m_stage->access, m_window.get());
    m_window->show();
}

void FolderAccessBannerTest::cleanup()
{
    m_window.reset();
    m_stage.reset();
}

void FolderAccessBannerTest::isShownOnlyWhileAFolderIsBlocked_data()
{
    QTest::addColumn<ConfiguredFolder>("folder");
    QTest::newRow("training data") << ConfiguredFolder::trainingData;
    QTest::newRow("finished models") << ConfiguredFolder::finishedModels;
    QTest::newRow("working directory") << ConfiguredFolder::modelRoot;
}

void FolderAccessBannerTest::isShownOnlyWhileAFolderIsBlocked()
{
    QFETCH(ConfiguredFolder, folder);
    QVERIFY(!m_banner->isVisible());
    m_stage->setBlocked({folder});
    QVERIFY(m_banner->isVisible());
    m_stage->blockedPaths.clear();
    m_stage->access.recheck(folder);
    QVERIFY(!m_banner->isVisible());
}

void FolderAccessBannerTest::showsItsTexts()
{
    m_stage->setBlocked(
        {ConfiguredFolder::trainingData, ConfiguredFolder::finishedModels, ConfiguredFolder::modelRoot});
    for (const char *text : {"Talvex LLM Trainer needs folder access",
                             "Access to Training Data, Finished Models, and Model Working Directory is "
                             "blocked. Allow it in System Settings "
                             "→ Privacy & Security → Files & Folders, then come back and press refresh.",
                             "Open Privacy Settings", "Re-check folder access"}) {
        QVERIFY2(shows(m_banner, QString::fromUtf8(text)), text);
    }
    m_stage->setBlocked({ConfiguredFolder::modelRoot});
    QVERIFY(shows(m_banner,
                  QStringLiteral(
                      "Access to Model Working Directory is blocked. Allow it in System Settings → Privacy & "
                      "Security → Files & Folders, then come back and press refresh.")));
}

void FolderAccessBannerTest::showsItsSymbols()
{
    m_stage->setBlocked({ConfiguredFolder::modelRoot});
    QCOMPARE(symbols(m_banner).first(), QStringLiteral("lock.shield.fill"));
    QCOMPARE(qobject_cast<ui::kit::ActionButton *>(button(m_banner, QStringLiteral("Open Privacy Settings")))
                 ->symbol(),
             QStringLiteral("arrow.up.right.square"));
}

void FolderAccessBannerTest::opensThePrivacySettings()
{
    m_stage->setBlocked({ConfiguredFolder::modelRoot});
    button(m_banner, QStringLiteral("Open Privacy Settings"))->click();
    QVERIFY(!m_stage->openedUrls.empty());
}

void FolderAccessBannerTest::checksEveryFolderAgain()
{
    m_stage->setBlocked(
        {ConfiguredFolder::trainingData, ConfiguredFolder::finishedModels, ConfiguredFolder::modelRoot});
    m_stage->blockedPaths.clear();
    button(m_banner, QStringLiteral("Re-check folder access"))->click();
    QVERIFY(!m_stage->access.anyBlocked());
    QVERIFY(!m_banner->isVisible());
}

void FolderAccessBannerTest::staysWhereItIsDuringACheck()
{
    m_stage->setBlocked({ConfiguredFolder::trainingData});
    QAbstractButton *recheck = button(m_banner, QStringLiteral("Re-check folder access"));
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    recheck->setFocus();
    // The one is free when the other is found to be blocked.
    m_stage->blockedPaths = {m_stage->settings.modelRootPath()};
    recheck->click();
    QVERIFY(m_banner->isVisible());
    QVERIFY(recheck->hasFocus());
}

void FolderAccessBannerTest::isOfTheColourOfWarnings()
{
    m_stage->setBlocked({ConfiguredFolder::modelRoot});
    const QColor corner =
        m_banner->grab().toImage().pixelColor(m_banner->width() - 8, m_banner->height() - 8);
    QCOMPARE(corner.name(), ui::kit::tint(ui::kit::ColorRole::Warning, m_banner->palette()).name());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::FolderAccessBannerTest)
#include "FolderAccessBannerTest.moc"
