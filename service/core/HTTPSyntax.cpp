#include "service/core/HTTPSyntax.h"

#include <QString>

#include <algorithm>
#include <cctype>
#include <string_view>

using namespace Qt::StringLiterals;

namespace caldra {

bool isHTTPToken(const QByteArray &text)
{
    const auto isAllowed = [](char character) {
        return std::isalnum(static_cast<unsigned char>(character)) != 0 ||
               std::string_view("!#$%&'*+-.^_`|~").find(character) != std::string_view::npos;
    };
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isAllowed);
}

bool isHTTPHeaderValue(const QByteArray &value)
{
    return std::none_of(value.begin(), value.end(), [](char character) {
        return character == '\r' || character == '\n' || character == '\0';
    });
}

bool isRedirect(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

QString unusableHeaderText(const QByteArray &name)
{
    return u"The header \"%1\" holds a character that no header may hold."_s.arg(QString::fromUtf8(name));
}

} // namespace caldra
