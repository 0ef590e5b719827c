#include "ui/update/UpdatesBlock.h"
#include "tests/updater/CheckerFixture.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/TextLabel.h"

#include <QLocale>

namespace zorel::tests {

using caldra::tests::Answer;
using ui::update::UpdatesBlock;

class UpdatesBlockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void init();
    void cleanup();

    void theNoteIsAlwaysThere();
    void theButtonChecks();
    void aRunningCheckReplacesTheButton();
    void theLastCheckIsDated();
    void aFailureIsToldUntilTheNextCheck();

private:
    QStringList texts() const;
    ui::kit::ActionButton &button() const { return *m_block->findChild<ui::kit::ActionButton *>(); }

    std::unique_ptr<CheckerFixture> m_fixture;
    std::unique_ptr<UpdatesBlock> m_block;
};

void UpdatesBlockTest::init()
{
    m_fixture = std::make_unique<CheckerFixture>();
    m_block = std::make_unique<UpdatesBlock>(m_fixture->checker());
    m_block->show();
}

void UpdatesBlockTest::cleanup()
{
    m_block.reset();
    m_fixture.reset();
}

QStringList UpdatesBlockTest::texts() const
{
    QStringList texts;
    const auto labels = m_block->findChildren<ui::kit::TextLabel *>();
    for (const auto *label : labels) {
        if (label->isVisible()) {
            texts << label->text();
        }
    }
    return texts;
}

void UpdatesBlockTest::theNoteIsAlwaysThere()
{
    QCOMPARE(texts(), (QStringList{QStringLiteral("Updates are checked automatically once a day."),
                                   QStringLiteral("Not checked yet.")}));
}

void UpdatesBlockTest::theButtonChecks()
{
    QCOMPARE(button().title(), QStringLiteral("Check for Updates"));
    QCOMPARE(button().symbol(), QStringLiteral("arrow.triangle.2.circlepath"));
    QVERIFY(ui::kit::hasSymbol(button().symbol()));
    PublishedRelease same;
    same.version = QStringLiteral("1.0");
    m_fixture->publish(same);
    button().click();
    QVERIFY(m_fixture->waitForCheck());
    // It is the user's own check, which tells its result.
    QCOMPARE(m_fixture->alerts.size(), 1U);
}

void UpdatesBlockTest::aRunningCheckReplacesTheButton()
{
    m_fixture->answer(Answer::silence());
    QVERIFY(button().isVisible());
    m_fixture->checker().checkForUpdates();
    QVERIFY(!button().isVisible());
    QVERIFY(texts().contains(QStringLiteral("Checking for Updates…")));
    QVERIFY(texts().contains(QStringLiteral("Updates are checked automatically once a day.")));
}

void UpdatesBlockTest::theLastCheckIsDated()
{
    QVERIFY(m_fixture->checkManually());
    QVERIFY(button().isVisible());
    const QString date = QLocale().toString(m_fixture->now.toLocalTime(), QLocale::ShortFormat);
    QVERIFY(texts().contains(QStringLiteral("Last checked: ") + date));
}

void UpdatesBlockTest::aFailureIsToldUntilTheNextCheck()
{
    const QString failure = QStringLiteral("Last check failed: No release has been published yet.");
    m_fixture->answer(Answer::json(R"({"error":{"code":"not_found","message":"no"}})", 404));
    QVERIFY(m_fixture->checkAutomatically());
    QVERIFY(texts().contains(failure));
    m_fixture->answer(Answer::silence());
    m_fixture->checker().checkForUpdates();
    QVERIFY(!texts().contains(failure));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::UpdatesBlockTest)
#include "UpdatesBlockTest.moc"
