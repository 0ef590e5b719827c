#include "service/core/LibraryThread.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMutex>
#include <QThread>
#include <QThreadPool>

#include <future>
#include <system_error>
#include <thread>

namespace caldra {

namespace {

/// A std::thread, because joining one waits until OpenSSL has let go of it as well; QThread::wait returns
/// earlier, and the process could end in the middle of that.
class LibraryThread
{
public:
    ~LibraryThread() { close(); }

    /// There is a QCoreApplication.
    void open();
    /// There is none any more. Waits for the thread to end.
    void close();
    void run(std::function<void(QObject &context)> &work, ThreadStart start);

private:
    void begin();
    static void live(std::promise<QObject *> hasBegun);

    QMutex m_mutex;
    bool m_isOpen = false;
    std::thread m_thread;
    QObject *m_context = nullptr;
};

LibraryThread &libraryThread()
{
    static LibraryThread thread;
    return thread;
}

void closeLibraryThread()
{
    libraryThread().close();
}

void openLibraryThread()
{
    libraryThread().open();
    qAddPostRoutine(closeLibraryThread);
}

void LibraryThread::open()
{
    const QMutexLocker lock(&m_mutex);
    m_isOpen = true;
}

void LibraryThread::close()
{
    std::thread ending;
    {
        // The ending thread may itself call the library, so it is not waited for under the lock.
        const QMutexLocker lock(&m_mutex);
        m_isOpen = false;
        ending = std::move(m_thread);
        if (QObject *context = std::exchange(m_context, nullptr)) {
            context->deleteLater();
        }
    }
    if (ending.joinable()) {
        ending.join();
    }
}

void LibraryThread::run(std::function<void(QObject &context)> &work, ThreadStart start)
{
    QMutexLocker lock(&m_mutex);
    if (!m_context && m_isOpen && start == ThreadStart::whenNeeded) {
        try {
            begin();
        } catch (const std::system_error &) {
            qWarning("caldra: the system gives no thread; a call is cancelled");
        }
    }
    if (!m_context) {
        return;
    }
    QObject *context = m_context;
    if (context->thread() == QThread::currentThread()) {
        lock.unlock();
        work(*context);
    } else {
        // Under the lock, so that the context is still there.
        QMetaObject::invokeMethod(
            context, [context, work = std::move(work)] { work(*context); }, Qt::QueuedConnection);
    }
}

void LibraryThread::begin()
{
    std::promise<QObject *> hasBegun;
    std::future<QObject *> context = hasBegun.get_future();
    m_thread = std::thread(live, std::move(hasBegun));
    m_context = context.get();
    // A thread with sockets must not outlive the application object. Once more than in open(), so that it
    // comes before the clean-up of what the thread uses.
    qAddPostRoutine(closeLibraryThread);
}

void LibraryThread::live(std::promise<QObject *> hasBegun)
{
    QEventLoop loop;
    auto *context = new QObject; // deletes itself when the thread is to end
    QObject::connect(context, &QObject::destroyed, &loop, &QEventLoop::quit);
    hasBegun.set_value(context);
    loop.exec();
    // What the context's children have left behind.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(openLibraryThread)

void runOnLibraryThread(std::function<void(QObject &context)> work, ThreadStart start)
{
    libraryThread().run(work, start);
}

void runBesideLibraryThread(std::function<void()> work)
{
    static QThreadPool pool;
    pool.start(std::move(work));
}

} // namespace caldra
