#pragma once

#include "service/core/CaldraError.h"
#include "service/core/EncodingError.h"
#include "service/core/Envelope.h"
#include "service/core/HTTPClient.h"
#include "service/core/PendingCall.h"
#include "service/core/RecordDecoder.h"
#include "service/core/RecordEncoder.h"

#include <QPromise>

#include <atomic>

namespace caldra {

namespace detail {

template <class Value>
class PromisedCall : public PendingCall
{
public:
    PromisedCall() { m_promise.start(); }

    void fail(const CaldraError &error) override
    {
        if (isFirst()) {
            m_promise.setException(std::make_exception_ptr(error));
            m_promise.finish();
        }
    }

    void cancel() override
    {
        if (isFirst()) {
            m_promise.future().cancel();
            m_promise.finish();
        }
    }

    QFuture<void> future() override { return QFuture<void>(m_promise.future()); }
    QFuture<Value> typedFuture() { return m_promise.future(); }

protected:
    void finishWith(Value value)
    {
        if (isFirst()) {
            m_promise.addResult(std::move(value));
            m_promise.finish();
        }
    }

private:
    bool isFirst() { return !m_isOver.test_and_set(); }

    QPromise<Value> m_promise;
    std::atomic_flag m_isOver;
};

template <class Answer>
class EnvelopeCall final : public PromisedCall<Answer>
{
public:
    void succeed(const TransportAnswer &answer) override
    {
        this->finishWith(decodeJSON<Envelope<Answer>>(answer.body).data);
    }
};

/// The body's JSON; a body that JSON cannot express throws CaldraError.
template <class Body>
QByteArray encodeBody(const Body &body)
{
    try {
        return encodeJSON(body);
    } catch (const EncodingError &error) {
        throw CaldraError(
            TransportError(TransportError::Kind::unusableRequest, QString::fromLatin1(error.what())));
    }
}

} // namespace detail

template <class Answer>
QFuture<Answer> HTTPClient::request(HTTPMethod method, const QString &path, const QueryItems &query) const
{
    const auto call = std::make_shared<detail::EnvelopeCall<Answer>>();
    try {
        run(makeRequest(method, path, query, std::nullopt), call);
    } catch (const CaldraError &error) {
        call->fail(error);
    }
    return call->typedFuture();
}

template <class Answer, class Body>
QFuture<Answer> HTTPClient::request(HTTPMethod method, const QString &path, const QueryItems &query,
                                    const Body &body) const
{
    const auto call = std::make_shared<detail::EnvelopeCall<Answer>>();
    try {
        run(makeRequest(method, path, query, detail::encodeBody(body)), call);
    } catch (const CaldraError &error) {
        call->fail(error);
    }
    return call->typedFuture();
}

} // namespace caldra
