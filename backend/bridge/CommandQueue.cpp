#include "backend/bridge/CommandQueue.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include <unistd.h>

namespace zorel::backend::bridge {

namespace {

bool setsValue(const QString &name)
{
    return name.startsWith(QLatin1String("set_"));
}

/// Ending the run must stay possible however much waits.
bool isAlwaysAdmitted(const QString &name)
{
    return setsValue(name) || name == QLatin1String("stop") || name == QLatin1String("quit");
}

} // namespace

CommandQueue::CommandQueue(platform::Descriptor descriptor)
    : m_descriptor(std::move(descriptor))
{
    m_descriptor.setNonBlocking();
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor.number(), QSocketNotifier::Write);
    m_notifier->setEnabled(false);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &CommandQueue::flush);
}

CommandQueue::~CommandQueue() = default;

std::optional<QString> CommandQueue::send(const QString &name, const QByteArray &line)
{
    replaceWaiting(name);
    if (isFull() && !isAlwaysAdmitted(name)) {
        return QStringLiteral("the backend does not read its input");
    }
    m_waiting.push_back({name, line});
    if (m_waiting.size() > 1) {
        return std::nullopt;
    }
    switch (writeFront()) {
    case WriteResult::done:
        break;
    case WriteResult::blocked:
        m_notifier->setEnabled(true);
        break;
    case WriteResult::failed:
        return failureText();
    }
    return std::nullopt;
}

QString CommandQueue::failureText()
{
    const int error = errno;
    m_waiting.clear();
    m_notifier->setEnabled(false);
    return QString::fromLocal8Bit(std::strerror(error));
}

void CommandQueue::replaceWaiting(const QString &name)
{
    if (m_waiting.empty() || !isAlwaysAdmitted(name)) {
        return;
    }
    // The front command may be half written already.
    auto first = m_waiting.begin() + (m_written > 0 ? 1 : 0);
    if (setsValue(name)) {
        // What a waiting "start" works with must reach the child before it.
        const auto isBarrier = [](const Waiting &waiting) {
            return !isAlwaysAdmitted(waiting.name);
        };
        first = std::find_if(m_waiting.rbegin(), std::make_reverse_iterator(first), isBarrier).base();
    }
    m_waiting.erase(std::remove_if(first, m_waiting.end(),
                                   [&name](const Waiting &waiting) { return waiting.name == name; }),
                    m_waiting.end());
}

bool CommandQueue::isFull() const
{
    return m_waiting.size() >= maximumWaiting;
}

CommandQueue::WriteResult CommandQueue::writeFront()
{
    const QByteArray &line = m_waiting.front().line;
    while (m_written < line.size()) {
        const ssize_t count = ::write(m_descriptor.number(), line.constData() + m_written,
                                      static_cast<std::size_t>(line.size() - m_written));
        if (count >= 0) {
            m_written += count;
        } else if (errno == EAGAIN) {
            return WriteResult::blocked;
        } else if (errno != EINTR) {
            return WriteResult::failed;
        }
    }
    m_waiting.pop_front();
    m_written = 0;
    return WriteResult::done;
}

void CommandQueue::flush()
{
    while (!m_waiting.empty()) {
        switch (writeFront()) {
        case WriteResult::done:
            break;
        case WriteResult::blocked:
            return;
        case WriteResult::failed:
            Q_EMIT failed(failureText());
            return;
        }
    }
    m_notifier->setEnabled(false);
}

} // namespace zorel::backend::bridge
