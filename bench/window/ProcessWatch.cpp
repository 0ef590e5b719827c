#include "bench/window/ProcessWatch.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

namespace zorel::bench {

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number behind a name in one of the files that have a "Name:  number" a line.
std::int64_t numberAfter(const QByteArray &text, const QByteArray &name)
{
    for (const QByteArray &line : text.split('\n')) {
        if (line.startsWith(name + ':')) {
            return line.mid(name.size() + 1).simplified().split(' ').first().toLongLong();
        }
    }
    return 0;
}

} // namespace

ProcessBooks readBooks(std::int64_t process)
{
    const QString folder = QStringLiteral("/proc/%1/").arg(process);
    const QByteArray status = contentOf(folder + QStringLiteral("status"));
    ProcessBooks books;
    books.residentMiB = static_cast<double>(numberAfter(status, "VmRSS")) / 1024;
    books.ownMiB = static_cast<double>(numberAfter(status, "RssAnon")) / 1024;
    const QDir tasks(folder + QStringLiteral("task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QByteArray thread = contentOf(tasks.filePath(task) + QStringLiteral("/status"));
        // Nanoseconds on a processor are the first number.
        const QByteArray times = contentOf(tasks.filePath(task) + QStringLiteral("/schedstat"));
        books.processorMilliseconds += times.split(' ').first().toDouble() / 1e6;
        books.contextSwitches += numberAfter(thread, "voluntary_ctxt_switches") +
                                 numberAfter(thread, "nonvoluntary_ctxt_switches");
        ++books.threads;
    }
    return books;
}

} // namespace zorel::bench
