#pragma once

#include "platform/Descriptor.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <deque>
#include <memory>
#include <optional>

class QSocketNotifier;

namespace zorel::backend::bridge {

/// Writes commands to the child's standard input without ever waiting for it. What the child does not take at
/// once is queued and written when it reads again; of the commands that set a value ("set_...") and are
/// queued with no other command than "stop" and "quit" between them only the newest of each name is kept, so
/// a child that never reads costs a bounded amount of memory. Owns the descriptor.
class CommandQueue : public QObject
{
    Q_OBJECT

public:
    /// Commands other than "set_...", "stop" and "quit" that may wait; one more is refused.
    static constexpr std::size_t maximumWaiting = 256;

    explicit CommandQueue(platform::Descriptor descriptor);
    ~CommandQueue() override;

    /// Sends one whole line, in one write where the pipe has room. Nothing on success, otherwise why it
    /// cannot be sent.
    std::optional<QString> send(const QString &name, const QByteArray &line);

Q_SIGNALS:
    /// A queued command could not be written later on; nothing more will be.
    void failed(const QString &reason);

private:
    struct Waiting
    {
        QString name;
        QByteArray line;
    };

    enum class WriteResult { done, blocked, failed };

    WriteResult writeFront();
    void flush();
    void replaceWaiting(const QString &name);
    /// Why the last write failed; what waits is given up.
    QString failureText();
    bool isFull() const;

    platform::Descriptor m_descriptor;
    std::deque<Waiting> m_waiting;
    qsizetype m_written = 0; ///< bytes of the front command that are already written
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zorel::backend::bridge
