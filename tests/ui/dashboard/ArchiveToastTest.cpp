#include "ui/dashboard/ArchiveToast.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/Toast.h"

namespace zorel::tests {

using backend::protocol::ArchivedModel;
using ui::dashboard::ArchiveToast;

class ArchiveToastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isShownWhileThereIsANotice();
    void showsItsTexts();
    void showsItsSymbol();
    void showsTheNewestArchive();
    void revealsTheArchive();
    void showsAllOfAnOrdinaryName();
    void cutsALongName();
    void isShownWhenTheNoticeCameFirst();

private:
    void archive(const QString &folderName)
    {
        m_stage->backend.apply(
            ArchivedModel{QStringLiteral("/models/") + folderName, folderName, 100, 2.5, 60});
    }
    ui::kit::Toast *toast() const { return m_window->findChild<ui::kit::Toast *>(); }

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<QWidget> m_window;
};

void ArchiveToastTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_window = std::make_unique<QWidget>();
    m_window->resize(640, 480);
    new ArchiveToast(m_stage->backend, m_stage->actions, m_window.get());
    m_window->show();
}

void ArchiveToastTest::cleanup()
{
    m_window.reset();
    m_stage.reset();
}

void ArchiveToastTest::isShownWhileThereIsANotice()
{
    QVERIFY(!toast()->isVisible());
    archive(QStringLiteral("2026-06-01_21-44-12"));
    QVERIFY(toast()->isVisible());
    QVERIFY(m_window->rect().contains(toast()->geometry()));
    // The controller ends it.
    QCOMPARE(m_stage->sidecar.timers.size(), std::size_t{1});
    m_stage->sidecar.timers.front().action();
    QVERIFY(!toast()->isVisible());
}

void ArchiveToastTest::showsItsTexts()
{
    archive(QStringLiteral("2026-06-01_21-44-12"));
    for (const char *text : {"Model archived", "2026-06-01_21-44-12", "Reveal in Finder"}) {
        QVERIFY2(shows(toast(), QString::fromLatin1(text)), text);
    }
    // What is read out when it appears.
    QCOMPARE(toast()->accessibleName(), QStringLiteral("Model archived: 2026-06-01_21-44-12"));
}

void ArchiveToastTest::showsItsSymbol()
{
    archive(QStringLiteral("run"));
    QCOMPARE(symbols(toast()), QStringList(QStringLiteral("checkmark.seal.fill")));
}

void ArchiveToastTest::showsTheNewestArchive()
{
    archive(QStringLiteral("first"));
    archive(QStringLiteral("second"));
    QVERIFY(shows(toast(), QStringLiteral("second")) && !shows(toast(), QStringLiteral("first")));
    m_stage->sidecar.timers.front().action();
    QVERIFY(toast()->isVisible());
    m_stage->sidecar.timers.back().action();
    QVERIFY(!toast()->isVisible());
}

void ArchiveToastTest::revealsTheArchive()
{
    archive(QStringLiteral("run \"7\"\nעברית"));
    button(toast(), QStringLiteral("Reveal in Finder"))->click();
    QCOMPARE(m_stage->revealed, QStringList{QStringLiteral("/models/run \"7\"\nעברית")});
}

void ArchiveToastTest::showsAllOfAnOrdinaryName()
{
    const QString name = QStringLiteral("2026-06-01_21-44-12");
    m_window->resize(700, 500); // while it is hidden
    archive(name);
    QCOMPARE(toast()->findChild<ui::kit::ElidedLabel *>()->shownText(), name);
}

void ArchiveToastTest::cutsALongName()
{
    archive(QString(10'000, QLatin1Char('x')));
    QVERIFY(m_window->rect().contains(toast()->geometry()));
    QAbstractButton *reveal = button(toast(), QStringLiteral("Reveal in Finder"));
    QVERIFY(toast()->rect().contains(QRect(reveal->mapTo(toast(), QPoint(0, 0)), reveal->size())));
    QCOMPARE(reveal->width(), reveal->sizeHint().width());
}

void ArchiveToastTest::isShownWhenTheNoticeCameFirst()
{
    archive(QStringLiteral("early"));
    QWidget window;
    window.resize(640, 480);
    new ArchiveToast(m_stage->backend, m_stage->actions, &window);
    window.show();
    QVERIFY(window.findChild<ui::kit::Toast *>()->isVisible());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ArchiveToastTest)
#include "ArchiveToastTest.moc"
