#pragma once

#include <QByteArray>

class QString;

namespace caldra {

/// Whether `text` may be a method or the name of a header.
bool isHTTPToken(const QByteArray &text);
/// Whether `value` may be a header's value: without line breaks and NUL, which would end the header or the
/// head.
bool isHTTPHeaderValue(const QByteArray &value);
/// Whether `status` sends the request on to the address in the answer's Location.
bool isRedirect(int status);
/// What is told about a header that is refused for one of these.
QString unusableHeaderText(const QByteArray &name);

} // namespace caldra
