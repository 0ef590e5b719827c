#include "platform/ColorScheme.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using zorel::platform::Environment;
using zorel::platform::prefersDarkWindows;

class ColorSchemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheSettings_data();
    void readsTheSettings();
    void believesTheEnvironmentFirst();
    void looksWhereTheConfigurationLies();
    void isLightWithoutAnything();

private:
    static void write(const QString &folder, const QByteArray &content)
    {
        QVERIFY(QDir().mkpath(folder));
        QFile file(folder + QLatin1String("/settings.ini"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir m_home;
};

void ColorSchemeTest::readsTheSettings_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isDark");
    QTest::newRow("asked for") << QByteArray("[Settings]\ngtk-application-prefer-dark-theme=1\n") << true;
    QTest::newRow("asked for in words")
        << QByteArray("[Settings]\r\ngtk-application-prefer-dark-theme = true\r\n") << true;
    QTest::newRow("refused") << QByteArray("[Settings]\ngtk-application-prefer-dark-theme=0\n") << false;
    QTest::newRow("a dark theme") << QByteArray("[Settings]\ngtk-theme-name=Adwaita-dark\n") << true;
    QTest::newRow("a light theme") << QByteArray("[Settings]\ngtk-theme-name=Adwaita\n") << false;
    QTest::newRow("a comment") << QByteArray("# gtk-theme-name\n=\n") << false;
    QTest::newRow("no text") << QByteArray(200'000, '\0') << false;
}

void ColorSchemeTest::readsTheSettings()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isDark);
    for (const char *folder : {"/.config/gtk-3.0", "/.config/gtk-4.0"}) {
        const QTemporaryDir home;
        write(home.path() + QLatin1String(folder), content);
        QCOMPARE(prefersDarkWindows({}, home.path()), isDark);
    }
}

void ColorSchemeTest::believesTheEnvironmentFirst()
{
    const QTemporaryDir home;
    QVERIFY(prefersDarkWindows({{"GTK_THEME", "Adwaita:dark"}}, home.path()));
    write(home.path() + QLatin1String("/.config/gtk-3.0"), "gtk-theme-name=Adwaita-dark");
    QVERIFY(!prefersDarkWindows({{"GTK_THEME", "Adwaita"}}, home.path()));
}

void ColorSchemeTest::looksWhereTheConfigurationLies()
{
    const QTemporaryDir home;
    const QTemporaryDir configuration;
    write(configuration.path() + QLatin1String("/gtk-3.0"), "gtk-theme-name=Adwaita-dark");
    QVERIFY(!prefersDarkWindows({}, home.path()));
    QVERIFY(prefersDarkWindows({{"XDG_CONFIG_HOME", configuration.path().toLocal8Bit()}}, home.path()));
}

void ColorSchemeTest::isLightWithoutAnything()
{
    QVERIFY(!prefersDarkWindows({}, m_home.path()));
    QVERIFY(!prefersDarkWindows({}, QStringLiteral("/does/not/exist")));
}

QTEST_GUILESS_MAIN(ColorSchemeTest)
#include "ColorSchemeTest.moc"
