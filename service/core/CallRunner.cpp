#include "service/core/CallRunner.h"

#include "service/core/CaldraError.h"
#include "service/core/ErrorAnswer.h"
#include "service/core/LibraryThread.h"
#include "service/core/PendingCall.h"
#include "service/core/RecordDecoder.h"

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

// Above this size an answer is decoded beside the library's thread, so that other calls go on.
constexpr qsizetype largestDecodedInPlace = 64 * 1024;

bool endedTooSoon(const TransportAnswer &answer)
{
    // Then only the body itself can tell.
    return answer.endedWithConnection && isTruncatedJSON(answer.body);
}

TransportError closedEarly()
{
    return {TransportError::Kind::closedEarly,
            u"The connection was closed before the answer was complete."_s};
}

[[noreturn]] void throwRefusal(const TransportAnswer &answer)
{
    const int status = answer.response->status;
    std::optional<ErrorAnswer> decoded;
    try {
        decoded = decodeJSON<ErrorAnswer>(answer.body);
    } catch (const DecodingError &) {
        if (!answer.body.isEmpty() && endedTooSoon(answer)) {
            throw closedEarly();
        }
        throw CaldraError(CaldraError::UnexpectedStatus{status, answer.body});
    }
    auto &[code, message, details] = decoded->error;
    throw CaldraError(APIError{status, code.value_or(u"unknown_error"_s), message, details});
}

void judge(PendingCall &call, const TransportAnswer &answer, RedirectPolicy redirects)
{
    if (!answer.response) {
        throw CaldraError(CaldraError::UnexpectedStatus{-1, answer.body});
    }
    const int statusClass = answer.response->status / 100;
    const bool isRedirectAskedFor = redirects == RedirectPolicy::report && statusClass == 3;
    if (statusClass != 2 && !isRedirectAskedFor) {
        throwRefusal(answer);
    }
    try {
        call.succeed(answer);
    } catch (const DecodingError &) {
        if (answer.response->status != 204 && endedTooSoon(answer)) {
            throw closedEarly();
        }
        throw;
    }
}

void complete(PendingCall &call, const TransportAnswer &answer, RedirectPolicy redirects,
              const QString &apiKey)
{
    try {
        judge(call, answer, redirects);
    } catch (const CaldraError &error) {
        call.fail(error.withoutSecret(apiKey));
    } catch (const DecodingError &error) {
        call.fail(CaldraError(error).withoutSecret(apiKey));
    } catch (const TransportError &error) {
        call.fail(CaldraError(error).withoutSecret(apiKey));
    }
}

TransportError transportErrorFrom(const std::exception_ptr &thrown)
{
    try {
        std::rethrow_exception(thrown);
    } catch (const TransportError &error) {
        return error;
    } catch (const std::exception &error) {
        return {TransportError::Kind::other, QString::fromUtf8(error.what())};
    } catch (...) {
        return {TransportError::Kind::other, u"The transport failed."_s};
    }
}

} // namespace

CallRunner::CallRunner(QObject &parent, std::shared_ptr<CaldraTransport> transport,
                       std::shared_ptr<PendingCall> call)
    : QObject(&parent)
    , m_transport(std::move(transport))
    , m_call(std::move(call))
{}

CallRunner::~CallRunner()
{
    giveUp();
}

void CallRunner::giveUp()
{
    if (!m_sending.isFinished()) {
        m_sending.cancel();
    }
    m_call->cancel();
}

void CallRunner::start(const std::shared_ptr<CaldraTransport> &transport, HTTPRequest request,
                       const std::shared_ptr<PendingCall> &call, const QString &apiKey)
{
    runOnLibraryThread([=, request = std::move(request)](QObject &context) {
        if (call->future().isCanceled()) {
            call->cancel();
        } else {
            (new CallRunner(context, transport, call))->send(request, apiKey);
        }
    });
}

void CallRunner::send(const HTTPRequest &request, const QString &apiKey)
{
    connect(&m_watcher, &QFutureWatcher<void>::canceled, this, &CallRunner::giveUp);
    connect(&m_watcher, &QFutureWatcher<void>::finished, this, &QObject::deleteLater);
    m_watcher.setFuture(m_call->future());
    try {
        m_sending = m_transport->send(request);
    } catch (...) {
        m_call->fail(CaldraError(transportErrorFrom(std::current_exception())).withoutSecret(apiKey));
        return;
    }

    // The answer may come on any thread, and when the runner is gone.
    const auto finish = [call = m_call, apiKey,
                         redirects = request.redirects](QFuture<TransportAnswer> sent) {
        TransportAnswer answer;
        try {
            sent.waitForFinished(); // throws what the transport threw
            if (sent.resultCount() == 0) {
                throw TransportError(TransportError::Kind::other, u"The transport gave no answer."_s);
            }
            answer = sent.result();
        } catch (...) {
            call->fail(CaldraError(transportErrorFrom(std::current_exception())).withoutSecret(apiKey));
            return;
        }
        if (answer.body.size() <= largestDecodedInPlace) {
            complete(*call, answer, redirects, apiKey);
        } else {
            runBesideLibraryThread(
                [=, answer = std::move(answer)] { complete(*call, answer, redirects, apiKey); });
        }
    };
    m_sending.then(QtFuture::Launch::Sync, finish).onCanceled([call = m_call] { call->cancel(); });
}

} // namespace caldra
