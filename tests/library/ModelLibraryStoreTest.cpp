#include "library/ModelLibraryStore.h"
#include "tests/support/RunFolders.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

namespace zorel::tests {

using backend::protocol::LossPoint;
using library::ArchivedModelRecord;
using library::LibraryGroup;
using library::ModelLibraryStore;

class ModelLibraryStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void aMissingFolderGivesAnEmptyLibrary();
    void aScanReplacesTheModels();
    void tellsOfEachChange();
    void staysSilentWhenNothingHasChanged();
    void canScanItsLastPathAgain();
    void groupsAndSearches();
    void findsModelsById();
    void loadsTheCurvesGoodPoints();
    void loadsTheSnapshot();
    void loadsWhatIsThereNow();
    void aSnapshotThatDoesNotDecodeIsNone_data();
    void aSnapshotThatDoesNotDecodeIsNone();
    void loadsNothingThatIsNoRegularFile();
    void readsFiveThousandRuns();
};

void ModelLibraryStoreTest::startsEmpty()
{
    const ModelLibraryStore store;
    QVERIFY(store.models().isEmpty());
    QVERIFY(!store.isLoading());
    QCOMPARE(store.lastScanPath(), QString());
    QVERIFY(store.groupedByName().isEmpty());
    QVERIFY(store.filteredGroups(QString()).isEmpty());
}

void ModelLibraryStoreTest::aMissingFolderGivesAnEmptyLibrary()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    ModelLibraryStore store;
    store.scan(folders.path());
    QCOMPARE(store.models().size(), 1);
    store.scan(folders.pathOf(QStringLiteral("missing")));
    QVERIFY(store.models().isEmpty());
    QVERIFY(store.groupedByName().isEmpty());
    QVERIFY(!store.isLoading());
    QCOMPARE(store.lastScanPath(), folders.pathOf(QStringLiteral("missing")));
}

void ModelLibraryStoreTest::aScanReplacesTheModels()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("first"), "{}");
    ModelLibraryStore store;
    store.scan(folders.path());
    folders.addRun(QStringLiteral("second"), R"({"archived_at": "2000-01-01T00:00:00Z"})");
    QVERIFY(QDir(folders.pathOf(QStringLiteral("first"))).removeRecursively());
    QCOMPARE(store.models().value(0).folderName, QStringLiteral("first"));
    store.scan(folders.path());
    QCOMPARE(store.models().size(), 1);
    QCOMPARE(store.models()[0].folderName, QStringLiteral("second"));
}

void ModelLibraryStoreTest::tellsOfEachChange()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    ModelLibraryStore store;
    QStringList told;
    connect(&store, &ModelLibraryStore::isLoadingChanged, this,
            [&] { told << (store.isLoading() ? QStringLiteral("loading") : QStringLiteral("loaded")); });
    connect(&store, &ModelLibraryStore::lastScanPathChanged, this,
            [&] { told << QStringLiteral("path ") + QDir(store.lastScanPath()).dirName(); });
    connect(&store, &ModelLibraryStore::modelsChanged, this, [&] {
        // Groups are those of the new models, and the scan still runs.
        told << QStringLiteral("%1 models in %2 groups")
                    .arg(store.models().size())
                    .arg(store.groupedByName().size());
        QVERIFY(store.isLoading());
    });
    store.scan(folders.path());
    QCOMPARE(told,
             (QStringList{QStringLiteral("loading"), QStringLiteral("path ") + QDir(folders.path()).dirName(),
                          QStringLiteral("1 models in 1 groups"), QStringLiteral("loaded")}));
}

void ModelLibraryStoreTest::staysSilentWhenNothingHasChanged()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    folders.setModified(QStringLiteral("run"), dateOf("2020-01-01T00:00:00Z"));
    ModelLibraryStore store;
    store.scan(folders.path());
    QSignalSpy modelsChanged(&store, &ModelLibraryStore::modelsChanged);
    QSignalSpy pathChanged(&store, &ModelLibraryStore::lastScanPathChanged);
    store.scan(folders.path());
    QCOMPARE(modelsChanged.size(), 0);
    QCOMPARE(pathChanged.size(), 0);
    folders.write(QStringLiteral("run/loss_curve.jsonl"), "");
    folders.setModified(QStringLiteral("run"), dateOf("2020-01-01T00:00:00Z"));
    store.scan(folders.path());
    QCOMPARE(modelsChanged.size(), 1);
}

void ModelLibraryStoreTest::canScanItsLastPathAgain()
{
    const RunFolders folders;
    ModelLibraryStore store;
    store.scan(folders.path());
    folders.addRun(QStringLiteral("run"), "{}");
    store.scan(store.lastScanPath());
    QCOMPARE(store.lastScanPath(), folders.path());
    QCOMPARE(store.models().size(), 1);
}

void ModelLibraryStoreTest::groupsAndSearches()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("r1"), R"({"model_identity": {"name": "tiny-lm", "author": "Lovelace"}})");
    folders.addRun(QStringLiteral("r2"), R"({"model_identity": {"name": "tiny-lm", "version": "2"}})");
    folders.addRun(QStringLiteral("r3"), R"({"model_identity": {"name": "Poet"}})");
    ModelLibraryStore store;
    store.scan(folders.path());
    QCOMPARE(store.groupedByName().size(), 2);
    QCOMPARE(store.groupedByName()[0].name, QStringLiteral("Poet"));
    QCOMPARE(store.groupedByName()[1].runs.size(), 2);

    const QList<LibraryGroup> found = store.filteredGroups(QStringLiteral("TINY"));
    QCOMPARE(found.size(), 1);
    QCOMPARE(found[0].name, QStringLiteral("tiny-lm"));
    QVERIFY(store.filteredGroups(QStringLiteral("Lovelace")).isEmpty());
}

void ModelLibraryStoreTest::findsModelsById()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("a"), "{}");
    folders.addRun(QStringLiteral("b"), "{}");
    ModelLibraryStore store;
    store.scan(folders.path());
    const ArchivedModelRecord *found = store.modelWithId(folders.pathOf(QStringLiteral("b")));
    QVERIFY(found);
    QCOMPARE(found->folderName, QStringLiteral("b"));
    QVERIFY(!store.modelWithId(QStringLiteral("b")));
}

void ModelLibraryStoreTest::loadsTheCurvesGoodPoints()
{
    const RunFolders folders;
    folders.write(
        QStringLiteral("run/loss_curve.jsonl"),
        "{\"step\": 3, \"loss\": 4.5}\n\n{\"step\": 2}\nnot JSON\n{\"step\": 1, \"loss\": 5, \"lr\": 0.1}\n");
    ArchivedModelRecord run;
    run.path = folders.pathOf(QStringLiteral("run"));
    const std::vector<LossPoint> curve = ModelLibraryStore().loadLossCurve(run);
    QCOMPARE(curve.size(), std::size_t(2));
    QCOMPARE(curve[0].step, 3);
    QCOMPARE(curve[0].loss, 4.5);
    QCOMPARE(curve[1].step, 1);
    QCOMPARE(curve[1].loss, 5.0);
}

void ModelLibraryStoreTest::loadsTheSnapshot()
{
    const RunFolders folders;
    folders.write(QStringLiteral("run/neuron_snapshot.json"), snapshotText(3, 8, 0.5));
    ArchivedModelRecord run;
    run.path = folders.pathOf(QStringLiteral("run"));
    const auto snapshot = ModelLibraryStore().loadNeuronSnapshot(run);
    QVERIFY(snapshot);
    QCOMPARE(snapshot->nLayers, 3);
    QCOMPARE(snapshot->layers.size(), std::size_t(3));
    QCOMPARE(snapshot->layers[2].neurons[7].activation, 2.57);
}

void ModelLibraryStoreTest::loadsWhatIsThereNow()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), "{}");
    ModelLibraryStore store;
    store.scan(folders.path());
    const ArchivedModelRecord run = store.models().value(0);
    QVERIFY(!run.hasNeuronSnapshot);
    QVERIFY(!run.hasLossCurve);
    QVERIFY(!store.loadNeuronSnapshot(run));
    QVERIFY(store.loadLossCurve(run).empty());
    folders.write(QStringLiteral("run/neuron_snapshot.json"), snapshotText(1, 1));
    folders.write(QStringLiteral("run/loss_curve.jsonl"), curveText(5));
    QVERIFY(store.loadNeuronSnapshot(run));
    QCOMPARE(store.loadLossCurve(run).size(), std::size_t(5));
}

void ModelLibraryStoreTest::aSnapshotThatDoesNotDecodeIsNone_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isSnapshot");
    QTest::newRow("good") << snapshotText(2, 2) << true;
    QTest::newRow("no layers") << snapshotText(0, 4) << true;
    QTest::newRow("no neurons") << snapshotText(4, 0) << true;
    QTest::newRow("10,000 neurons") << snapshotText(1, 10'000) << true;
    QTest::newRow("wrong counts") << snapshotText(2, 2).replace("\"n_layers\": 2", "\"n_layers\": -7")
                                  << true;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("cut") << snapshotText(2, 2).chopped(3) << false;
    QTest::newRow("unknown tier") << snapshotText(2, 2).replace("moderate", "medium") << false;
    QTest::newRow("missing key") << snapshotText(2, 2).replace("hidden_dim", "hidden") << false;
    QTest::newRow("list") << QByteArray("[]") << false;
}

void ModelLibraryStoreTest::aSnapshotThatDoesNotDecodeIsNone()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isSnapshot);
    const RunFolders folders;
    folders.write(QStringLiteral("run/neuron_snapshot.json"), text);
    ArchivedModelRecord run;
    run.path = folders.pathOf(QStringLiteral("run"));
    run.hasNeuronSnapshot = true;
    QCOMPARE(ModelLibraryStore().loadNeuronSnapshot(run).has_value(), isSnapshot);
}

void ModelLibraryStoreTest::loadsNothingThatIsNoRegularFile()
{
    const RunFolders folders;
    folders.link(QStringLiteral("run/neuron_snapshot.json"), QStringLiteral("/dev/zero"));
    folders.link(QStringLiteral("run/loss_curve.jsonl"), QStringLiteral("/dev/zero"));
    ArchivedModelRecord run;
    run.path = folders.pathOf(QStringLiteral("run"));
    QVERIFY(!ModelLibraryStore().loadNeuronSnapshot(run));
    QVERIFY(ModelLibraryStore().loadLossCurve(run).empty());
    run.path = folders.pathOf(QStringLiteral("nowhere"));
    QVERIFY(!ModelLibraryStore().loadNeuronSnapshot(run));
    QVERIFY(ModelLibraryStore().loadLossCurve(run).empty());
}

void ModelLibraryStoreTest::readsFiveThousandRuns()
{
    constexpr int runs = 5000;
    const RunFolders folders;
    for (int run = 0; run < runs; ++run) {
        folders.addRun(QStringLiteral("run-%1").arg(run, 5, 10, QLatin1Char('0')), completeManifest());
    }
    ModelLibraryStore store;
    store.scan(folders.path());
    QCOMPARE(store.models().size(), runs);
    QCOMPARE(store.models().first().folderName, QStringLiteral("run-04999"));
    QCOMPARE(store.models().last().folderName, QStringLiteral("run-00000"));
    QCOMPARE(store.groupedByName().size(), 1);
    QCOMPARE(store.filteredGroups(QStringLiteral("RUN-0123")).value(0).runs.size(), 10);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::ModelLibraryStoreTest)
#include "ModelLibraryStoreTest.moc"
