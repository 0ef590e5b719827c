#pragma once

#include <QString>

#include <functional>

namespace zorel::ui::library {

/// What the library's screens ask of the system.
struct LibraryActions
{
    /// Shows a folder in the file manager.
    std::function<void(const QString &path)> reveal;
};

} // namespace zorel::ui::library
