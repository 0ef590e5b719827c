#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <memory>

namespace zorel::platform {

/// The SHA-256 digest of bytes that come piece by piece, by the system's own library: several times as fast
/// as QCryptographicHash, and constant in memory. One object belongs to one thread at a time.
class Sha256
{
public:
    /// Throws std::bad_alloc.
    Sha256();
    ~Sha256();
    Sha256(Sha256 &&) noexcept;
    Sha256 &operator=(Sha256 &&) noexcept;

    void add(QByteArrayView bytes);
    /// The 32 bytes of the digest. To be called once, last.
    QByteArray result();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zorel::platform
