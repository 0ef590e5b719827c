#include "updater/ServiceFailure.h"

#include "service/core/CaldraError.h"
#include "updater/Overloaded.h"

namespace zorel::updater {

namespace {

using caldra::APIError;
using caldra::CaldraError;
using caldra::DecodingError;
using caldra::TransportError;

UpdateError::Payload meaningOf(const APIError &error)
{
    constexpr int notFound = 404;
    if (error.code == QLatin1String("not_found") || error.status == notFound) {
        return UpdateError::NoReleaseYet{};
    }
    return UpdateError::Http{error.status, error.message.isEmpty() ? error.code : error.message};
}

} // namespace

UpdateError updateErrorFrom(const CaldraError &error)
{
    return std::visit(Overloaded{
                          [&error](const CaldraError::InvalidURL &) -> UpdateError::Payload {
                              return UpdateError::Http{0, error.description()};
                          },
                          [](const TransportError &failure) -> UpdateError::Payload {
                              return UpdateError::Http{0, failure.localizedDescription()};
                          },
                          [](const APIError &failure) { return meaningOf(failure); },
                          [](const DecodingError &) -> UpdateError::Payload { return UpdateError::Decode{}; },
                          [](const CaldraError::UnexpectedStatus &failure) -> UpdateError::Payload {
                              return UpdateError::Http{
                                  failure.status,
                                  QStringLiteral("Unexpected HTTP status %1.").arg(failure.status)};
                          },
                      },
                      error.payload());
}

} // namespace zorel::updater
