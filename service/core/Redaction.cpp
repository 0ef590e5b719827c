#include "service/core/Redaction.h"

#include "service/core/JSONValue.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace caldra {

QString redacted(QString text, const QString &secret)
{
    if (secret.isEmpty()) {
        return text;
    }
    const QString escaped = QString::fromUtf8(JSONValue(secret).toJSON());
    const QString forms[] = {secret, QString::fromLatin1(QUrl::toPercentEncoding(secret)),
                             escaped.mid(1, escaped.size() - 2)};
    for (const QString &form : forms) {
        text.replace(form, u"[redacted]"_s);
    }
    return text;
}

} // namespace caldra
