#include "service/core/DecodingError.h"
#include "service/core/JSONNode.h"
#include "service/core/JSONValue.h"

#include <cstdlib>

using namespace caldra;

/// What decodes, encodes to a text that decodes to the same; the rest is a DecodingError.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    const bool isTruncated = isTruncatedJSON(text);
    JSONValue value;
    try {
        value = JSONValue::fromJSON(text);
    } catch (const DecodingError &) {
        return 0;
    }
    if (isTruncated) {
        std::abort();
    }
    try {
        if (JSONValue::fromJSON(value.toJSON()) != value) {
            std::abort();
        }
    } catch (const DecodingError &) {
        std::abort();
    } catch (const std::exception &) {
        // Nested deeper than the encoder writes.
    }
    return 0;
}
