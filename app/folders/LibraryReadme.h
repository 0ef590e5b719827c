#pragma once

#include <QString>

namespace zorel::app::folders {

/// What the README in the library root says; it always describes the library's own subfolders.
QString libraryReadmeText();

/// Creates the library root (absolute) with its two subfolders and, where there is none, its README.md. An
/// existing README stays as it is. Failures are silent: unusable folders show in the access flags.
void installLibraryReadme(const QString &libraryRoot);

} // namespace zorel::app::folders
