#include "platform/Sha256.h"

#include <QCryptographicHash>
#include <QLibrary>

#include <new>
#include <optional>

#include <openssl/evp.h>

namespace zorel::platform {

namespace {

/// What is used of OpenSSL. Loaded with the first digest, since binding its thousands of symbols takes a
/// tenth of the program's start, and few starts need a digest.
struct Crypto
{
    decltype(&EVP_MD_CTX_new) newContext;
    decltype(&EVP_MD_CTX_free) freeContext;
    decltype(&EVP_sha256) sha256;
    decltype(&EVP_DigestInit_ex) start;
    decltype(&EVP_DigestUpdate) update;
    decltype(&EVP_DigestFinal_ex) finish;
};

template <typename Function>
bool find(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

std::optional<Crypto> loadCrypto()
{
    QLibrary library(QStringLiteral("crypto"), OPENSSL_SHLIB_VERSION);
    Crypto crypto{};
    const bool isWhole = find(library, "EVP_MD_CTX_new", crypto.newContext) &&
                         find(library, "EVP_MD_CTX_free", crypto.freeContext) &&
                         find(library, "EVP_sha256", crypto.sha256) &&
                         find(library, "EVP_DigestInit_ex", crypto.start) &&
                         find(library, "EVP_DigestUpdate", crypto.update) &&
                         find(library, "EVP_DigestFinal_ex", crypto.finish);
    return isWhole ? std::optional(crypto) : std::nullopt;
}

const std::optional<Crypto> &crypto()
{
    static const std::optional<Crypto> loaded = loadCrypto();
    return loaded;
}

} // namespace

struct Sha256::State
{
    EVP_MD_CTX *context = nullptr;
    /// Where there is no OpenSSL: slower, and right.
    std::optional<QCryptographicHash> own;

    State()
    {
        if (!crypto()) {
            own.emplace(QCryptographicHash::Sha256);
            return;
        }
        context = crypto()->newContext();
        if (context == nullptr || crypto()->start(context, crypto()->sha256(), nullptr) != 1) {
            crypto()->freeContext(context);
            throw std::bad_alloc();
        }
    }

    ~State()
    {
        if (!own) {
            crypto()->freeContext(context);
        }
    }
    Q_DISABLE_COPY_MOVE(State)
};

Sha256::Sha256()
    : m_state(std::make_unique<State>())
{}

Sha256::~Sha256() = default;
Sha256::Sha256(Sha256 &&) noexcept = default;
Sha256 &Sha256::operator=(Sha256 &&) noexcept = default;

void Sha256::add(QByteArrayView bytes)
{
    if (m_state->own) {
        m_state->own->addData(bytes);
        return;
    }
    crypto()->update(m_state->context, bytes.data(), static_cast<std::size_t>(bytes.size()));
}

QByteArray Sha256::result()
{
    if (m_state->own) {
        return m_state->own->result();
    }
    QByteArray digest(32, '\0');
    crypto()->finish(m_state->context, reinterpret_cast<unsigned char *>(digest.data()), nullptr);
    return digest;
}

} // namespace zorel::platform
