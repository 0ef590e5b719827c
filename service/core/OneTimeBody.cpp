#include "service/core/OneTimeBody.h"

#include <algorithm>

namespace caldra {

OneTimeBody::OneTimeBody(QByteArray bytes, QObject *parent)
    : QIODevice(parent)
    , m_bytes(std::move(bytes))
{
    open(ReadOnly);
}

qint64 OneTimeBody::bytesAvailable() const
{
    return m_bytes.size() - m_position + QIODevice::bytesAvailable();
}

bool OneTimeBody::seek(qint64 position)
{
    m_isSpent = m_isSpent || m_position > 0;
    m_position = position;
    return true;
}

qint64 OneTimeBody::readData(char *target, qint64 size)
{
    if (m_isSpent)
        return -1;
    const qint64 count = std::min(size, m_bytes.size() - m_position);
    std::copy_n(m_bytes.constData() + m_position, count, target);
    m_position += count;
    return count;
}

} // namespace caldra
