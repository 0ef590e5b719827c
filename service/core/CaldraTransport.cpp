#include "service/core/CaldraTransport.h"

namespace caldra {

std::optional<QByteArray> HTTPResponse::header(const QByteArray &name) const
{
    for (const auto &[headerName, value] : headers) {
        if (headerName.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return std::nullopt;
}

} // namespace caldra
