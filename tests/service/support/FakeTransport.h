#pragma once

#include "service/core/CaldraTransport.h"

#include <functional>
#include <mutex>

namespace caldra::tests {

/// Answers at once, from memory.
class FakeTransport final : public CaldraTransport
{
public:
    using Respond = std::function<QFuture<TransportAnswer>(const HTTPRequest &)>;

    explicit FakeTransport(Respond respond)
        : m_respond(std::move(respond))
    {}

    FakeTransport(int status, QByteArray body)
        : FakeTransport([=](const HTTPRequest &request) {
            return QtFuture::makeReadyFuture(TransportAnswer{body, HTTPResponse{status, {}, request.url}});
        })
    {}

    QFuture<TransportAnswer> send(const HTTPRequest &request) override
    {
        const std::lock_guard lock(m_mutex);
        m_request = request;
        return m_respond(request);
    }

    HTTPRequest request() const
    {
        const std::lock_guard lock(m_mutex);
        return m_request;
    }

private:
    Respond m_respond;
    mutable std::mutex m_mutex;
    HTTPRequest m_request;
};

} // namespace caldra::tests
