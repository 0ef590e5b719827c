#include "platform/Bundle.h"

#include "platform/ExecutablePath.h"

#include <QDir>
#include <QFileInfo>

namespace zorel::platform {

std::optional<Bundle> bundleOf(const QString &executablePath)
{
    if (!QDir::isAbsolutePath(executablePath) || executablePath.endsWith(u'/')) {
        return std::nullopt;
    }
    const QFileInfo executables(QFileInfo(QDir::cleanPath(executablePath)).path());
    const QFileInfo contents(executables.path());
    const QFileInfo bundle(contents.path());
    constexpr QLatin1String suffix(".app");
    const QString name = bundle.fileName();
    if (executables.fileName() != QLatin1String("MacOS") ||
        contents.fileName() != QLatin1String("Contents") || !name.endsWith(suffix) ||
        name.size() == suffix.size()) {
        return std::nullopt;
    }
    return Bundle{bundle.filePath(), contents.filePath() + QLatin1String("/Resources"), bundle.path()};
}

const std::optional<Bundle> &mainBundle()
{
    // An update moves the bundle away while the old process still runs.
    static const std::optional<Bundle> bundle = bundleOf(executablePath());
    return bundle;
}

} // namespace zorel::platform
