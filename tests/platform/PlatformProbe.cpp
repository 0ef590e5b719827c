#include "platform/BrokenPipe.h"
#include "platform/Bundle.h"
#include "platform/FileUserDefaults.h"
#include "platform/InformationDictionary.h"
#include "platform/KeepAwake.h"
#include "platform/UserDefaults.h"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using zorel::platform::FileUserDefaults;

namespace {

const QString name = QStringLiteral("zorel.modelName");
const QString version = QStringLiteral("zorel.modelVersion");
const QString description = QStringLiteral("zorel.modelDescription");

/// Leaves without the leak checker, which does not work in a process that has given up its rights.
void require(bool condition, const char *text)
{
    if (!condition) {
        std::fprintf(stderr, "not so: %s\n", text);
        std::_Exit(EXIT_FAILURE);
    }
}

void say(const QString &line)
{
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

/// Counts on from the stored number for ever; three values change together each time.
void countForever(const QString &file)
{
    FileUserDefaults store(file);
    for (int number = store.string(name).value_or(QStringLiteral("0")).toInt() + 1;; ++number) {
        const QString text = QString::number(number);
        store.setString(name, text);
        store.setString(description, (text + u' ').repeated(20'000));
        store.setString(version, text);
        store.synchronize();
        say(text);
    }
}

void countUnderOwnKey(const QString &file, const QString &key, int last)
{
    FileUserDefaults store(file);
    for (int number = 1; number <= last; ++number) {
        store.setString(key, QString::number(number));
        store.synchronize();
        say(QString::number(number));
    }
}

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// Files of this process cannot grow beyond 4 KiB, which is how a full disk looks to it.
void writeBeyondTheLimit(const QString &file)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlim_t unlimited = limit.rlim_cur;
    limit.rlim_cur = 4096;
    require(::setrlimit(RLIMIT_FSIZE, &limit) == 0, "the limit is set");

    const QByteArray before = contentsOf(file);
    const QString large(100'000, u'x');
    FileUserDefaults store(file);
    store.setString(description, large);
    store.synchronize();
    require(store.string(description) == large, "the session goes on with the new value");
    require(contentsOf(file) == before, "the file holds the old values");
    require(!QFile::exists(file + QStringLiteral(".new")), "no partial file is left");

    limit.rlim_cur = unlimited;
    require(::setrlimit(RLIMIT_FSIZE, &limit) == 0, "the limit is lifted");
    store.setString(name, QStringLiteral("Poet"));
    store.synchronize();
    const FileUserDefaults reread(file);
    require(reread.string(name) == QStringLiteral("Poet"), "the next change is written");
    require(reread.string(description) == large, "with the one that found no space");
}

void writeWithoutRights(const QString &file)
{
    constexpr uid_t nobody = 65534;
    if (::geteuid() == 0) {
        require(::setgid(nobody) == 0 && ::setuid(nobody) == 0, "rights are given up");
    }
    const QByteArray before = contentsOf(file);
    {
        FileUserDefaults store(file);
        store.setString(name, QStringLiteral("Poet"));
        store.synchronize();
        require(store.string(name) == QStringLiteral("Poet"), "the session goes on with the new value");
    }
    require(contentsOf(file) == before, "the file holds the old values");
    std::_Exit(EXIT_SUCCESS);
}

void writeToBrokenPipe()
{
    std::signal(SIGPIPE, SIG_DFL);
    zorel::platform::ignoreBrokenPipe();
    int ends[2] = {};
    require(::pipe(ends) == 0, "there is a pipe");
    ::close(ends[0]);
    require(::write(ends[1], "x", 1) == -1 && errno == EPIPE, "the write fails");
    ::close(ends[1]);
}

void saveAndReturn(const QString &text)
{
    zorel::platform::standardUserDefaults().setString(name, text);
}

void tellBundle()
{
    if (const auto &bundle = zorel::platform::mainBundle()) {
        say(bundle->path);
        say(bundle->resources);
        say(bundle->parent);
    }
}

void tellInformation()
{
    const zorel::platform::InformationDictionary &information = zorel::platform::mainInformationDictionary();
    for (auto entry = information.constBegin(); entry != information.constEnd(); ++entry) {
        say(entry.key() + u'=' + entry.value().toString());
    }
}

/// Until somebody kills this process.
void stayAwake(int argumentCount, char **arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    zorel::platform::KeepAwake keepAwake;
    keepAwake.hold(QCoreApplication::arguments().value(2));
    for (;;) {
        ::pause();
    }
}

} // namespace

int main(int argumentCount, char **arguments)
{
    QStringList words;
    for (int index = 1; index < argumentCount; ++index) {
        words.append(QFile::decodeName(arguments[index]));
    }
    const QString task = words.value(0);
    if (task == QLatin1String("count-forever")) {
        countForever(words.value(1));
    } else if (task == QLatin1String("count")) {
        countUnderOwnKey(words.value(1), words.value(2), words.value(3).toInt());
    } else if (task == QLatin1String("beyond-limit")) {
        writeBeyondTheLimit(words.value(1));
    } else if (task == QLatin1String("without-rights")) {
        writeWithoutRights(words.value(1));
    } else if (task == QLatin1String("broken-pipe")) {
        writeToBrokenPipe();
    } else if (task == QLatin1String("save-and-return")) {
        saveAndReturn(words.value(1));
    } else if (task == QLatin1String("bundle")) {
        tellBundle();
    } else if (task == QLatin1String("information")) {
        tellInformation();
    } else if (task == QLatin1String("stay-awake")) {
        stayAwake(argumentCount, arguments);
    } else {
        std::fprintf(stderr, "unknown task\n");
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
