#include "ui/library/RunListModel.h"
#include "tests/ui/library/Stage.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

namespace zorel::tests {

using ui::library::RunListModel;

class RunListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void listsGroupsWithTheirRuns();
    void aGroupCannotBeChosen();
    void findsARunByItsId();
    void marksTheBaselineAlone();
    void describesARunInWords();
    void roundsLossesToTheEvenDigit();
    void keepsTheBaselineWhenTheListIsReplaced();
    void isEmptyWithoutRuns();

private:
    QModelIndex run(const QString &folderName) const
    {
        return m_runs->model.indexOf(m_runs->folders.pathOf(folderName));
    }

    std::unique_ptr<ListedRuns> m_runs;
};

void RunListModelTest::init()
{
    m_runs = std::make_unique<ListedRuns>();
    m_runs->folders.addRun(
        QStringLiteral("2026-01-01_00-00-00"),
        R"({"model_identity":{"name":"poet","version":"1.0.0"},"archived_at":"2026-01-01T00:00:00Z","final_loss":2.34567})");
    m_runs->folders.addRun(
        QStringLiteral("2026-01-02_00-00-00"),
        R"({"model_identity":{"name":"poet","version":"1.1.0"},"archived_at":"2026-01-02T00:00:00Z","final_loss":2.1})");
    m_runs->folders.addRun(
        QStringLiteral("2026-01-03_00-00-00"),
        R"({"model_identity":{"name":"Artist","version":"0.1"},"archived_at":"2026-01-03T00:00:00Z","final_loss":0.0625})");
    new QAbstractItemModelTester(&m_runs->model, QAbstractItemModelTester::FailureReportingMode::QtTest,
                                 &m_runs->model);
    m_runs->list();
}

void RunListModelTest::listsGroupsWithTheirRuns()
{
    QStringList rows;
    for (int row = 0; row < m_runs->model.rowCount(); ++row) {
        rows << m_runs->model.index(row).data().toString();
    }
    QCOMPARE(rows,
             QStringList({QStringLiteral("Artist"), QStringLiteral("Artist v0.1"), QStringLiteral("poet"),
                          QStringLiteral("poet v1.1.0"), QStringLiteral("poet v1.0.0")}));
}

void RunListModelTest::aGroupCannotBeChosen()
{
    QVERIFY(m_runs->model.isGroup(m_runs->model.index(0)));
    QVERIFY(!m_runs->model.run(m_runs->model.index(0)));
    QVERIFY(!m_runs->model.flags(m_runs->model.index(0)).testFlag(Qt::ItemIsSelectable));
    QVERIFY(m_runs->model.flags(m_runs->model.index(1)).testFlag(Qt::ItemIsSelectable));
    QCOMPARE(m_runs->model.firstRun(), m_runs->model.index(1));
}

void RunListModelTest::findsARunByItsId()
{
    const QModelIndex index = run(QStringLiteral("2026-01-01_00-00-00"));
    QCOMPARE(index.row(), 4);
    QCOMPARE(m_runs->model.run(index)->version, QStringLiteral("1.0.0"));
    QVERIFY(!m_runs->model.indexOf(QStringLiteral("/nowhere")).isValid());
    QVERIFY(!m_runs->model.indexOf(QString()).isValid());
}

void RunListModelTest::marksTheBaselineAlone()
{
    QSignalSpy changed(&m_runs->model, &RunListModel::dataChanged);
    m_runs->model.setBaseline(m_runs->folders.pathOf(QStringLiteral("2026-01-01_00-00-00")));
    QCOMPARE(changed.size(), 1);
    for (int row = 0; row < m_runs->model.rowCount(); ++row) {
        QCOMPARE(m_runs->model.index(row).data(RunListModel::IsBaselineRole).toBool(), row == 4);
    }
    m_runs->model.setBaseline(QString());
    QVERIFY(!m_runs->model.index(4).data(RunListModel::IsBaselineRole).toBool());
}

void RunListModelTest::describesARunInWords()
{
    const QModelIndex index = run(QStringLiteral("2026-01-01_00-00-00"));
    QVERIFY(index.data(Qt::AccessibleTextRole)
                .toString()
                .startsWith(QStringLiteral("poet v1.0.0, loss 2.346, ")));
    m_runs->model.setBaseline(m_runs->folders.pathOf(QStringLiteral("2026-01-01_00-00-00")));
    QVERIFY(index.data(Qt::AccessibleTextRole).toString().endsWith(QStringLiteral(", baseline")));
}

void RunListModelTest::roundsLossesToTheEvenDigit()
{
    QVERIFY(run(QStringLiteral("2026-01-03_00-00-00"))
                .data(Qt::AccessibleTextRole)
                .toString()
                .startsWith(QStringLiteral("Artist v0.1, loss 0.062, ")));
}

void RunListModelTest::keepsTheBaselineWhenTheListIsReplaced()
{
    m_runs->model.setBaseline(m_runs->folders.pathOf(QStringLiteral("2026-01-03_00-00-00")));
    m_runs->model.setGroups(m_runs->store.filteredGroups(QStringLiteral("art")));
    QCOMPARE(m_runs->model.rowCount(), 2);
    QVERIFY(m_runs->model.index(1).data(RunListModel::IsBaselineRole).toBool());
}

void RunListModelTest::isEmptyWithoutRuns()
{
    m_runs->model.setGroups({});
    QCOMPARE(m_runs->model.rowCount(), 0);
    QVERIFY(!m_runs->model.firstRun().isValid());
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::RunListModelTest)
#include "RunListModelTest.moc"
