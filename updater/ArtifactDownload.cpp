#include "updater/ArtifactDownload.h"

#include "platform/Descriptor.h"
#include "service/core/CaldraTransport.h"
#include "service/core/HTTPAnswerParser.h"
#include "service/core/HTTPConnection.h"
#include "service/core/HTTPSyntax.h"
#include "service/core/NetworkTransport.h"
#include "service/core/ServiceEndpoints.h"
#include "service/core/TransportError.h"
#include "updater/Cancellation.h"
#include "updater/UpdateError.h"

#include <QEventLoop>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::updater {

namespace {

constexpr int mostRedirects = 10;

UpdateError noAnswer(const QString &message)
{
    return {UpdateError::Http{0, message}};
}

/// The file that a download goes to; removed again unless it is completed.
class Destination
{
public:
    explicit Destination(const QString &path)
        : m_path(QFile::encodeName(path))
        , m_file(::open(m_path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                        S_IRUSR | S_IWUSR))
    {
        if (!m_file.isOpen()) {
            fail(errno);
        }
    }
    ~Destination()
    {
        if (!m_isComplete) {
            ::unlink(m_path.constData());
        }
    }
    Q_DISABLE_COPY_MOVE(Destination)

    void write(QByteArrayView bytes) const
    {
        while (!bytes.isEmpty()) {
            const ssize_t count =
                ::write(m_file.number(), bytes.data(), static_cast<std::size_t>(bytes.size()));
            if (count <= 0 && errno != EINTR) {
                fail(count == 0 ? ENOSPC : errno);
            }
            bytes = bytes.sliced(std::max(count, ssize_t{0}));
        }
    }

    /// Some systems tell only here that the disk is full.
    void complete()
    {
        if (::close(m_file.release()) != 0) {
            fail(errno);
        }
        m_isComplete = true;
    }

private:
    [[noreturn]] static void fail(int error)
    {
        throw UpdateError(UpdateError::ExtractionFailed{
            QStringLiteral("the download could not be written: ") + qt_error_string(error)});
    }

    QByteArray m_path;
    platform::Descriptor m_file;
    bool m_isComplete = false;
};

/// One download under way, on the thread that runs it. Each address that it is sent to has a connection of
/// its own; what arrives is written before more is read.
class Transfer
{
public:
    Transfer(const ArtifactDownload &download, Destination &destination,
             const DownloadProgressDelegate &delegate);

    void run(const Cancellation &cancellation);

private:
    void ask(const QUrl &address);
    void open(caldra::HTTPConnection &connection, const QUrl &address);
    caldra::HTTPRequest requestFor(const QUrl &address) const;
    QUrl redirectionFrom(const QUrl &address) const;
    void checkHead(caldra::HTTPAnswerParser &answer);
    void store(QByteArrayView bytes);
    void conclude() const;
    void stop(const UpdateError &failure);
    /// Exceptions must not pass through the event loop. What still arrives after a failure is for nobody.
    template <class Step>
    void guarded(Step step)
    {
        try {
            if (!m_failure && !m_isRedirected) {
                step();
            }
        } catch (const UpdateError &error) {
            stop(error);
        }
    }

    const ArtifactDownload &m_download;
    Destination &m_destination;
    const DownloadProgressDelegate &m_delegate;
    const caldra::NetworkOptions m_options;
    QEventLoop m_loop;
    QTimer m_silence;
    caldra::HTTPResponse m_response; ///< without a body
    std::optional<qint64> m_length;  ///< of the body, as the server tells it
    bool m_isRedirected = false;
    qint64 m_written = 0;
    std::optional<UpdateError> m_failure;
};

Transfer::Transfer(const ArtifactDownload &download, Destination &destination,
                   const DownloadProgressDelegate &delegate)
    : m_download(download)
    , m_destination(destination)
    , m_delegate(delegate)
    , m_options{.largestBody = download.announcedSize, .trustedAuthorities = download.trustedAuthorities}
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(download.inactivity);
    QObject::connect(&m_silence, &QTimer::timeout, &m_loop,
                     [this] { stop(noAnswer(QStringLiteral("The server was silent for too long."))); });
}

void Transfer::run(const Cancellation &cancellation)
{
    QSocketNotifier cancelled(cancellation.descriptor(), QSocketNotifier::Read);
    QObject::connect(&cancelled, &QSocketNotifier::activated, &m_loop, [this, &cancelled] {
        cancelled.setEnabled(false);
        stop(UpdateError(UpdateError::Cancelled{}));
    });
    QUrl address = m_download.url;
    ask(address);
    for (int redirects = 0; m_isRedirected; ++redirects) {
        if (redirects == mostRedirects) {
            throw noAnswer(QStringLiteral("The server redirected too many times."));
        }
        address = redirectionFrom(address);
        ask(address);
    }
    conclude();
}

/// Returns when the answer is stored, or is a redirect.
void Transfer::ask(const QUrl &address)
{
    m_isRedirected = false;
    caldra::HTTPConnection connection(caldra::Origin::of(address), m_options, nullptr);
    m_silence.start();
    // Within the loop, which a refusal at once could not end otherwise.
    QMetaObject::invokeMethod(
        &m_loop, [&] { open(connection, address); }, Qt::QueuedConnection);
    m_loop.exec();
    m_silence.stop();
    if (m_failure) {
        throw UpdateError(*m_failure);
    }
}

void Transfer::open(caldra::HTTPConnection &connection, const QUrl &address)
{
    connection.stream(
        requestFor(address),
        {[this](caldra::HTTPAnswerParser &answer) { guarded([&] { checkHead(answer); }); },
         [this](QByteArrayView bytes) {
             guarded([&] { store(bytes); });
         }},
        [this](caldra::HTTPAnswerParser &) { m_loop.quit(); },
        [this](const caldra::HTTPConnection::Failure &failure) {
            guarded([&] {
                const bool isTooLarge = failure.error.kind() == caldra::TransportError::Kind::tooLarge;
                throw noAnswer(isTooLarge ? QStringLiteral("The file is larger than announced.")
                                          : failure.error.localizedDescription());
            });
        });
}

caldra::HTTPRequest Transfer::requestFor(const QUrl &address) const
{
    caldra::HTTPRequest request;
    request.method = "GET";
    request.url = address;
    request.headers = {{"User-Agent", m_download.userAgent}};
    return request;
}

QUrl Transfer::redirectionFrom(const QUrl &address) const
{
    QUrl target = address.resolved(QUrl::fromEncoded(*m_response.header("Location")));
    const bool isDowngrade =
        address.scheme() == QLatin1String("https") && target.scheme() != QLatin1String("https");
    if (isDowngrade || !caldra::isAllowedAddress(target)) {
        throw noAnswer(QStringLiteral("The server redirected to an address that is not allowed."));
    }
    return target;
}

/// Refuses an answer by its head alone, so that nothing of it is stored.
void Transfer::checkHead(caldra::HTTPAnswerParser &answer)
{
    m_silence.start();
    m_response = {answer.status(), answer.takeHeaders(), {}};
    m_length = answer.announcedLength();
    if (caldra::isRedirect(answer.status()) && m_response.header("Location")) {
        m_isRedirected = true;
        m_loop.quit();
    } else if (answer.status() / 100 != 2) {
        throw UpdateError(UpdateError::Http{answer.status(), QString()});
    }
}

void Transfer::store(QByteArrayView bytes)
{
    m_silence.start();
    m_destination.write(bytes);
    m_written += bytes.size();
    m_delegate.onProgress(m_written, m_length.value_or(-1));
}

void Transfer::conclude() const
{
    // Without a length the end of the connection looks like the end of the file.
    if (m_written < m_length.value_or(m_download.announcedSize)) {
        throw noAnswer(QStringLiteral("The connection was closed before the file was complete."));
    }
}

/// Ends the transfer; the connection closes with the stack that it lies on.
void Transfer::stop(const UpdateError &failure)
{
    if (!m_failure) {
        m_failure = failure;
        m_loop.quit();
    }
}

} // namespace

void ArtifactDownload::run(const QString &path, const DownloadProgressDelegate &delegate,
                           const Cancellation &cancellation) const
{
    cancellation.throwIfCancelled();
    Destination destination(path);
    Transfer(*this, destination, delegate).run(cancellation);
    destination.complete();
}

} // namespace zorel::updater
