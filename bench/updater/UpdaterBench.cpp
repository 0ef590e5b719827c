// Digest and download of an update of 1 GiB, each against the usual tool in the same run, and their memory.

#include "updater/ArtifactDownload.h"
#include "updater/Cancellation.h"
#include "updater/FileDigest.h"
#include "updater/UpdateError.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace zorel;

namespace {

constexpr qint64 fileSize = qint64{1} << 30;
constexpr int rounds = 5;

void makeFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("no temporary file");
    }
    QByteArray block(qsizetype{1} << 20, '\0');
    for (qint64 written = 0; written < fileSize; written += block.size()) {
        for (qsizetype index = 0; index < block.size(); index += 64) {
            block[index] = static_cast<char>(written >> 20) ^ static_cast<char>(index >> 6);
        }
        if (file.write(block) != block.size()) {
            qFatal("the disk is full");
        }
    }
}

/// Sends the file to whoever asks, for ever, in a process of its own: its memory is not ours.
class FileServer
{
public:
    explicit FileServer(const QByteArray &path)
    {
        const int listening = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(listening, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
            ::listen(listening, 8) != 0 ||
            ::getsockname(listening, reinterpret_cast<sockaddr *>(&address), &size) != 0) {
            qFatal("no server");
        }
        m_port = ntohs(address.sin_port);
        m_process = ::fork();
        if (m_process == 0) {
            serve(listening, path);
        }
        ::close(listening);
    }
    ~FileServer() { ::kill(m_process, SIGKILL); }
    Q_DISABLE_COPY_MOVE(FileServer)

    QString address() const { return QStringLiteral("http://127.0.0.1:%1/file").arg(m_port); }

private:
    [[noreturn]] static void serve(int listening, const QByteArray &path)
    {
        std::signal(SIGPIPE, SIG_IGN);
        std::vector<char> buffer(std::size_t{1} << 18);
        for (;;) {
            const int connection = ::accept(listening, nullptr, nullptr);
            const int file = ::open(path.constData(), O_RDONLY);
            if (::read(connection, buffer.data(), buffer.size()) > 0) {
                const QByteArray head =
                    "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(fileSize) + "\r\n\r\n";
                bool isOpen = ::write(connection, head.constData(), std::size_t(head.size())) > 0;
                for (ssize_t count = 0; isOpen && (count = ::read(file, buffer.data(), buffer.size())) > 0;) {
                    isOpen = ::write(connection, buffer.data(), std::size_t(count)) == count;
                }
            }
            ::close(file);
            ::close(connection);
        }
    }

    quint16 m_port = 0;
    pid_t m_process = -1;
};

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

template <class Action>
double secondsOf(Action action)
{
    QElapsedTimer clock;
    clock.start();
    action();
    return double(clock.nsecsElapsed()) / 1e9;
}

void runTool(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        qFatal("%s failed", qUtf8Printable(program));
    }
}

double peakMebibytes()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
#ifdef __APPLE__
    return double(usage.ru_maxrss) / 1024 / 1024;
#else
    return double(usage.ru_maxrss) / 1024;
#endif
}

bool print(const char *measure, double value, const char *unit, const char *goal, bool kept)
{
    std::printf("%-52s %9.2f %-6s %-10s %s\n", measure, value, unit, goal, kept ? "yes" : "NO");
    return kept;
}

/// Interleaved, so that a busy machine is busy for both.
template <class Ours, class Reference>
bool compare(const char *measure, double goal, Ours ours, Reference reference)
{
    std::vector<double> ourSeconds;
    std::vector<double> referenceSeconds;
    const double before = peakMebibytes();
    for (int round = 0; round < rounds; ++round) {
        ourSeconds.push_back(secondsOf(ours));
        referenceSeconds.push_back(secondsOf(reference));
    }
    const double growth = peakMebibytes() - before;
    const double ratio = median(referenceSeconds) / median(ourSeconds);
    const QByteArray name(measure);
    const QByteArray least = ">= " + QByteArray::number(goal);
    print((name + ", ours").constData(), 1 / median(ourSeconds), "GiB/s", "", true);
    print((name + ", reference").constData(), 1 / median(referenceSeconds), "GiB/s", "", true);
    const bool isFast = print((name + ", ratio").constData(), ratio, "x", least.constData(), ratio >= goal);
    return print((name + ", growth of memory").constData(), growth, "MiB", "<= 64", growth <= 64) && isFast;
}

} // namespace

int main(int argc, char **argv)
{
    // In memory where it can be: the disk would be what is measured.
    const QString memory = QStringLiteral("/dev/shm");
    const QTemporaryDir folder((QDir(memory).exists() ? memory : QDir::tempPath()) +
                               QStringLiteral("/updater-bench-XXXXXX"));
    const QString file = folder.filePath(QStringLiteral("update"));
    const QString copy = folder.filePath(QStringLiteral("copy"));
    makeFile(file);
    const FileServer server(QFile::encodeName(file));
    const QCoreApplication application(argc, argv);

    const updater::Cancellation never;
    const bool isDigestKept = compare(
        "digest of 1 GiB against openssl", 0.9, [&] { updater::digestOf(file, never); },
        [&] {
            runTool(QStringLiteral("openssl"), {QStringLiteral("dgst"), QStringLiteral("-sha256"), file});
        });

    updater::ArtifactDownload download;
    download.url = QUrl(server.address());
    download.announcedSize = fileSize;
    download.userAgent = "bench";
    const auto fetch = [&] {
        QFile::remove(copy);
        // As in the application: on a thread of its own.
        std::thread([&] {
            download.run(copy, {[](qint64, qint64) {
                         }},
                         never);
        }).join();
    };
    const auto fetchWithCurl = [&] {
        QFile::remove(copy);
        runTool(QStringLiteral("curl"), {QStringLiteral("-s"), QStringLiteral("-o"), copy, server.address()});
    };
    const bool isDownloadKept = compare("download of 1 GiB against curl", 0.8, fetch, fetchWithCurl);
    return isDigestKept && isDownloadKept ? 0 : 1;
}
