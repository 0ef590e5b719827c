#include "platform/FileUserDefaults.h"

#include "platform/AtomicFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTimer>

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::platform {

namespace {

using namespace std::chrono_literals;

/// How long to leave the file to another instance before looking again; a write takes a few milliseconds.
constexpr auto lockRetryInterval = 20ms;
constexpr int lockRetriesWhenWaiting = 50;

constexpr qint64 mostBytes = qint64{16} * 1024 * 1024;

/// The right to change the file, held by one instance at a time. The system takes it back from a process that
/// dies.
class InstanceLock
{
public:
    enum class State : std::uint8_t { held, heldByOther, impossible };

    explicit InstanceLock(const QString &path)
        : m_descriptor(
              ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR))
    {
        if (m_descriptor < 0) {
            return;
        }
        // A file system without locks is no reason to forget the user's settings.
        const bool refused = ::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        m_state = refused ? State::heldByOther : State::held;
    }
    ~InstanceLock()
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }
    Q_DISABLE_COPY_MOVE(InstanceLock)

    State state() const { return m_state; }

private:
    int m_descriptor;
    State m_state = State::impossible;
};

struct Stored
{
    enum class State : std::uint8_t { readable, absent, damaged, unreachable };

    State state = State::unreachable;
    QByteArray bytes;
    QJsonObject values;
};

Stored readStored(const QString &path)
{
    // A pipe or a device in the file's place must not be waited for.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) {
        return {errno == ENOENT ? Stored::State::absent : Stored::State::unreachable, {}, {}};
    }
    struct stat status = {};
    QFile file;
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        !file.open(descriptor, QFile::ReadOnly, QFile::AutoCloseHandle)) {
        ::close(descriptor);
        return {};
    }
    if (status.st_size > mostBytes) {
        return {Stored::State::damaged, {}, {}};
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError) {
        return {};
    }
    if (bytes.isEmpty()) {
        return {Stored::State::absent, {}, {}};
    }
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    return document.isObject() ? Stored{Stored::State::readable, bytes, document.object()}
                               : Stored{Stored::State::damaged, bytes, {}};
}

} // namespace

FileUserDefaults::FileUserDefaults(const QString &filePath)
    : m_filePath(filePath)
    , m_values(readStored(filePath).values)
{
    if (const QCoreApplication *const application = QCoreApplication::instance()) {
        m_nextTurn.moveToThread(application->thread());
    }
}

FileUserDefaults::~FileUserDefaults()
{
    FileUserDefaults::synchronize();
}

std::optional<QString> FileUserDefaults::string(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

void FileUserDefaults::setString(const QString &key, const QString &value)
{
    set(key, value);
}

std::optional<bool> FileUserDefaults::boolean(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

void FileUserDefaults::setBoolean(const QString &key, bool value)
{
    set(key, value);
}

void FileUserDefaults::synchronize()
{
    for (int retry = 0; persist() == Outcome::lockedByOther && retry < lockRetriesWhenWaiting; ++retry) {
        std::this_thread::sleep_for(lockRetryInterval);
    }
}

void FileUserDefaults::set(const QString &key, const QJsonValue &value)
{
    m_values.insert(key, value);
    m_unwritten.insert(key, value);
    if (!m_scheduled) {
        m_scheduled = true;
        QMetaObject::invokeMethod(
            &m_nextTurn, [this] { persistOnThisTurn(); }, Qt::QueuedConnection);
    }
}

void FileUserDefaults::persistOnThisTurn()
{
    m_scheduled = false;
    if (persist() == Outcome::lockedByOther) {
        m_scheduled = true;
        QTimer::singleShot(lockRetryInterval, &m_nextTurn, [this] { persistOnThisTurn(); });
    }
}

FileUserDefaults::Outcome FileUserDefaults::persist()
{
    if (m_unwritten.isEmpty()) {
        return Outcome::written;
    }
    const QFileInfo file(m_filePath);
    QDir().mkpath(file.path());
    const InstanceLock lock(file.path() + QLatin1String("/.") + file.fileName() + QLatin1String(".lock"));
    if (lock.state() == InstanceLock::State::heldByOther) {
        return Outcome::lockedByOther;
    }

    const Stored stored = readStored(m_filePath);
    // Without a readable file, what this session knows is the best there is.
    QJsonObject merged = stored.state == Stored::State::readable ? stored.values : m_values;
    for (auto entry = m_unwritten.constBegin(); entry != m_unwritten.constEnd(); ++entry) {
        merged.insert(entry.key(), entry.value());
    }
    const QByteArray bytes = QJsonDocument(merged).toJson(QJsonDocument::Indented);
    const bool written = lock.state() == InstanceLock::State::held &&
                         stored.state != Stored::State::unreachable &&
                         (stored.state != Stored::State::damaged || keepAside(m_filePath)) &&
                         (bytes == stored.bytes || replaceFile(m_filePath, bytes));
    if (!written) {
        if (!m_warned) {
            qWarning("The settings cannot be saved to %s; they last until the program ends.",
                     qUtf8Printable(m_filePath));
        }
        m_warned = true;
        return Outcome::failed;
    }
    m_warned = false;
    m_values = merged;
    m_unwritten = {};
    return Outcome::written;
}

} // namespace zorel::platform
