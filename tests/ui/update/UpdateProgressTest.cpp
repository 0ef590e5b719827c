#include "tests/updater/OfferedUpdate.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/TextLabel.h"
#include "ui/update/UpdatePresenter.h"
#include "ui/update/UpdateSheet.h"

#include <QCloseEvent>
#include <QLocale>

namespace zorel::tests {

using caldra::tests::Answer;
using ui::update::UpdatePresenter;
using updater::UpdateChecker;

/// The sheet while an update is really installed, from a host that the test holds in its hands.
class UpdateProgressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void init();
    void cleanup();

    void theDownloadIsCountedInsteadOfTheButtons_data();
    void theDownloadIsCountedInsteadOfTheButtons();
    void everyStepIsTold();
    void escapeLeavesARunningInstallationAlone();
    void theWindowsCloseButtonLeavesARunningInstallationAlone();
    void theSheetDoesNotKeepTheApplicationFromQuitting();
    void aLongFailureIsScrolled();
    void cancellingIsAFailureThatCanBeTriedAgain();

private:
    QStringList texts() const;
    ui::kit::ActionButton *button(const char *title) const;
    /// The head of an answer, and then half a kilobyte of the file.
    static Answer halfAKilobyte(const QByteArray &head);

    std::unique_ptr<OfferedUpdate> m_offer;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<UpdatePresenter> m_presenter;
};

void UpdateProgressTest::init()
{
    m_offer = std::make_unique<OfferedUpdate>();
    m_window = std::make_unique<QWidget>();
    m_window->show();
    m_presenter = std::make_unique<UpdatePresenter>(
        m_offer->checker(), [](const QUrl &) {}, *m_window);
    QVERIFY(m_presenter->sheet());
}

void UpdateProgressTest::cleanup()
{
    m_presenter.reset();
    m_window.reset();
    m_offer.reset();
}

QStringList UpdateProgressTest::texts() const
{
    QStringList texts;
    const auto labels = m_presenter->sheet()->findChildren<ui::kit::TextLabel *>();
    for (const auto *label : labels) {
        if (label->isVisible()) {
            texts << label->text();
        }
    }
    return texts;
}

ui::kit::ActionButton *UpdateProgressTest::button(const char *title) const
{
    const auto buttons = m_presenter->sheet()->findChildren<ui::kit::ActionButton *>();
    for (auto *candidate : buttons) {
        if (candidate->title() == QString::fromUtf8(title) && candidate->isVisible()) {
            return candidate;
        }
    }
    return nullptr;
}

Answer UpdateProgressTest::halfAKilobyte(const QByteArray &head)
{
    return {"HTTP/1.1 200 OK\r\n" + head + "\r\n" + QByteArray(512, 'x'), Answer::Ending::keepOpen};
}

void UpdateProgressTest::theDownloadIsCountedInsteadOfTheButtons_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::optional<double>>("fraction");
    QTest::newRow("of a total") << QByteArray("Content-Length: 1024\r\n")
                                << QStringLiteral("Downloading 512 bytes of 1.0 kB") << std::optional(0.5);
    QTest::newRow("of an unknown total")
        << QByteArray() << QStringLiteral("Downloading 512 bytes") << std::optional<double>();
}

void UpdateProgressTest::theDownloadIsCountedInsteadOfTheButtons()
{
    QFETCH(QByteArray, head);
    QFETCH(QString, text);
    QFETCH(std::optional<double>, fraction);
    QVERIFY(m_offer->archive.size() > 1024);
    m_offer->host.answer(halfAKilobyte(head));
    button("Install Update")->click();
    QTRY_VERIFY_WITH_TIMEOUT(texts().contains(text), 20'000);
    QCOMPARE(m_presenter->sheet()->findChild<ui::kit::ProgressMeter *>()->fraction(), fraction);
    for (const char *title : {"Skip This Version", "Remind Me Later", "Install Update", "Try Again"}) {
        QVERIFY2(!button(title), title);
    }
    QVERIFY(button("Cancel")->isEnabled());
}

void UpdateProgressTest::everyStepIsTold()
{
    QStringList told;
    connect(&m_offer->checker(), &UpdateChecker::installChanged, this, [&] {
        for (const QString &text : texts()) {
            if (text.endsWith(u'…') && !told.contains(text)) {
                told << text;
            }
        }
    });
    QSignalSpy quit(&m_offer->checker(), &UpdateChecker::quitRequested);
    button("Install Update")->click();
    QVERIFY(quit.wait(60'000));
    QCOMPARE(told, (QStringList{QStringLiteral("Verifying download…"), QStringLiteral("Installing update…"),
                                QStringLiteral("Restarting Talvex LLM Trainer…")}));
    // The script runs by now.
    QVERIFY(!button("Cancel")->isEnabled());
    QVERIFY(m_offer->isInstalled());
}

void UpdateProgressTest::escapeLeavesARunningInstallationAlone()
{
    m_offer->host.answer(OfferedUpdate::stalled());
    button("Install Update")->click();
    QTest::keyClick(m_presenter->sheet(), Qt::Key_Escape);
    QVERIFY(m_presenter->sheet() && m_presenter->sheet()->isVisible());
    QVERIFY(m_offer->checker().install().isUnderWay());
}

void UpdateProgressTest::theWindowsCloseButtonLeavesARunningInstallationAlone()
{
    m_offer->host.answer(OfferedUpdate::stalled());
    button("Install Update")->click();
    QCloseEvent byTheUser;
    QSpontaneKeyEvent::setSpontaneous(&byTheUser);
    QCoreApplication::instance()->notify(m_presenter->sheet(), &byTheUser);
    QVERIFY(!byTheUser.isAccepted());
    QVERIFY(m_presenter->sheet()->isVisible());
    QVERIFY(m_offer->checker().install().isUnderWay());
}

void UpdateProgressTest::theSheetDoesNotKeepTheApplicationFromQuitting()
{
    bool quits = false;
    connect(&m_offer->checker(), &UpdateChecker::quitRequested, this, [&] {
        // What QCoreApplication::quit asks of every window.
        quits = m_presenter->sheet()->close() && m_window->close();
    });
    button("Install Update")->click();
    QTRY_VERIFY_WITH_TIMEOUT(quits, 60'000);
    QVERIFY(m_offer->isInstalled());
}

void UpdateProgressTest::aLongFailureIsScrolled()
{
    m_presenter.reset();
    m_offer->destroyChecker();
    m_offer->surroundings.install.targetBundle =
        QStringLiteral("/nowhere/") + QStringLiteral("and further ").repeated(300) + QStringLiteral("/x.app");
    QVERIFY(m_offer->checkManually());
    m_presenter = std::make_unique<UpdatePresenter>(
        m_offer->checker(), [](const QUrl &) {}, *m_window);
    const int before = m_presenter->sheet()->sizeHint().height();
    button("Install Update")->click();
    QTRY_VERIFY_WITH_TIMEOUT(button("Try Again"), 60'000);
    QCOMPARE(m_presenter->sheet()->focusWidget(), button("Try Again"));
    QVERIFY(texts().contains(m_offer->failure()));
    QVERIFY(m_offer->failure().size() > 3000);
    QVERIFY(m_presenter->sheet()->sizeHint().height() < before + 150);
}

void UpdateProgressTest::cancellingIsAFailureThatCanBeTriedAgain()
{
    m_offer->host.answer(OfferedUpdate::stalled());
    button("Install Update")->click();
    button("Cancel")->click();
    QTRY_VERIFY_WITH_TIMEOUT(button("Try Again"), 60'000);
    QVERIFY(texts().contains(QStringLiteral("Update cancelled.")));
    QVERIFY(button("Open Downloads Page"));
    QVERIFY(!button("Cancel"));
    m_offer->host.answer(Answer::with(200, "application/gzip", m_offer->archive));
    QSignalSpy quit(&m_offer->checker(), &UpdateChecker::quitRequested);
    button("Try Again")->click();
    QVERIFY(button("Cancel"));
    QVERIFY(quit.wait(60'000));
    QVERIFY(m_offer->isInstalled());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::UpdateProgressTest)
#include "UpdateProgressTest.moc"
