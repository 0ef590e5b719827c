#include "service/core/RecordEncoder.h"

namespace caldra::detail {

QJsonValue encodeNumber(double value)
{
    return JSONValue(value).encoded();
}

QString encodeText(std::string_view text)
{
    return QString::fromLatin1(text.data(), qsizetype(text.size()));
}

} // namespace caldra::detail
