#pragma once

class QString;

namespace caldra {

/// `text` with every occurrence of `secret` replaced, also in the percent-encoded and the JSON-escaped form.
QString redacted(QString text, const QString &secret);

} // namespace caldra
