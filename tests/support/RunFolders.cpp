#include "tests/support/RunFolders.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cmath>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::tests {

using library::ArchiveDate;
using library::ArchivedModelRecord;

namespace {

void require(bool condition, const char *what)
{
    if (!condition) {
        qFatal("cannot write %s", what);
    }
}

/// Of every run folder.
ArchiveDate modificationDate()
{
    return dateOf("2020-02-02T02:02:02.250Z");
}

QByteArray encoded(const QString &path)
{
    return QFile::encodeName(path);
}

/// Adds kinds one after the other.
class KindWriter
{
public:
    explicit KindWriter(const RunFolders &folders)
        : m_folders(folders)
    {}

    std::vector<RunKind> kinds;

    /// A run; returns its record with the defaults of an empty manifest, to be changed to what is expected.
    ArchivedModelRecord &run(const char *name, const QByteArray &manifest)
    {
        const QString folder = QString::fromUtf8(name);
        m_folders.addRun(folder, manifest);
        return expectRun(folder);
    }

    ArchivedModelRecord &expectRun(const QString &folder)
    {
        ArchivedModelRecord record;
        record.id = record.path = m_folders.pathOf(folder);
        record.folderName = record.name = folder;
        record.version = QStringLiteral("0.0.0");
        record.modelFamily = QStringLiteral("text_language");
        record.trainingCapability = QStringLiteral("pretrain");
        record.archivedAt = modificationDate();
        kinds.push_back({folder, true, record});
        return kinds.back().record;
    }

    void noRun(const QString &entry) { kinds.push_back({entry, false, {}}); }

    void noRun(const char *name, const QByteArray &manifest)
    {
        m_folders.addRun(QString::fromUtf8(name), manifest);
        noRun(QString::fromUtf8(name));
    }

private:
    const RunFolders &m_folders;
};

void addCompleteRuns(const RunFolders &folders, KindWriter &writer)
{
    const auto addComplete = [&](const char *name) {
        const QString folder = QString::fromUtf8(name);
        ArchivedModelRecord &record = writer.run(name, completeManifest());
        folders.addRun(folder, completeManifest(), curveText(1000), snapshotText(4, 32));
        record = completeRecord(record.path);
    };
    addComplete("complete");
    addComplete("twin of the complete one");
    addComplete("Läufe – 走る 🏃");
}

void addRunsWithOddManifests(const RunFolders &folders, KindWriter &writer)
{
    writer.run("empty object", "{}");
    writer.run("byte order", " \r\n\t{ } \n");

    ArchivedModelRecord &blanks = writer.run(
        "blanks", R"({"model_identity": {"name": "  Poet\n", "version": "\t2.0 ", "author": " Ada "}})");
    blanks.name = QStringLiteral("Poet");
    blanks.version = QStringLiteral("2.0");
    blanks.author = QStringLiteral(" Ada ");

    ArchivedModelRecord &zone =
        writer.run("zone", R"({"archived_at": "2025-03-14T10:26:53.123456789+01:00"})");
    zone.archivedAt = dateOf("2025-03-14T09:26:53.123456Z");

    writer.run("no date", R"({"archived_at": "2025-03-14 09:26"})");

    ArchivedModelRecord &vision =
        writer.run("unknown family", R"({"model_family": "vision", "training_capability": "distil"})");
    vision.modelFamily = QStringLiteral("vision");
    vision.trainingCapability = QStringLiteral("distil");

    writer.run("wrong types", R"({"model_identity": ["name"], "archived_at": 1741944413, "step": "7",
        "max_steps": 7.5, "final_loss": "2.5", "val_loss": true, "elapsed_seconds": [1], "tokens_per_sec": {},
        "model_family": 1, "training_capability": null})");

    ArchivedModelRecord &numbers =
        writer.run("odd numbers", R"({"step": 5.0, "max_steps": 1e3, "final_loss": 3,
        "val_loss": -0.0, "elapsed_seconds": 12345678901234567890123, "tokens_per_sec": 1E-5})");
    numbers.step = 5;
    numbers.maxSteps = 1000;
    numbers.finalLoss = 3;
    numbers.valLoss = -0.0;
    numbers.elapsedS = 12345678901234567890123.0;
    numbers.tokensPerSec = 1e-5;

    ArchivedModelRecord &twice = writer.run(
        "keys twice", R"({"step": 1, "model_identity": {"name": "old", "author": "old"}, "val_loss": 1,
        "model_identity": {"n\u0061me": "new"}, "step": 2, "val_loss": null})");
    twice.name = QStringLiteral("new");
    twice.step = 2;

    ArchivedModelRecord &broken = writer.run("broken extras", "{}");
    folders.write(QStringLiteral("broken extras/loss_curve.jsonl"),
                  "\n{\"step\": 1}\nTraceback\n{\"step\": 2, \"loss\": 4.5}\n[]\n{\"step\": 3, \"loss\": 4}");
    folders.write(QStringLiteral("broken extras/neuron_snapshot.json"), "{\"step\": 1");
    broken.hasLossCurve = broken.hasNeuronSnapshot = true;
}

void addLinkedRun(const RunFolders &folders, KindWriter &writer)
{
    folders.write(QStringLiteral("manifest kept elsewhere"), R"({"step": 9})");
    writer.noRun(QStringLiteral("manifest kept elsewhere"));
    folders.link(QStringLiteral("linked manifest/manifest.json"),
                 QStringLiteral("../manifest kept elsewhere"));
    folders.link(QStringLiteral("linked manifest/loss_curve.jsonl"), QStringLiteral("nowhere"));
    writer.expectRun(QStringLiteral("linked manifest")).step = 9;
}

void addBadManifests(const RunFolders &folders, KindWriter &writer)
{
    writer.noRun("array manifest", "[{}]");
    writer.noRun("empty manifest", "");
    writer.noRun("half-written manifest", completeManifest().chopped(20));
    writer.noRun("two objects", "{} {}");
    writer.noRun("binary manifest", QByteArray("\x89PNG\r\n\x1a\n\0\0\0", 11));
    writer.noRun("manifest in Latin-1", "{\"model_family\": \"\xe9\"}");
    writer.noRun("manifest with NaN", R"({"final_loss": NaN})");
    writer.noRun("deep manifest",
                 QByteArray("{\"a\":") + QByteArray(10'000, '[') + QByteArray(10'000, ']') + '}');

    folders.write(QStringLiteral("no manifest/README.md"), "# Run\n");
    writer.noRun(QStringLiteral("no manifest"));
    QDir(folders.path()).mkpath(QStringLiteral("folder as manifest/manifest.json"));
    writer.noRun(QStringLiteral("folder as manifest"));

    QDir(folders.path()).mkpath(QStringLiteral("fifo as manifest"));
    require(::mkfifo(encoded(folders.pathOf(QStringLiteral("fifo as manifest/manifest.json"))), 0600) == 0,
            "a FIFO");
    writer.noRun(QStringLiteral("fifo as manifest"));

    writer.noRun("huge manifest", "{");
    require(::truncate(encoded(folders.pathOf(QStringLiteral("huge manifest/manifest.json"))),
                       off_t{1} << 31) == 0,
            "a large file");

    folders.link(QStringLiteral("device as manifest/manifest.json"), QStringLiteral("/dev/zero"));
    writer.noRun(QStringLiteral("device as manifest"));
    folders.link(QStringLiteral("dangling manifest/manifest.json"), QStringLiteral("nowhere"));
    writer.noRun(QStringLiteral("dangling manifest"));
    folders.link(QStringLiteral("looping manifest/manifest.json"), QStringLiteral("manifest.json"));
    writer.noRun(QStringLiteral("looping manifest"));
}

void addWhatIsNoRunFolder(const RunFolders &folders, KindWriter &writer)
{
    writer.noRun(".hidden", "{}");
    folders.write(QStringLiteral("plain file"), "{}");
    writer.noRun(QStringLiteral("plain file"));
    folders.write(QStringLiteral("manifest.json"), "{}");
    writer.noRun(QStringLiteral("manifest.json"));
    folders.write(QStringLiteral("outer folder/inner run/manifest.json"), "{}");
    writer.noRun(QStringLiteral("outer folder"));
    folders.link(QStringLiteral("link to a run"), QStringLiteral("complete"));
    writer.noRun(QStringLiteral("link to a run"));
    folders.link(QStringLiteral("link to this folder"), QStringLiteral("."));
    writer.noRun(QStringLiteral("link to this folder"));
    folders.link(QStringLiteral("link to itself"), QStringLiteral("link to itself"));
    writer.noRun(QStringLiteral("link to itself"));

    // Not every file system takes such a name.
    const QByteArray badName = encoded(folders.path()) + "/L\xe4ufe";
    if (::mkdir(badName.constData(), 0700) == 0) {
        const int manifest =
            ::open((badName + "/manifest.json").constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        require(manifest >= 0 && ::write(manifest, "{}", 2) == 2, "a manifest");
        ::close(manifest);
    }
    writer.noRun(QStringLiteral("(a name that is not UTF-8)"));
}

} // namespace

RunFolders::RunFolders()
{
    require(m_folder.isValid(), "a temporary folder");
}

void RunFolders::write(const QString &name, const QByteArray &content) const
{
    const QString path = pathOf(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), qPrintable(path));
}

void RunFolders::addRun(const QString &folderName, const QByteArray &manifest, const QByteArray &curve,
                        const QByteArray &snapshot) const
{
    write(folderName + QStringLiteral("/manifest.json"), manifest);
    if (!curve.isEmpty()) {
        write(folderName + QStringLiteral("/loss_curve.jsonl"), curve);
    }
    if (!snapshot.isEmpty()) {
        write(folderName + QStringLiteral("/neuron_snapshot.json"), snapshot);
    }
}

void RunFolders::remove(const QString &folderName) const
{
    require(QDir(pathOf(folderName)).removeRecursively(), "without a folder");
}

void RunFolders::setModified(const QString &entry, ArchiveDate date) const
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    timespec moment{};
    moment.tv_sec = seconds.time_since_epoch().count();
    moment.tv_nsec = std::chrono::nanoseconds(date - seconds).count();
    const timespec times[2]{moment, moment};
    require(::utimensat(AT_FDCWD, encoded(pathOf(entry)).constData(), times, 0) == 0, "a date");
}

void RunFolders::link(const QString &entry, const QString &target) const
{
    const QString path = pathOf(entry);
    QDir().mkpath(QFileInfo(path).path());
    require(::symlink(encoded(target).constData(), encoded(path).constData()) == 0, "a link");
}

std::vector<RunKind> RunFolders::addEveryKind() const
{
    KindWriter writer(*this);
    addCompleteRuns(*this, writer);
    addRunsWithOddManifests(*this, writer);
    addLinkedRun(*this, writer);
    addBadManifests(*this, writer);
    addWhatIsNoRunFolder(*this, writer);
    for (const RunKind &kind : writer.kinds) {
        if (kind.isRun) {
            setModified(kind.entry, modificationDate());
        }
    }
    return std::move(writer.kinds);
}

QByteArray completeManifest()
{
    return R"({
  "model_identity": {"name": "tiny-lm", "version": "1.2.3", "author": "ada@example.org", "license": "MIT"},
  "archived_at": "2026-06-01T21:44:12.589Z",
  "step": 1000,
  "max_steps": 2000,
  "final_loss": 2.5,
  "val_loss": 2.75,
  "elapsed_seconds": 61.5,
  "tokens_per_sec": 1234.5,
  "model_family": "text_language",
  "training_capability": "finetune",
  "model": {"layers": 4, "hidden_size": 512},
  "scripts_version": "1.0"
}
)";
}

ArchivedModelRecord completeRecord(const QString &path)
{
    ArchivedModelRecord complete;
    complete.id = complete.path = path;
    complete.folderName = path.section(u'/', -1);
    complete.name = QStringLiteral("tiny-lm");
    complete.version = QStringLiteral("1.2.3");
    complete.author = QStringLiteral("ada@example.org");
    complete.step = 1000;
    complete.maxSteps = 2000;
    complete.finalLoss = 2.5;
    complete.valLoss = 2.75;
    complete.elapsedS = 61.5;
    complete.tokensPerSec = 1234.5;
    complete.archivedAt = dateOf("2026-06-01T21:44:12.589Z");
    complete.modelFamily = QStringLiteral("text_language");
    complete.trainingCapability = QStringLiteral("finetune");
    complete.hasLossCurve = complete.hasNeuronSnapshot = true;
    return complete;
}

QByteArray snapshotText(int layers, int neuronsPerLayer, double base)
{
    constexpr const char *tiers[] = {"inactive", "moderate", "high"};
    constexpr int channels = 16;
    QByteArray blocks;
    for (int layer = 0; layer < layers; ++layer) {
        QByteArray neurons;
        for (int index = 0; index < neuronsPerLayer; ++index) {
            neurons +=
                QString::asprintf(
                    R"(%s{"index": %d, "activation": %.4f, "dim_start": %d, "dim_end": %d, "tier": "%s"})",
                    index == 0 ? "" : ", ", index, base + layer + index / 100.0, index * channels,
                    index * channels + channels - 1, tiers[(layer + index) % 3])
                    .toUtf8();
        }
        blocks +=
            QString::asprintf(R"(%s{"layer": %d, "neurons": [)", layer == 0 ? "" : ", ", layer).toUtf8() +
            neurons + "]}";
    }
    return QString::asprintf(R"({"step": 1000, "final": true, "n_layers": %d, "neurons_per_layer": %d, )"
                             R"("hidden_dim": %d, "layers": [)",
                             layers, neuronsPerLayer, neuronsPerLayer * channels)
               .toUtf8() +
           blocks + "]}\n";
}

QByteArray curveText(int points)
{
    QByteArray text;
    for (int step = 1; step <= points; ++step) {
        text += QString::asprintf("{\"step\": %d, \"loss\": %.6f}\n", step, 2 + 8 * std::exp(-step / 300.0))
                    .toUtf8();
    }
    return text;
}

ArchiveDate dateOf(const char *text)
{
    const std::optional<ArchiveDate> date = library::parseArchiveDate(text);
    require(date.has_value(), text);
    return *date;
}

} // namespace zorel::tests
