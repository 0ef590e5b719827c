#include "ui/kit/LineChart.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>

using namespace zorel::ui::kit;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

template <typename Dialog>
Dialog *visibleDialog()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *dialog = qobject_cast<Dialog *>(widget); dialog != nullptr && dialog->isVisible()) {
            return dialog;
        }
    }
    return nullptr;
}

} // namespace

class LineChartExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void init();
    void cleanup();
    void everyPointIsWritten();
    void zoomAndScaleDoNotCount();
    void failureIsToldByAMessage();
    void oldFileStaysWhenWritingFails();
    void secondExportAtTheSameTimeIsRefused();
    void closingWaitsForTheFile();
    void menuAsksForTheFile();

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<LineChart> m_chart;
};

void LineChartExportTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_chart = std::make_unique<LineChart>(QStringLiteral("Loss curve: a/b"));
    m_chart->setAxisTitles(QStringLiteral("Step"), QStringLiteral("Loss"));
    m_chart->addSeries(QString());
    m_chart->append(0, 10, 2.5);
    m_chart->append(0, 5, 1.0 / 3);
    m_chart->append(0, 20, std::numeric_limits<double>::quiet_NaN());
    m_chart->show();
}

void LineChartExportTest::cleanup()
{
    m_chart.reset();
    m_folder.reset();
}

void LineChartExportTest::everyPointIsWritten()
{
    QSignalSpy written(m_chart.get(), &LineChart::pointsExported);
    m_chart->exportPoints(path("points.csv"));
    QVERIFY(written.count() == 1 || written.wait());
    QCOMPARE(written.front().front().toString(), path("points.csv"));
    QCOMPARE(contents(path("points.csv")),
             QByteArray("series,step,value\nLoss,10,2.5\nLoss,5,0.3333333333333333\nLoss,20,nan\n"));
    QVERIFY(!visibleDialog<QMessageBox>());
}

void LineChartExportTest::zoomAndScaleDoNotCount()
{
    m_chart->append(0, 30, -1);
    m_chart->setScale(ChartScaleKind::Logarithmic);
    m_chart->setSmoothing(0.9);
    m_chart->zoomToSteps(9, 11);
    QSignalSpy written(m_chart.get(), &LineChart::pointsExported);
    m_chart->exportPoints(path("points.csv"));
    QVERIFY(written.count() == 1 || written.wait());
    QCOMPARE(contents(path("points.csv")).count('\n'), 5);
    QVERIFY(contents(path("points.csv")).contains("Loss,30,-1\n"));
}

void LineChartExportTest::failureIsToldByAMessage()
{
    QSignalSpy failed(m_chart.get(), &LineChart::exportFailed);
    m_chart->exportPoints(path("no such folder/points.csv"));
    QVERIFY(failed.count() == 1 || failed.wait());
    QTRY_VERIFY(visibleDialog<QMessageBox>());
    QVERIFY(visibleDialog<QMessageBox>()->text().contains(QLatin1String("no such folder/points.csv")));
    visibleDialog<QMessageBox>()->accept();
}

void LineChartExportTest::oldFileStaysWhenWritingFails()
{
    // A folder of the file's name cannot be replaced.
    QVERIFY(QDir().mkdir(path("points.csv")));
    QSignalSpy failed(m_chart.get(), &LineChart::exportFailed);
    m_chart->exportPoints(path("points.csv"));
    QVERIFY(failed.count() == 1 || failed.wait());
    QVERIFY(QFileInfo(path("points.csv")).isDir());
}

void LineChartExportTest::secondExportAtTheSameTimeIsRefused()
{
    QSignalSpy written(m_chart.get(), &LineChart::pointsExported);
    QSignalSpy failed(m_chart.get(), &LineChart::exportFailed);
    m_chart->exportPoints(path("first.csv"));
    m_chart->exportPoints(path("second.csv"));
    QCOMPARE(failed.count(), 1);
    QTRY_COMPARE(written.count(), 1);
    QVERIFY(!QFile::exists(path("second.csv")));
    m_chart->exportPoints(path("second.csv"));
    QTRY_COMPARE(written.count(), 2);
}

void LineChartExportTest::closingWaitsForTheFile()
{
    for (int step = 0; step < 100'000; ++step) {
        m_chart->append(0, step, step);
    }
    m_chart->exportPoints(path("points.csv"));
    m_chart.reset();
    QCOMPARE(contents(path("points.csv")).count('\n'), 100'004);
}

void LineChartExportTest::menuAsksForTheFile()
{
    QVERIFY(QTest::qWaitForWindowExposed(m_chart.get()));
    for (QAction *action : m_chart->actions()) {
        if (action->text() == QStringLiteral("Export Points as CSV…")) {
            action->trigger();
        }
    }
    QTRY_VERIFY(visibleDialog<QFileDialog>());
    auto *dialog = visibleDialog<QFileDialog>();
    QCOMPARE(QFileInfo(dialog->selectedFiles().value(0)).fileName(), QStringLiteral("Loss curve a b.csv"));
    dialog->setDirectory(m_folder->path());
    dialog->findChild<QLineEdit *>()->setText(path("chosen"));
    QSignalSpy written(m_chart.get(), &LineChart::pointsExported);
    static_cast<QDialog *>(dialog)->accept();
    QTRY_COMPARE(written.count(), 1);
    QVERIFY(contents(path("chosen.csv")).startsWith("series,step,value\n"));
}

QTEST_MAIN(LineChartExportTest)
#include "LineChartExportTest.moc"
