#pragma once

#include <QUrl>

#include <functional>

namespace zorel::app::folders {

/// Sends the user to the page of the system's settings on which access to files and folders is granted. Its
/// address differs between versions of the system, so each is tried until `openUrl` reports success. False
/// when none was opened.
bool openPrivacySettings(const std::function<bool(const QUrl &)> &openUrl);

} // namespace zorel::app::folders
