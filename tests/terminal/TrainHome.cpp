#include "tests/terminal/TrainHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace zorel::tests {

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

QByteArray fileContent(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TrainHome::TrainHome()
{
    writeFile(scripts() + QStringLiteral("/src/app_backend.py"),
              fileContent(QStringLiteral(ZOREL_FAKE_SIDECAR)));
    writeFile(interpreter(), "#!/bin/sh\n[ \"$1\" = -c ] && exit 0\nexec /usr/bin/python3 \"$@\"\n");
    QFile::setPermissions(interpreter(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    m_environment = QProcessEnvironment::systemEnvironment();
    setEnvironment(QStringLiteral("HOME"), m_folder.path());
    setEnvironment(QStringLiteral("ZOREL_SCRIPTS_ROOT"), scripts());
    setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    setEnvironment(QStringLiteral("TERM"), QStringLiteral("xterm"));
    for (const char *name : {"XDG_CONFIG_HOME", "NO_COLOR", "COLUMNS", "ZOREL_FAKE_SCENARIO"}) {
        unsetEnvironment(QLatin1String(name));
    }
}

void TrainHome::play(const QJsonArray &scenario)
{
    setEnvironment(QStringLiteral("ZOREL_FAKE_SCENARIO"),
                   QString::fromUtf8(QJsonDocument(scenario).toJson(QJsonDocument::Compact)));
}

QJsonObject does(const char *name, const QJsonValue &value)
{
    return {{QLatin1String(name), value}};
}

QJsonObject says(const QJsonObject &event)
{
    return does("emit", event);
}

QJsonObject ready()
{
    return says({{QStringLiteral("event"), QStringLiteral("ready")}});
}

QJsonObject status(const char *state, int step, int maxSteps, double loss, double elapsed)
{
    return says({{QStringLiteral("event"), QStringLiteral("status")},
                 {QStringLiteral("state"), QLatin1String(state)},
                 {QStringLiteral("step"), step},
                 {QStringLiteral("max_steps"), maxSteps},
                 {QStringLiteral("loss"), loss},
                 {QStringLiteral("lr"), 0.001},
                 {QStringLiteral("grad_norm"), 0.5},
                 {QStringLiteral("tokens_per_sec"), 1234},
                 {QStringLiteral("elapsed_s"), elapsed}});
}

} // namespace zorel::tests
