#include "service/core/LibraryThread.h"

#include <QCoreApplication>
#include <QMutex>
#include <QThread>
#include <QThreadPool>

#include <memory>

namespace caldra {

namespace {

class LibraryThread
{
public:
    ~LibraryThread() { stop(); }

    QObject *context()
    {
        const QMutexLocker lock(&m_mutex);
        if (!m_thread)
            start();
        return m_context;
    }

    QObject *runningContext()
    {
        const QMutexLocker lock(&m_mutex);
        return m_context;
    }

    void stop()
    {
        std::unique_ptr<QThread> ending;
        {
            // The ending thread may itself ask for the context, so it is not waited for under the lock.
            const QMutexLocker lock(&m_mutex);
            ending = std::move(m_thread);
            m_context = nullptr;
        }
        if (!ending)
            return;
        ending->quit();
        ending->wait();
    }

private:
    void start();

    QMutex m_mutex;
    std::unique_ptr<QThread> m_thread;
    QObject *m_context = nullptr;
};

LibraryThread &libraryThread()
{
    static LibraryThread thread;
    return thread;
}

void LibraryThread::start()
{
    m_thread = std::make_unique<QThread>();
    m_thread->setObjectName(QStringLiteral("caldra"));
    m_context = new QObject;
    m_context->moveToThread(m_thread.get());
    QObject::connect(m_thread.get(), &QThread::finished, m_context, &QObject::deleteLater);
    m_thread->start();
    // A thread with sockets must not outlive the application object.
    qAddPostRoutine([] { libraryThread().stop(); });
}

} // namespace

QObject *libraryContext()
{
    return libraryThread().context();
}

void runBesideLibraryThread(std::function<void()> work)
{
    static QThreadPool pool;
    pool.start(std::move(work));
}

QObject *runningLibraryContext()
{
    return libraryThread().runningContext();
}

} // namespace caldra
