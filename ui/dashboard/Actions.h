#pragma once

#include <QString>

#include <functional>

namespace zorel::ui::dashboard {

/// What the dashboard has done outside its window. Every function is set.
struct Actions
{
    /// Shows a file or folder, given by its absolute path, in the system's file viewer.
    std::function<void(const QString &path)> reveal;
    std::function<void()> openSettings;
};

} // namespace zorel::ui::dashboard
