#pragma once

#include "terminal/TerminalOptions.h"

#include "app/settings/ZorelSettings.h"
#include "platform/StandardFolders.h"
#include "platform/UserDefaults.h"
#include "terminal/OverlayUserDefaults.h"

namespace zorel::terminal {

/// The stored settings with the command line's on top, which stay in memory unless they are to be saved.
class RunSettings
{
public:
    /// Writes to `store`, which must outlive this object, only when `options` says so and nothing is wrong
    /// with them. Throws UsageError.
    RunSettings(platform::UserDefaults &store, const platform::StandardFolders &folders,
                const TerminalOptions &options);

    app::settings::ZorelSettings &settings() { return m_settings; }

private:
    OverlayUserDefaults m_overlay;
    app::settings::ZorelSettings m_settings;
};

} // namespace zorel::terminal
