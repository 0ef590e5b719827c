#include "service/core/CaldraError.h"

#include "service/core/Redaction.h"

#include <QDebug>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

template <class... Arms>
struct Overloaded : Arms...
{
    using Arms::operator()...;
};

template <class... Arms>
Overloaded(Arms...) -> Overloaded<Arms...>;

JSONValue redactedValue(const JSONValue &value, const QString &secret)
{
    if (const QString *text = value.string()) {
        return redacted(*text, secret);
    }
    if (const JSONValue::Array *array = value.array()) {
        JSONValue::Array result;
        for (const JSONValue &element : *array) {
            result.push_back(redactedValue(element, secret));
        }
        return result;
    }
    if (const JSONValue::Object *object = value.object()) {
        JSONValue::Object result;
        for (const auto &[key, member] : *object) {
            result.insert_or_assign(redacted(key, secret), redactedValue(member, secret));
        }
        return result;
    }
    return value;
}

} // namespace

CaldraError::CaldraError(Payload payload)
    : m_payload(std::move(payload))
    , m_what(description().toUtf8())
{}

QString CaldraError::description() const
{
    return std::visit(
        Overloaded{
            [](const InvalidURL &error) { return u"Could not build a valid URL from "_s + error.path; },
            [](const TransportError &error) { return u"Network error: "_s + error.localizedDescription(); },
            [](const APIError &error) { return error.message; },
            [](const DecodingError &error) {
                return u"Failed to decode Caldra response: "_s + error.description();
            },
            [](const UnexpectedStatus &error) {
                return u"Unexpected HTTP status "_s + QString::number(error.status);
            },
        },
        m_payload);
}

CaldraError CaldraError::withoutSecret(const QString &secret) const
{
    return std::visit(
        Overloaded{
            [&](const InvalidURL &error) -> Payload { return InvalidURL{redacted(error.path, secret)}; },
            [&](const TransportError &error) -> Payload {
                return TransportError(error.kind(), redacted(error.localizedDescription(), secret));
            },
            [&](APIError error) -> Payload {
                error.code = redacted(error.code, secret);
                error.message = redacted(error.message, secret);
                if (error.details) {
                    error.details = redactedValue(*error.details, secret);
                }
                return error;
            },
            [&](const DecodingError &error) -> Payload {
                return DecodingError(redacted(error.path(), secret), redacted(error.reason(), secret));
            },
            [](const UnexpectedStatus &error) -> Payload { return error; },
        },
        m_payload);
}

QDebug operator<<(QDebug debug, const CaldraError &error)
{
    const QDebugStateSaver saver(debug);
    return debug.noquote() << error.description();
}

} // namespace caldra
