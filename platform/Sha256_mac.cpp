#include "platform/Sha256.h"

#include <CommonCrypto/CommonDigest.h>

#include <algorithm>
#include <limits>

namespace zorel::platform {

struct Sha256::State
{
    CC_SHA256_CTX context;
};

Sha256::Sha256()
    : m_state(std::make_unique<State>())
{
    CC_SHA256_Init(&m_state->context);
}

Sha256::~Sha256() = default;
Sha256::Sha256(Sha256 &&) noexcept = default;
Sha256 &Sha256::operator=(Sha256 &&) noexcept = default;

void Sha256::add(QByteArrayView bytes)
{
    // A length there has 32 bits.
    constexpr qsizetype most = std::numeric_limits<CC_LONG>::max();
    while (!bytes.isEmpty()) {
        const QByteArrayView piece = bytes.first(std::min(bytes.size(), most));
        CC_SHA256_Update(&m_state->context, piece.data(), static_cast<CC_LONG>(piece.size()));
        bytes = bytes.sliced(piece.size());
    }
}

QByteArray Sha256::result()
{
    QByteArray digest(CC_SHA256_DIGEST_LENGTH, '\0');
    CC_SHA256_Final(reinterpret_cast<unsigned char *>(digest.data()), &m_state->context);
    return digest;
}

} // namespace zorel::platform
