#include "tests/updater/Installation.h"

using namespace zorel::tests;
using namespace zorel::updater;
using caldra::tests::Answer;

/// What is not installed: files that are not the ones described, or hold what does not belong there.
class InstallRefusalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDownloadsDigestIsChecked();
    void theDigestIsExpectedInLowerCase();
    void aReplacedFileIsNotUnpacked();
    void nothingIsDownloadedForAnUpdateThatIsRefused_data();
    void nothingIsDownloadedForAnUpdateThatIsRefused();
    void aBadStatusFails();
    void anArchiveWithoutABundleFails_data();
    void anArchiveWithoutABundleFails();
    void whatLeadsOutOfTheUpdateFails_data();
    void whatLeadsOutOfTheUpdateFails();
};

void InstallRefusalTest::theDownloadsDigestIsChecked()
{
    Installation installation;
    QByteArray flipped = installation.archive;
    flipped[flipped.size() / 2] = static_cast<char>(flipped[flipped.size() / 2] ^ 1);
    installation.host.answer(Answer::with(200, "application/gzip", flipped));
    const QString actual =
        QString::fromLatin1(QCryptographicHash::hash(flipped, QCryptographicHash::Sha256).toHex());
    QCOMPARE(
        installation.run(),
        std::optional(UpdateError(UpdateError::ChecksumMismatch{*installation.host.update.sha256, actual})));
    QCOMPARE(installation.stateKinds(), (std::vector<std::size_t>{0, 3}));
    QVERIFY(installation.stage.calls().isEmpty());
    QVERIFY(installation.leftNothing());
}

void InstallRefusalTest::theDigestIsExpectedInLowerCase()
{
    Installation installation;
    installation.host.update.sha256 = installation.host.update.sha256->toUpper();
    QCOMPARE(installation.run(), std::optional(UpdateError(UpdateError::Decode{})));
    QVERIFY(installation.host.server.requests().empty());
}

void InstallRefusalTest::aReplacedFileIsNotUnpacked()
{
    Installation installation(QStringLiteral("zip"));
    installation.onState = [&](const InstallState &state) {
        if (state.is<InstallState::Installing>()) {
            const QString folder =
                installation.stage.updaterFolder() + u'/' + installation.stage.workingFolders().value(0);
            writeFile(folder + QStringLiteral("/Trainer 2.0.zip"), "another");
        }
    };
    QCOMPARE(caseOf(installation.run()), UpdateError::Case::checksumMismatch);
    QVERIFY(installation.stage.calls().isEmpty());
    QVERIFY(installation.leftNothing());
}

void InstallRefusalTest::nothingIsDownloadedForAnUpdateThatIsRefused_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<UpdateError::Case>("expected");
    QTest::newRow("address") << QStringLiteral("address") << UpdateError::Case::decode;
    QTest::newRow("file name") << QStringLiteral("file name") << UpdateError::Case::decode;
    QTest::newRow("digest") << QStringLiteral("digest") << UpdateError::Case::decode;
    QTest::newRow("extension") << QStringLiteral("extension") << UpdateError::Case::extractionFailed;
}

void InstallRefusalTest::nothingIsDownloadedForAnUpdateThatIsRefused()
{
    QFETCH(QString, field);
    QFETCH(UpdateError::Case, expected);
    Installation installation;
    AvailableUpdate &update = installation.host.update;
    if (field == QLatin1String("address")) {
        update.downloadUrl.setUserName(QStringLiteral("user"));
    } else if (field == QLatin1String("file name")) {
        update.fileName = QStringLiteral("../a.gz");
    } else if (field == QLatin1String("digest")) {
        update.sha256.reset();
    } else {
        update.fileName = QStringLiteral("a.pkg");
    }
    QCOMPARE(caseOf(installation.run()), expected);
    QVERIFY(installation.host.server.requests().empty());
    QVERIFY(!QFile::exists(installation.stage.updaterFolder()));
}

void InstallRefusalTest::aBadStatusFails()
{
    Installation installation;
    installation.host.answer(Answer::with(410, "text/plain", "gone"));
    QCOMPARE(installation.run(), std::optional(UpdateError(UpdateError::Http{410, QString()})));
    QVERIFY(installation.leftNothing());
}

void InstallRefusalTest::anArchiveWithoutABundleFails_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"nothing", "a file", "a link", "another folder"}) {
        QTest::newRow(kind) << QString::fromUtf8(kind);
    }
}

void InstallRefusalTest::anArchiveWithoutABundleFails()
{
    QFETCH(QString, kind);
    Installation installation;
    const QString folder = installation.stage / "contents";
    QDir().mkpath(folder);
    if (kind == QLatin1String("a file")) {
        writeFile(folder + QStringLiteral("/New.app"), "x");
    } else if (kind == QLatin1String("a link")) {
        writeFile(folder + QStringLiteral("/there/x"), "x");
        makeLink(folder + QStringLiteral("/New.app"), "there");
    } else if (kind == QLatin1String("another folder")) {
        writeFile(folder + QStringLiteral("/New/x"), "x");
    }
    const QByteArray archive = installation.stage.archive(folder, QStringLiteral("gz"));
    ArtifactHost host(QStringLiteral("a.gz"), archive);
    installation.host.update = host.update;
    QCOMPARE(installation.run(), std::optional(UpdateError(UpdateError::AppNotFoundInArtifact{})));
    QVERIFY(installation.leftNothing());
}

void InstallRefusalTest::whatLeadsOutOfTheUpdateFails_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("place");
    const QString within = QStringLiteral("New.app/Contents");
    QTest::newRow("absolute") << QByteArray("/etc") << within;
    QTest::newRow("upwards") << QByteArray("../../../../..") << within;
    QTest::newRow("absolute, beside the bundle") << QByteArray("/etc") << QStringLiteral("Others");
    // Inside of what is unpacked, but outside of the bundle that is copied from there.
    QTest::newRow("to beside the bundle") << QByteArray("../../sibling") << within;
}

void InstallRefusalTest::whatLeadsOutOfTheUpdateFails()
{
    QFETCH(QByteArray, target);
    QFETCH(QString, place);
    Installation installation;
    InstallStage::makeBundle(installation.stage / "contents/New.app", "2");
    writeFile(installation.stage / "contents/sibling", "x");
    makeLink(installation.stage / (QStringLiteral("contents/") + place + QStringLiteral("/out")), target);
    const QByteArray archive =
        installation.stage.archive(installation.stage / "contents", QStringLiteral("gz"));
    ArtifactHost host(QStringLiteral("a.gz"), archive);
    installation.host.update = host.update;
    QCOMPARE(installation.run(),
             extractionFailed(QStringLiteral("out is a link that leads out of the update")));
    QVERIFY(installation.leftNothing());
}

QTEST_GUILESS_MAIN(InstallRefusalTest)
#include "InstallRefusalTest.moc"
