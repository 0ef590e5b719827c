#include "service/core/RecordDecoder.h"
#include "service/distribution/DistributionRequests.h"
#include "service/distribution/DistributionResponses.h"
#include "updater/AvailableUpdate.h"

#include <QCryptographicHash>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using caldra::DistributionArtifact;
using caldra::PublishReleaseRequest;

/// What scripts/release-record prints, read by the client library and by the updater.
class ReleaseRecordTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theClientLibraryReadsIt();
    void theUpdaterInstallsWhatItDescribes();
    void itKnowsEveryKindOfFile_data();
    void itKnowsEveryKindOfFile();
    void architecturesAreReadFromTheName_data();
    void architecturesAreReadFromTheName();
    void whatTheUpdaterCannotUnpackIsRefused();

private:
    QString makeFile(const QString &name, const QByteArray &content) const;
    /// Standard output; `status` is the exit code.
    QByteArray record(const QStringList &arguments, int status = 0) const;
    PublishReleaseRequest decoded(const QStringList &arguments) const
    {
        return caldra::decodeJSON<PublishReleaseRequest>(record(arguments));
    }

    const QTemporaryDir m_folder;
    const QString m_url = QStringLiteral("https://files.example/1.2/");
};

QString ReleaseRecordTest::makeFile(const QString &name, const QByteArray &content) const
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QFile::WriteOnly) || file.write(content) != content.size()) {
        qFatal("no file");
    }
    return file.fileName();
}

QByteArray ReleaseRecordTest::record(const QStringList &arguments, int status) const
{
    QProcess process;
    process.start(QStringLiteral(ZOREL_SOURCE "/scripts/release-record"),
                  QStringList{QStringLiteral("--url"), m_url} + arguments);
    if (!process.waitForFinished() || process.exitCode() != status) {
        qFatal("exit code %d: %s", process.exitCode(), process.readAllStandardError().constData());
    }
    return status == 0 ? process.readAllStandardOutput() : process.readAllStandardError();
}

void ReleaseRecordTest::theClientLibraryReadsIt()
{
    const QByteArray content = "an archive";
    const QString archive = makeFile(QStringLiteral("Trainer 100%-arm64.zip"), content);
    const QString notes = makeFile(QStringLiteral("notes.md"), "# Neu: schöner\n\n- \"quick\"\n");
    const PublishReleaseRequest release = decoded(
        {QStringLiteral("--notes"), notes, QStringLiteral("--channel"), QStringLiteral("beta"), archive});
    QCOMPARE(release.version, QStringLiteral(ZOREL_VERSION));
    QCOMPARE(release.channel, caldra::DistributionChannel::beta);
    QCOMPARE(release.notes, QStringLiteral("# Neu: schöner\n\n- \"quick\"\n"));
    QCOMPARE(release.artifacts.size(), std::size_t(1));

    DistributionArtifact expected;
    expected.fileName = QStringLiteral("Trainer 100%-arm64.zip");
    expected.downloadUrl = QStringLiteral("https://files.example/1.2/Trainer%20100%25-arm64.zip");
    expected.sizeBytes = content.size();
    expected.contentType = QStringLiteral("application/zip");
    expected.sha256 =
        QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
    expected.version = QStringLiteral(ZOREL_VERSION);
    expected.minOsVersion = QStringLiteral("13.0");
    expected.architecture = caldra::DistributionArchitecture::arm64;
    expected.installPurpose = caldra::DistributionArtifactPurpose::update;
    QCOMPARE(release.artifacts.front().sha256, expected.sha256);
    QVERIFY(release.artifacts.front() == expected);
}

void ReleaseRecordTest::theUpdaterInstallsWhatItDescribes()
{
    const PublishReleaseRequest release =
        decoded({QStringLiteral("--version"), QStringLiteral("1.2"),
                 makeFile(QStringLiteral("Trainer-linux-x86_64.tar.gz"), "an archive")});
    caldra::DistributionLatestResponse latest;
    latest.release.version = release.version;
    latest.artifact = release.artifacts.front();
    const auto update = zorel::updater::AvailableUpdate::from(latest);
    zorel::updater::requireInstallable(update);
    QCOMPARE(update.version, QStringLiteral("1.2"));
    QCOMPARE(update.downloadUrl,
             QUrl(QStringLiteral("https://files.example/1.2/Trainer-linux-x86_64.tar.gz")));
}

void ReleaseRecordTest::itKnowsEveryKindOfFile_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("isUpdate");
    QTest::newRow("zip") << QStringLiteral("application/zip") << true;
    QTest::newRow("tar") << QStringLiteral("application/x-tar") << true;
    QTest::newRow("gz") << QStringLiteral("application/gzip") << true;
    QTest::newRow("tbz") << QStringLiteral("application/x-bzip2") << true;
    QTest::newRow("bz2") << QStringLiteral("application/x-bzip2") << true;
    QTest::newRow("dmg") << QStringLiteral("application/x-apple-diskimage") << false;
}

void ReleaseRecordTest::itKnowsEveryKindOfFile()
{
    QFETCH(QString, type);
    QFETCH(bool, isUpdate);
    const QString file =
        makeFile(QStringLiteral("Trainer.") + QString::fromLatin1(QTest::currentDataTag()), "x");
    const DistributionArtifact artifact = decoded({file}).artifacts.front();
    QCOMPARE(artifact.contentType, type);
    QCOMPARE(artifact.installPurpose, isUpdate ? caldra::DistributionArtifactPurpose::update
                                               : caldra::DistributionArtifactPurpose::install);
}

void ReleaseRecordTest::architecturesAreReadFromTheName_data()
{
    using caldra::DistributionArchitecture;
    QTest::addColumn<std::optional<DistributionArchitecture>>("architecture");
    QTest::newRow("macos-arm64") << std::optional(DistributionArchitecture::arm64);
    QTest::newRow("linux-aarch64") << std::optional(DistributionArchitecture::arm64);
    QTest::newRow("linux-x86_64") << std::optional(DistributionArchitecture::x64);
    QTest::newRow("universal") << std::optional(DistributionArchitecture::universal);
    QTest::newRow("plain") << std::optional<DistributionArchitecture>();
}

void ReleaseRecordTest::architecturesAreReadFromTheName()
{
    QFETCH(std::optional<caldra::DistributionArchitecture>, architecture);
    const QString file =
        makeFile(QStringLiteral("Trainer-%1.zip").arg(QString::fromLatin1(QTest::currentDataTag())), "x");
    QVERIFY(decoded({file}).artifacts.front().architecture == architecture);
}

void ReleaseRecordTest::whatTheUpdaterCannotUnpackIsRefused()
{
    const QByteArray complaint = record({makeFile(QStringLiteral("Trainer.deb"), "x")}, 1);
    QVERIFY2(complaint.contains("Trainer.deb"), complaint.constData());
}

QTEST_GUILESS_MAIN(ReleaseRecordTest)
#include "ReleaseRecordTest.moc"
