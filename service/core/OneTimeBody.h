#pragma once

#include <QByteArray>
#include <QIODevice>

namespace caldra {

/// A request body that can be sent once.
///
/// When a connection ends without an answer, the network layer sends the request again, over and over. What the first one
/// changed would then be changed twice; a body that cannot be read again makes it report the end instead. It may be
/// rewound, as that also happens on the way to a redirect.
class OneTimeBody : public QIODevice
{
public:
    explicit OneTimeBody(QByteArray bytes, QObject *parent = nullptr);

    bool isSequential() const override { return true; }
    bool seek(qint64 position) override;
    bool atEnd() const override { return bytesAvailable() == 0; }
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char *target, qint64 size) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_position = 0;
    bool m_isSpent = false;
};

} // namespace caldra
