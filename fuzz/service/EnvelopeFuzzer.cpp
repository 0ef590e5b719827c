#include "service/CaldraClient.h"
#include "service/core/Envelope.h"
#include "service/core/ErrorAnswer.h"
#include "service/core/RecordDecoder.h"
#include "service/core/RecordEncoder.h"

#include <cstdlib>

using namespace caldra;

namespace {

/// A payload that decodes survives being encoded and decoded again; the rest is a DecodingError.
template <class Payload>
void decodeTwice(const QByteArray &text)
{
    Payload payload;
    try {
        payload = decodeJSON<Envelope<Payload>>(text).data;
    } catch (const DecodingError &error) {
        if (error.description().isEmpty()) {
            std::abort();
        }
        return;
    }
    if (decodeJSON<Payload>(encodeJSON(payload)) != payload) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    decodeTwice<DistributionApplicationsResponse>(text);
    decodeTwice<DistributionLatestResponse>(text);
    decodeTwice<CareersTemplateResponse>(text);
    decodeTwice<LegalPolicyResponse>(text);
    decodeTwice<SystemStatusResponse>(text);
    decodeTwice<FlagEvaluationResponse>(text);
    try {
        decodeJSON<ErrorAnswer>(text);
    } catch (const DecodingError &) {
    }
    return 0;
}
