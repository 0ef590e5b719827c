#pragma once

#include <QString>
#include <QUrl>

namespace zorel::updater {

/// Where people find every release; named in messages and opened from the fallback links.
inline QString downloadsPageAddress()
{
    return QStringLiteral("https://talvex.example/downloads");
}

inline QUrl downloadsPage()
{
    return QUrl(downloadsPageAddress());
}

} // namespace zorel::updater
