// Declared as the system's manual page CC_SHA(3cc) gives it.
#pragma once

#include <cstdint>

using CC_LONG = std::uint32_t;
inline constexpr int CC_SHA256_DIGEST_LENGTH = 32;

struct CC_SHA256_CTX
{
    CC_LONG state[26];
};

extern "C" int CC_SHA256_Init(CC_SHA256_CTX *context);
extern "C" int CC_SHA256_Update(CC_SHA256_CTX *context, const void *data, CC_LONG length);
extern "C" int CC_SHA256_Final(unsigned char *digest, CC_SHA256_CTX *context);
