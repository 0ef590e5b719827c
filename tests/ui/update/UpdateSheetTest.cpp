#include "ui/update/UpdateSheet.h"
#include "tests/ui/kit/Screen.h"
#include "tests/updater/CheckerFixture.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Colors.h"
#include "ui/kit/TextLabel.h"
#include "ui/update/UpdatePresenter.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QProxyStyle>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

namespace zorel::tests {

using ui::update::UpdatePresenter;

class UpdateSheetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void offersANewerRelease();
    void requirementsStandBelowTheNotes_data();
    void requirementsStandBelowTheNotes();
    void aReleaseWithoutNotesSaysSo();
    void notesAreMarkdownWithoutHtml();
    void skippingClosesTheSheet();
    void remindingLaterClosesTheSheet();
    void escapeMeansLater();
    void theInstallButtonHasTheKeyboardAndTheNotesStartAtTheirTop();
    void aRefusedInstallationIsExplainedWithAWayOut();
    void nothingNewerIsToldInAnAlert();
    void aFailedCheckIsToldWithALink();
    void anAlertBelongsToTheSheetInFront();
    void anOfferBelongsToTheSheetInFront();
    void theNextAlertTakesTheLastOnesPlace();
    void anOfferTakesAnAlertsPlace();
    void anAlertLeavesTheOffer();
    void anAlertsButtonsOnlySayWhatTheyDo();
    void everyAlertCanBeClosed_data();
    void everyAlertCanBeClosed();

private:
    bool shows(const QString &text) const;
    ui::kit::ActionButton *button(const QString &title) const;

    std::unique_ptr<CheckerFixture> m_fixture;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<UpdatePresenter> m_presenter;
    QList<QUrl> m_opened;
};

namespace {

/// As some desktops' styles have it.
class IconsOnButtons : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *answer) const override
    {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons
                   ? 1
                   : QProxyStyle::styleHint(hint, option, widget, answer);
    }
};

bool isDrawnIn(ui::kit::ColorRole role, const QPixmap &symbol)
{
    const QColor ink = ui::kit::color(role, QApplication::palette());
    return !symbol.isNull() && pixelsOf(symbol.toImage(), ink) > symbol.width() * symbol.height() / 4;
}

} // namespace

void UpdateSheetTest::init()
{
    m_fixture = std::make_unique<CheckerFixture>();
    m_window = std::make_unique<QWidget>();
    m_window->resize(800, 600);
    m_window->show();
    m_opened.clear();
    m_presenter = std::make_unique<UpdatePresenter>(
        m_fixture->checker(), [this](const QUrl &url) { m_opened << url; }, *m_window);
}

void UpdateSheetTest::cleanup()
{
    m_presenter.reset();
    m_window.reset();
    m_fixture.reset();
}

bool UpdateSheetTest::shows(const QString &text) const
{
    const auto labels = m_presenter->sheet()->findChildren<ui::kit::TextLabel *>();
    return std::any_of(labels.begin(), labels.end(),
                       [&](const auto *label) { return label->isVisible() && label->text() == text; });
}

ui::kit::ActionButton *UpdateSheetTest::button(const QString &title) const
{
    const auto buttons = m_presenter->sheet()->findChildren<ui::kit::ActionButton *>();
    for (auto *candidate : buttons) {
        if (candidate->title() == title && candidate->isVisible()) {
            return candidate;
        }
    }
    return nullptr;
}

void UpdateSheetTest::offersANewerRelease()
{
    QVERIFY(!m_presenter->sheet());
    QVERIFY(m_fixture->checkManually());
    QVERIFY(m_presenter->sheet() && m_presenter->sheet()->isVisible());
    QVERIFY(shows(QStringLiteral("A new version is available")));
    QVERIFY(shows(QStringLiteral("Talvex LLM Trainer 2.0 is available — you have 1.0")));
    QVERIFY(shows(QStringLiteral("Release notes")));
    QVERIFY(shows(QStringLiteral("Faster")));
    for (const char *title : {"Skip This Version", "Remind Me Later", "Install Update"}) {
        QVERIFY2(button(QString::fromLatin1(title)), title);
    }
    QVERIFY(!button(QStringLiteral("Try Again")));
}

void UpdateSheetTest::requirementsStandBelowTheNotes_data()
{
    QTest::addColumn<std::optional<QString>>("minOsVersion");
    QTest::addColumn<std::optional<QString>>("architecture");
    QTest::addColumn<QString>("details");
    const std::optional<QString> system = QStringLiteral("14.0");
    const std::optional<QString> processor = QStringLiteral("arm64");
    QTest::newRow("both") << system << processor << QStringLiteral("macOS 14.0 · arm64");
    QTest::newRow("the system") << system << std::optional<QString>() << QStringLiteral("macOS 14.0");
    QTest::newRow("the processor") << std::optional<QString>() << processor << QStringLiteral("arm64");
    QTest::newRow("none") << std::optional<QString>() << std::optional<QString>() << QString();
}

void UpdateSheetTest::requirementsStandBelowTheNotes()
{
    QFETCH(std::optional<QString>, minOsVersion);
    QFETCH(std::optional<QString>, architecture);
    QFETCH(QString, details);
    PublishedRelease release;
    release.minOsVersion = minOsVersion;
    release.architecture = architecture;
    m_fixture->publish(release);
    QVERIFY(m_fixture->checkManually());
    // Without any there is no empty line either.
    QCOMPARE(shows(details), !details.isEmpty());
}

void UpdateSheetTest::aReleaseWithoutNotesSaysSo()
{
    PublishedRelease release;
    release.notes.clear();
    m_fixture->publish(release);
    QVERIFY(m_fixture->checkManually());
    QVERIFY(shows(QStringLiteral("No release notes were provided for this version.")));
}

void UpdateSheetTest::notesAreMarkdownWithoutHtml()
{
    PublishedRelease release;
    release.notes = QStringLiteral("**Bold** <script>x</script>");
    m_fixture->publish(release);
    QVERIFY(m_fixture->checkManually());
    QVERIFY(shows(QStringLiteral("Bold <script>x</script>")));
}

void UpdateSheetTest::skippingClosesTheSheet()
{
    QVERIFY(m_fixture->checkManually());
    button(QStringLiteral("Skip This Version"))->click();
    QVERIFY(!m_presenter->sheet());
    QVERIFY(m_fixture->checkAutomatically());
    QVERIFY(!m_presenter->sheet());
}

void UpdateSheetTest::remindingLaterClosesTheSheet()
{
    QVERIFY(m_fixture->checkManually());
    button(QStringLiteral("Remind Me Later"))->click();
    QVERIFY(!m_presenter->sheet());
    QVERIFY(m_fixture->checkAutomatically());
    QVERIFY(m_presenter->sheet());
}

void UpdateSheetTest::escapeMeansLater()
{
    QVERIFY(m_fixture->checkManually());
    QTest::keyClick(m_presenter->sheet(), Qt::Key_Escape);
    QVERIFY(!m_presenter->sheet());
    QVERIFY(!m_fixture->checker().available());
}

void UpdateSheetTest::theInstallButtonHasTheKeyboardAndTheNotesStartAtTheirTop()
{
    PublishedRelease release;
    release.notes = QStringLiteral("# Much\n\n") + QStringLiteral("A line of it.\n\n").repeated(100);
    m_fixture->publish(release);
    QVERIFY(m_fixture->checkManually());
    QTRY_COMPARE(m_presenter->sheet()->focusWidget(), button(QStringLiteral("Install Update")));
    const auto pages = m_presenter->sheet()->findChildren<QScrollArea *>();
    for (const auto *page : pages) {
        QCOMPARE(page->verticalScrollBar()->value(), 0);
    }
}

void UpdateSheetTest::aRefusedInstallationIsExplainedWithAWayOut()
{
    PublishedRelease release;
    release.sha256 = QStringLiteral("none");
    m_fixture->publish(release);
    QVERIFY(m_fixture->checkManually());
    button(QStringLiteral("Install Update"))->click();
    QTRY_VERIFY(button(QStringLiteral("Try Again")));
    QVERIFY(shows(
        QStringLiteral("The update server returned an unexpected response. Try downloading manually from "
                       "https://talvex.example/downloads.")));
    QVERIFY(!button(QStringLiteral("Install Update")));
    button(QStringLiteral("Open Downloads Page"))->click();
    QCOMPARE(m_opened, QList<QUrl>{QUrl(QStringLiteral("https://talvex.example/downloads"))});
    button(QStringLiteral("Close"))->click();
    QVERIFY(!m_presenter->sheet());
}

void UpdateSheetTest::nothingNewerIsToldInAnAlert()
{
    PublishedRelease release;
    release.version = QStringLiteral("1.0.0");
    m_fixture->publish(release);
    QVERIFY(m_fixture->checkManually());
    QVERIFY(!m_presenter->sheet());
    QVERIFY(m_presenter->alert() && m_presenter->alert()->isVisible());
    QCOMPARE(m_presenter->alert()->text(), QStringLiteral("You're up to date"));
    QCOMPARE(m_presenter->alert()->informativeText(),
             QStringLiteral("Talvex LLM Trainer 1.0 is the latest version available."));
#ifndef Q_OS_MACOS
    QVERIFY(isDrawnIn(ui::kit::ColorRole::Success, m_presenter->alert()->iconPixmap()));
#endif
}

void UpdateSheetTest::aFailedCheckIsToldWithALink()
{
    m_fixture->answer(caldra::tests::Answer::json("no json"));
    QVERIFY(m_fixture->checkManually());
    QMessageBox *alert = m_presenter->alert();
    QVERIFY(alert);
    QCOMPARE(alert->text(), QStringLiteral("Couldn't check for updates"));
    for (QAbstractButton *candidate : alert->buttons()) {
        if (candidate->text() == QStringLiteral("Open Downloads Page")) {
            candidate->click();
        }
    }
    QCOMPARE(m_opened.size(), 1);
#ifndef Q_OS_MACOS
    QVERIFY(isDrawnIn(ui::kit::ColorRole::Warning, alert->iconPixmap()));
#endif
}

void UpdateSheetTest::anAlertBelongsToTheSheetInFront()
{
    QDialog about(m_window.get());
    about.open();
    m_fixture->answer(caldra::tests::Answer::json("no json"));
    QVERIFY(m_fixture->checkManually());
    QVERIFY(m_presenter->alert() && m_presenter->alert()->isVisible());
    QCOMPARE(m_presenter->alert()->parentWidget(), &about);
}

void UpdateSheetTest::anOfferBelongsToTheSheetInFront()
{
    QDialog library(m_window.get());
    library.open();
    m_fixture->publish(PublishedRelease());
    QVERIFY(m_fixture->checkManually());
    QVERIFY(m_presenter->sheet() && m_presenter->sheet()->isVisible());
    QCOMPARE(m_presenter->sheet()->parentWidget(), &library);
}

void UpdateSheetTest::theNextAlertTakesTheLastOnesPlace()
{
    m_fixture->answer(caldra::tests::Answer::json("no json"));
    QVERIFY(m_fixture->checkManually());
    const QPointer<QMessageBox> last = m_presenter->alert();
    m_fixture->answer(caldra::tests::Answer::json("no json"));
    QVERIFY(m_fixture->checkManually());
    QTRY_VERIFY(!last);
    QVERIFY(m_presenter->alert() && m_presenter->alert()->isVisible());
    QCOMPARE(m_presenter->alert()->parentWidget(), m_window.get());
}

void UpdateSheetTest::anOfferTakesAnAlertsPlace()
{
    m_fixture->answer(caldra::tests::Answer::json("no json"));
    QVERIFY(m_fixture->checkManually());
    const QPointer<QMessageBox> last = m_presenter->alert();
    QVERIFY(last);
    m_fixture->publish(PublishedRelease());
    QVERIFY(m_fixture->checkManually());
    QTRY_VERIFY(!last);
    QVERIFY(m_presenter->sheet() && m_presenter->sheet()->isVisible());
    QCOMPARE(m_presenter->sheet()->parentWidget(), m_window.get());
}

void UpdateSheetTest::anAlertLeavesTheOffer()
{
    for (int failures = 0; failures < 2; ++failures) {
        m_fixture->answer(caldra::tests::Answer::json("no json"));
        QVERIFY(m_fixture->checkManually());
        m_fixture->publish(PublishedRelease());
        QVERIFY(m_fixture->checkManually());
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(m_fixture->checker().presentedUpdate());
    QVERIFY(m_presenter->sheet() && m_presenter->sheet()->isVisible());
}

void UpdateSheetTest::anAlertsButtonsOnlySayWhatTheyDo()
{
    const QString before = QApplication::style()->name();
    QApplication::setStyle(new IconsOnButtons);
    QVERIFY(!QMessageBox(QMessageBox::NoIcon, {}, {}, QMessageBox::Ok).buttons().first()->icon().isNull());
    m_fixture->answer(caldra::tests::Answer::json("no json"));
    QVERIFY(m_fixture->checkManually());
    QCOMPARE(m_presenter->alert()->buttons().size(), 2);
    for (const QAbstractButton *shown : m_presenter->alert()->buttons()) {
        QVERIFY(shown->icon().isNull());
    }
    m_presenter.reset();
    QApplication::setStyle(before);
}

void UpdateSheetTest::everyAlertCanBeClosed_data()
{
    QTest::addColumn<caldra::tests::Answer>("answer");
    PublishedRelease same;
    same.version = QStringLiteral("1.0");
    QTest::newRow("up to date") << caldra::tests::Answer::json(same.answer());
    QTest::newRow("failed") << caldra::tests::Answer::json("no json");
}

void UpdateSheetTest::everyAlertCanBeClosed()
{
    QFETCH(caldra::tests::Answer, answer);
    m_fixture->answer(answer);
    QVERIFY(m_fixture->checkManually());
    const QPointer<QMessageBox> first = m_presenter->alert();
    QVERIFY(first && first->isVisible());
    QTest::keyClick(first, Qt::Key_Escape);
    QTRY_VERIFY(!first);
    // What the application's end asks of every window.
    QVERIFY(m_fixture->checkManually());
    QVERIFY(m_presenter->alert() && m_presenter->alert()->close());
    QVERIFY(m_opened.isEmpty());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::UpdateSheetTest)
#include "UpdateSheetTest.moc"
