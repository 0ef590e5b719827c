#include "app/shell/SettingsView.h"
#include "app/folders/FolderAccessChecker.h"
#include "app/settings/ZorelSettings.h"
#include "app/shell/FolderRow.h"
#include "backend/bridge/BackendController.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Card.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QDir>
#include <QFileDialog>
#include <QLayout>
#include <QTabWidget>
#include <QTest>

namespace zorel::tests {

using app::folders::ConfiguredFolder;
using app::folders::FolderAccessChecker;
using app::shell::FolderRow;
using app::shell::SettingsView;

class SettingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void hasThreeTabs();
    void showsItsSymbols();
    void cardsAreNoHigherThanTheyNeed();
    void theLibraryTabSaysWhatTheFoldersAreFor();
    void theAdvancedTabSaysWhatTheWorkingDirectoryIsFor();
    void aRowShowsPathAndBadges();
    void onlyTheExactDefaultPathCountsAsDefault();
    void theDefaultFolderChosenByHandIsTheDefaultOnlyByItsExactPath();
    void aBlockedFolderHasAWarningAndItsButtons();
    void aChosenFolderIsStoredMadeSentAndChecked();
    void theChooserTakesFoldersAloneAndStartsInTheCurrentOne();
    void cancellingTheChooserChangesNothing();
    void revealExpandsThePathAndCreatesNothing();
    void resettingTheLibraryFoldersLeavesTheWorkingDirectory();
    void resettingTheWorkingDirectoryLeavesTheLibraryFolders();
    void everyButtonHasANameAndTakesTheKeyboard();

private:
    FolderRow *row(ConfiguredFolder folder) const;
    ui::kit::ActionButton *button(const QWidget *parent, const QString &title) const;
    static QStringList texts(const QWidget *parent);
    static QStringList badges(const FolderRow *row);
    /// Of badges and labels, sorted.
    static QStringList symbols(const FolderRow *row);
    void choose(ConfiguredFolder folder, const QString &path);
    int pathsSent() const;

    std::unique_ptr<FakeSidecar> m_sidecar;
    QString m_home;
    std::unique_ptr<InMemoryUserDefaults> m_store;
    std::unique_ptr<app::settings::ZorelSettings> m_settings;
    std::unique_ptr<backend::bridge::BackendController> m_backend;
    std::unique_ptr<FolderAccessChecker> m_access;
    std::unique_ptr<SettingsView> m_view;
    QStringList m_probed;
    QStringList m_blocked;
    QStringList m_revealed;
    int m_privacyOpened = 0;
};

void SettingsViewTest::init()
{
    m_sidecar = std::make_unique<FakeSidecar>();
    m_home = m_sidecar->pathOf(QStringLiteral("home"));
    m_store = std::make_unique<InMemoryUserDefaults>();
    m_settings =
        std::make_unique<app::settings::ZorelSettings>(*m_store, platform::StandardFolders::below(m_home));
    m_backend = std::make_unique<backend::bridge::BackendController>(*m_settings, m_sidecar->surroundings());
    FolderAccessChecker::Surroundings surroundings;
    surroundings.probe = [this](const QString &path) {
        m_probed << path;
        return !m_blocked.contains(path);
    };
    surroundings.openUrl = [this](const QUrl &) {
        return ++m_privacyOpened > 0;
    };
    m_access = std::make_unique<FolderAccessChecker>(*m_settings, surroundings);
    auto *about = new QWidget;
    m_view = std::make_unique<SettingsView>(
        *m_settings, *m_backend, *m_access, [this](const QString &path) { m_revealed << path; }, about);
    m_probed.clear();
    m_blocked.clear();
    m_revealed.clear();
    m_privacyOpened = 0;
}

void SettingsViewTest::cleanup()
{
    m_view.reset();
    m_access.reset();
    m_backend.reset();
}

FolderRow *SettingsViewTest::row(ConfiguredFolder folder) const
{
    const auto rows = m_view->findChildren<FolderRow *>();
    for (auto *candidate : rows) {
        if (candidate->folder() == folder) {
            return candidate;
        }
    }
    return nullptr;
}

ui::kit::ActionButton *SettingsViewTest::button(const QWidget *parent, const QString &title) const
{
    const auto buttons = parent->findChildren<ui::kit::ActionButton *>();
    for (auto *candidate : buttons) {
        if (candidate->title() == title) {
            return candidate;
        }
    }
    return nullptr;
}

QStringList SettingsViewTest::texts(const QWidget *parent)
{
    QStringList found;
    const auto labels = parent->findChildren<ui::kit::TextLabel *>();
    for (const auto *label : labels) {
        found << label->text();
    }
    return found;
}

QStringList SettingsViewTest::badges(const FolderRow *row)
{
    QStringList found;
    const auto all = row->findChildren<ui::kit::Badge *>();
    for (const auto *badge : all) {
        found << badge->text();
    }
    return found;
}

QStringList SettingsViewTest::symbols(const FolderRow *row)
{
    QStringList found;
    for (const auto *badge : row->findChildren<ui::kit::Badge *>()) {
        found << badge->symbol();
    }
    for (const auto *label : row->findChildren<ui::kit::SymbolLabel *>()) {
        if (label->isVisibleTo(row)) {
            found << label->symbol();
        }
    }
    found.removeAll(QString());
    found.sort();
    return found;
}

/// As the user does: selects it in the chooser and confirms.
void SettingsViewTest::choose(ConfiguredFolder folder, const QString &path)
{
    button(row(folder), QStringLiteral("Choose…"))->click();
    QFileDialog *chooser = m_view->folderChooser();
    chooser->selectFile(path);
    QVERIFY(QMetaObject::invokeMethod(chooser, "accept"));
}

int SettingsViewTest::pathsSent() const
{
    const QString skipped = QStringLiteral("× send(set_paths) skipped — Python backend is not running");
    return static_cast<int>(std::count(m_backend->logLines().begin(), m_backend->logLines().end(), skipped));
}

void SettingsViewTest::hasThreeTabs()
{
    const auto *tabs = m_view->findChild<QTabWidget *>();
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Library"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Advanced"));
    QCOMPARE(tabs->tabText(2), QStringLiteral("About"));
}

void SettingsViewTest::showsItsSymbols()
{
    const auto *tabs = m_view->findChild<QTabWidget *>();
    QCOMPARE(tabs->tabIcon(0).name(), QStringLiteral("tray.full.fill"));
    QCOMPARE(tabs->tabIcon(1).name(), QStringLiteral("wrench.and.screwdriver"));
    QCOMPARE(tabs->tabIcon(2).name(), QStringLiteral("info.circle"));
    const QString warning = QStringLiteral("exclamationmark.triangle.fill");
    QCOMPARE(symbols(row(ConfiguredFolder::trainingData)),
             QStringList({QStringLiteral("checkmark.shield.fill"), QStringLiteral("folder")}));
    m_blocked << m_settings->finishedModelsPath() << m_settings->modelRootPath();
    m_access->refresh();
    const QString blocked = QStringLiteral("exclamationmark.shield.fill");
    QCOMPARE(symbols(row(ConfiguredFolder::finishedModels)),
             QStringList({blocked, warning, QStringLiteral("shippingbox.fill")}));
    QCOMPARE(symbols(row(ConfiguredFolder::modelRoot)),
             QStringList({blocked, warning, QStringLiteral("internaldrive.fill")}));
}

void SettingsViewTest::cardsAreNoHigherThanTheyNeed()
{
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    auto *tabs = m_view->findChild<QTabWidget *>();
    for (const int tab : {0, 1}) {
        tabs->setCurrentIndex(tab);
        const auto *card = tabs->currentWidget()->findChild<ui::kit::Card *>();
        QTRY_COMPARE(card->height(), card->layout()->totalHeightForWidth(card->width()));
    }
}

void SettingsViewTest::theLibraryTabSaysWhatTheFoldersAreFor()
{
    const QStringList found = texts(m_view->findChild<QTabWidget *>()->widget(0));
    qsizetype position = 0;
    for (const QString &text :
         {QStringLiteral("Folders"), QStringLiteral("Training Data"),
          QStringLiteral("Drop pretraining and fine-tuning corpora into this folder. Each corpus should live "
                         "in its own subfolder."),
          QStringLiteral("Finished Models"),
          QStringLiteral("Every completed training run is archived here under a subfolder named with the "
                         "date and time it finished."),
          QStringLiteral(
              "Training Data holds text corpora or image folders depending on the model type you selected. "
              "Finished models is where completed runs are saved."),
          QStringLiteral("Changes take effect on the next training run. An in-progress run keeps writing to "
                         "its original "
                         "location until it finishes.")}) {
        position = found.indexOf(text, position);
        QVERIFY2(position >= 0, qPrintable(text));
    }
}

void SettingsViewTest::theAdvancedTabSaysWhatTheWorkingDirectoryIsFor()
{
    const QStringList found = texts(m_view->findChild<QTabWidget *>()->widget(1));
    qsizetype position = 0;
    for (const QString &text :
         {QStringLiteral("Working Directory"), QStringLiteral("Model Working Directory"),
          QStringLiteral("Where Zorel keeps intermediate state during training — checkpoints, tokenizer "
                         "cache, prepared tokens, "
                         "and logs. These files can be large; only change this if you want to put them on a "
                         "different disk."),
          QStringLiteral("Default: ~/Library/Application Support/Zorel/Model"),
          QStringLiteral("Changes take effect on the next training run. An in-progress run keeps writing to "
                         "its original "
                         "location until it finishes.")}) {
        position = found.indexOf(text, position);
        QVERIFY2(position >= 0, qPrintable(text));
    }
}

void SettingsViewTest::aRowShowsPathAndBadges()
{
    const FolderRow *data = row(ConfiguredFolder::trainingData);
    QCOMPARE(data->findChild<ui::kit::ElidedLabel *>()->text(),
             m_home + QStringLiteral("/Documents/Zorel/Training Data"));
    QCOMPARE(badges(data), QStringList({QStringLiteral("Default"), QStringLiteral("Allowed")}));
    QVERIFY(!button(data, QStringLiteral("Re-check after granting"))->isVisibleTo(data));
    m_settings->setTrainingDataPath(QStringLiteral("~/Texts"));
    QCOMPARE(data->findChild<ui::kit::ElidedLabel *>()->text(), QStringLiteral("~/Texts"));
    QCOMPARE(badges(data), QStringList({QStringLiteral("Custom"), QStringLiteral("Allowed")}));
}

void SettingsViewTest::onlyTheExactDefaultPathCountsAsDefault()
{
    const FolderRow *root = row(ConfiguredFolder::modelRoot);
    m_settings->setModelRootPath(QStringLiteral("~/Library/Application Support/Zorel/Model"));
    QCOMPARE(badges(root).first(), QStringLiteral("Custom"));
    m_settings->setModelRootPath(m_settings->defaultModelRootPath());
    QCOMPARE(badges(root).first(), QStringLiteral("Default"));
}

void SettingsViewTest::theDefaultFolderChosenByHandIsTheDefaultOnlyByItsExactPath()
{
    const QString folder = m_settings->defaultTrainingDataPath();
    QVERIFY(QDir().mkpath(folder));
    const QString link = m_sidecar->pathOf(QStringLiteral("link"));
    QVERIFY(QFile::link(folder, link));
    const FolderRow *data = row(ConfiguredFolder::trainingData);

    choose(ConfiguredFolder::trainingData, link);
    QCOMPARE(m_settings->trainingDataPath(), link);
    QCOMPARE(badges(data).first(), QStringLiteral("Custom"));

    choose(ConfiguredFolder::trainingData, folder);
    QCOMPARE(m_settings->trainingDataPath(), folder);
    QCOMPARE(badges(data).first(), QStringLiteral("Default"));
    QCOMPARE(pathsSent(), 2);
}

void SettingsViewTest::aBlockedFolderHasAWarningAndItsButtons()
{
    m_blocked << m_settings->finishedModelsPath();
    m_access->refresh();
    const FolderRow *finished = row(ConfiguredFolder::finishedModels);
    QCOMPARE(badges(finished).last(), QStringLiteral("Needs access"));
    QVERIFY(texts(finished).contains(QStringLiteral("macOS is blocking access to this folder.")));
    const FolderRow *free = row(ConfiguredFolder::trainingData);
    QCOMPARE(badges(free).last(), QStringLiteral("Allowed"));
    QVERIFY(!button(free, QStringLiteral("Re-check after granting"))->isVisibleTo(free));
    QVERIFY(!symbols(free).contains(QStringLiteral("exclamationmark.triangle.fill")));

    auto *grant = button(finished, QStringLiteral("Grant Access in System Settings"));
    auto *recheck = button(finished, QStringLiteral("Re-check after granting"));
    QVERIFY(grant->isVisibleTo(finished) && recheck->isVisibleTo(finished));
    QCOMPARE(grant->symbol(), QStringLiteral("lock.open.fill"));
    // Which of several it is about is seen, but has to be said.
    QCOMPARE(grant->accessibleDescription(), QStringLiteral("Finished Models"));
    QCOMPARE(recheck->accessibleDescription(), QStringLiteral("Finished Models"));
    grant->click();
    QCOMPARE(m_privacyOpened, 1);

    m_blocked.clear();
    m_probed.clear();
    recheck->click();
    QCOMPARE(m_probed, QStringList{m_settings->finishedModelsPath()});
    QCOMPARE(badges(finished).last(), QStringLiteral("Allowed"));
    QVERIFY(!recheck->isVisibleTo(finished));
}

void SettingsViewTest::aChosenFolderIsStoredMadeSentAndChecked()
{
    const QString chosen = m_sidecar->pathOf(QStringLiteral("chosen “folder”"));
    QDir().mkpath(chosen);
    choose(ConfiguredFolder::trainingData, chosen);

    QCOMPARE(m_settings->trainingDataPath(), chosen);
    QCOMPARE(m_store->values.value(QStringLiteral("zorel.trainingDataPath")).toString(), chosen);
    QVERIFY(QFileInfo(m_settings->finishedModelsPath()).isDir());
    QCOMPARE(pathsSent(), 1);
    QCOMPARE(m_probed, QStringList{chosen});
    QCOMPARE(badges(row(ConfiguredFolder::trainingData)).first(), QStringLiteral("Custom"));
}

void SettingsViewTest::theChooserTakesFoldersAloneAndStartsInTheCurrentOne()
{
    QDir().mkpath(m_home + QStringLiteral("/Texts"));
    m_settings->setTrainingDataPath(QStringLiteral("~/Texts"));
    button(row(ConfiguredFolder::trainingData), QStringLiteral("Choose…"))->click();
    const QFileDialog *chooser = m_view->folderChooser();
    QCOMPARE(chooser->fileMode(), QFileDialog::Directory);
    QVERIFY(chooser->testOption(QFileDialog::ShowDirsOnly));
    QVERIFY(!chooser->testOption(QFileDialog::ReadOnly));
    QCOMPARE(chooser->labelText(QFileDialog::Accept), QStringLiteral("Choose"));
    QCOMPARE(chooser->directory().absolutePath(), m_home + QStringLiteral("/Texts"));
}

void SettingsViewTest::cancellingTheChooserChangesNothing()
{
    button(row(ConfiguredFolder::modelRoot), QStringLiteral("Choose…"))->click();
    m_view->folderChooser()->reject();
    QVERIFY(m_store->writes.empty());
    QVERIFY(m_probed.isEmpty());
    QCOMPARE(pathsSent(), 0);
}

void SettingsViewTest::revealExpandsThePathAndCreatesNothing()
{
    m_settings->setTrainingDataPath(QStringLiteral("~/Nowhere yet"));
    button(row(ConfiguredFolder::trainingData), QStringLiteral("Reveal in Finder"))->click();
    QCOMPARE(m_revealed, QStringList{m_home + QStringLiteral("/Nowhere yet")});
    QVERIFY(!QFileInfo::exists(m_revealed.first()));
}

void SettingsViewTest::resettingTheLibraryFoldersLeavesTheWorkingDirectory()
{
    m_settings->setTrainingDataPath(QStringLiteral("/a"));
    m_settings->setFinishedModelsPath(QStringLiteral("/b"));
    m_settings->setModelRootPath(m_sidecar->pathOf(QStringLiteral("root")));
    m_store->writes.clear();
    button(m_view.get(), QStringLiteral("Reset Folders to Defaults"))->click();
    QCOMPARE(m_settings->trainingDataPath(), m_settings->defaultTrainingDataPath());
    QCOMPARE(m_settings->finishedModelsPath(), m_settings->defaultFinishedModelsPath());
    QCOMPARE(m_settings->modelRootPath(), m_sidecar->pathOf(QStringLiteral("root")));
    QCOMPARE(m_store->writes.size(), std::size_t{2});
    QVERIFY(QFileInfo(m_settings->trainingDataPath()).isDir());
    QCOMPARE(pathsSent(), 1);
    QCOMPARE(m_probed, QStringList({m_settings->trainingDataPath(), m_settings->finishedModelsPath(),
                                    m_settings->modelRootPath()}));
}

void SettingsViewTest::resettingTheWorkingDirectoryLeavesTheLibraryFolders()
{
    m_settings->setTrainingDataPath(m_sidecar->pathOf(QStringLiteral("data")));
    m_settings->setModelRootPath(QStringLiteral("/c"));
    button(m_view.get(), QStringLiteral("Reset Working Directory"))->click();
    QCOMPARE(m_settings->modelRootPath(), m_settings->defaultModelRootPath());
    QCOMPARE(m_settings->trainingDataPath(), m_sidecar->pathOf(QStringLiteral("data")));
    QVERIFY(QFileInfo(m_settings->modelRootPath()).isDir());
    QCOMPARE(pathsSent(), 1);
    QCOMPARE(m_probed.size(), 3);
}

void SettingsViewTest::everyButtonHasANameAndTakesTheKeyboard()
{
    const auto buttons = m_view->findChildren<ui::kit::ActionButton *>();
    QVERIFY(buttons.size() >= 14);
    for (const auto *candidate : buttons) {
        QVERIFY(!candidate->accessibleName().isEmpty());
        QVERIFY(candidate->focusPolicy() & Qt::TabFocus);
    }
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::SettingsViewTest)
#include "SettingsViewTest.moc"
