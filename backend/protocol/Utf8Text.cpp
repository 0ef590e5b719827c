#include "backend/protocol/Utf8Text.h"

namespace zorel::backend::protocol {

QString toQString(std::string_view utf8)
{
    if (utf8.empty()) {
        return {};
    }
    QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    // Qt takes a leading U+FEFF for a mark of the encoding and drops it.
    if (utf8.starts_with("\xEF\xBB\xBF")) {
        text.prepend(QChar(QChar::ByteOrderMark));
    }
    return text;
}

} // namespace zorel::backend::protocol
