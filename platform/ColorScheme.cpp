#include "platform/ColorScheme.h"

#include <QFile>

namespace zorel::platform {

namespace {

constexpr qint64 largestFile = 65'536;

/// Themes come in pairs, "Adwaita" and "Adwaita-dark"; the environment writes the latter "Adwaita:dark".
bool isDarkTheme(const QByteArray &name)
{
    const QByteArray lower = name.toLower();
    return lower.endsWith("-dark") || lower.endsWith(":dark");
}

bool saysDark(const QString &settingsFile)
{
    QFile file(settingsFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QList<QByteArray> lines = file.read(largestFile).split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype equals = line.indexOf('=');
        if (equals < 0) {
            continue;
        }
        const QByteArray key = line.left(equals).trimmed();
        const QByteArray value = line.mid(equals + 1).trimmed();
        if ((key == "gtk-application-prefer-dark-theme" && (value == "1" || value.toLower() == "true")) ||
            (key == "gtk-theme-name" && isDarkTheme(value))) {
            return true;
        }
    }
    return false;
}

} // namespace

bool prefersDarkWindows(const Environment &environment, const QString &home)
{
    if (const QByteArray theme = environment.value("GTK_THEME"); !theme.isEmpty()) {
        return isDarkTheme(theme);
    }
    const QString configured = QFile::decodeName(environment.value("XDG_CONFIG_HOME"));
    const QString folder = configured.isEmpty() ? home + QLatin1String("/.config") : configured;
    return saysDark(folder + QLatin1String("/gtk-4.0/settings.ini")) ||
           saysDark(folder + QLatin1String("/gtk-3.0/settings.ini"));
}

} // namespace zorel::platform
