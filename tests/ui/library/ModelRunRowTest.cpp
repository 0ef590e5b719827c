#include "ui/library/ModelRunRow.h"
#include "tests/ui/library/Stage.h"

#include <QDateTime>
#include <QLocale>
#include <QPaintEngine>
#include <QPainter>
#include <QTest>

namespace zorel::tests {

using ui::library::ModelRunRow;

namespace {

/// Paints nothing and keeps what is written, in the order in which it is.
class TextRecorder : public QPaintEngine
{
public:
    TextRecorder()
        : QPaintEngine(AllFeatures)
    {}
    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState &) override {}
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
    void drawPath(const QPainterPath &) override {}
    void drawPolygon(const QPointF *, int, PolygonDrawMode) override {}
    void drawTextItem(const QPointF &, const QTextItem &item) override { written += item.text(); }
    Type type() const override { return User; }

    QString written;
};

class RecordingDevice : public QPaintDevice
{
public:
    QPaintEngine *paintEngine() const override { return &m_recorder; }
    QString written() const { return m_recorder.written; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 96;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        default:
            return 1000;
        }
    }

private:
    mutable TextRecorder m_recorder;
};

} // namespace

class ModelRunRowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void writesNameVersionLossAndDate();
    void writesABadgeOnTheBaselineAlone();
    void writesAGroupsName();

private:
    QString written(int row) const;

    std::unique_ptr<ListedRuns> m_runs;
};

void ModelRunRowTest::init()
{
    m_runs = std::make_unique<ListedRuns>();
    m_runs->folders.addRun(
        QStringLiteral("a"),
        R"({"model_identity":{"name":"poet","version":"1.0.0"},"archived_at":"2026-01-02T12:00:00Z","final_loss":2.34567})");
    m_runs->folders.addRun(
        QStringLiteral("b"),
        R"({"model_identity":{"name":"poet","version":"1.1.0"},"archived_at":"2026-01-01T12:00:00Z"})");
    m_runs->list();
}

QString ModelRunRowTest::written(int row) const
{
    RecordingDevice device;
    QPainter painter(&device);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 500, 60);
    ModelRunRow().paint(&painter, option, m_runs->model.index(row));
    painter.end();
    return device.written();
}

void ModelRunRowTest::writesNameVersionLossAndDate()
{
    const QDateTime date(QDate(2026, 1, 2), QTime(12, 0), Qt::UTC);
    QCOMPARE(written(1), QStringLiteral("poet v1.0.0") + QStringLiteral("2.346") +
                             QLocale().toString(date.toLocalTime(), QLocale::ShortFormat));
}

void ModelRunRowTest::writesABadgeOnTheBaselineAlone()
{
    const QString badge = QStringLiteral("baseline");
    QVERIFY(!written(1).contains(badge));
    m_runs->model.setBaseline(m_runs->folders.pathOf(QStringLiteral("a")));
    QVERIFY(written(1).contains(badge));
    QVERIFY(!written(2).contains(badge));
    m_runs->model.setBaseline(QString());
    QVERIFY(!written(1).contains(badge));
}

void ModelRunRowTest::writesAGroupsName()
{
    QCOMPARE(written(0), QStringLiteral("poet"));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ModelRunRowTest)
#include "ModelRunRowTest.moc"
