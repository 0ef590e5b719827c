#include "tests/ui/dashboard/Stage.h"

#include "platform/BrokenPipe.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/CollapsibleSection.h"
#include "ui/kit/SymbolLabel.h"

#include <QAccessible>
#include <QFile>
#include <QJsonDocument>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>

namespace zorel::tests {

using app::folders::ConfiguredFolder;
using app::folders::FolderAccessChecker;
using backend::bridge::BackendController;

Stage::Stage()
    : settings(store, platform::StandardFolders::below(sidecar.pathOf(QStringLiteral("user"))))
    , backend(settings, sidecar.surroundings())
    , access(settings, {.probe = [this](const QString &path) { return !blockedPaths.contains(path); },
                        .openUrl =
                            [this](const QUrl &url) {
                                openedUrls.push_back(url);
                                return true;
                            }})
    , actions{[this](const QString &path) { revealed.append(path); },
              [this] {
                  ++settingsOpenings;
              }}
{
    // As the application does; a sidecar may end while it is written to.
    platform::ignoreBrokenPipe();
}

void Stage::launchRecorder()
{
    sidecar.play({step(QStringLiteral("echo_commands_to"), recordPath()),
                  step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")},
                                                           {QStringLiteral("default_max_steps"), 1000}}),
                  step(QStringLiteral("wait_for_eof"), true)});
    // The controller asks for its environment when it launches.
    backend.launch();
    QTRY_VERIFY_WITH_TIMEOUT(commands(QStringLiteral("set_training_profile")).size() == 1, 30'000);
}

std::vector<QJsonObject> Stage::commands(const QString &name) const
{
    QFile file(recordPath());
    std::vector<QJsonObject> found;
    if (!file.open(QIODevice::ReadOnly)) {
        return found;
    }
    while (!file.atEnd()) {
        const QJsonObject command = QJsonDocument::fromJson(file.readLine()).object();
        if (name.isEmpty() || command.value(QLatin1String("cmd")) == name) {
            found.push_back(command);
        }
    }
    return found;
}

void Stage::applyStatus(const QString &state, std::int64_t stepReached, std::int64_t maxSteps, double loss)
{
    backend::protocol::TrainStatusPayload status;
    status.state = state;
    status.step = stepReached;
    status.maxSteps = maxSteps;
    status.loss = loss;
    backend.apply(status);
}

backend::protocol::TrainStatusPayload Stage::runningStatus()
{
    backend::protocol::TrainStatusPayload status;
    status.state = QStringLiteral("running");
    status.step = 1234;
    status.maxSteps = 50'000;
    status.loss = 2.34567;
    status.lr = 0.0003;
    status.gradNorm = 0.98765;
    status.tokensPerSec = 12'345.6;
    status.elapsedS = 3725;
    return status;
}

void Stage::becomeReady(std::int64_t defaultMaxSteps)
{
    backend.apply(backend::protocol::ReadyEvent{defaultMaxSteps});
}

void Stage::setBlocked(const QSet<ConfiguredFolder> &folders)
{
    blockedPaths.clear();
    for (const ConfiguredFolder folder : folders) {
        blockedPaths.insert(app::folders::path(settings, folder));
    }
    access.refresh();
}

QStringList visibleTexts(const QWidget *root)
{
    QStringList texts;
    for (QWidget *widget : root->findChildren<QWidget *>()) {
        if (!widget->isVisibleTo(root)) {
            continue;
        }
        if (QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(widget)) {
            texts << accessible->text(QAccessible::Name) << accessible->text(QAccessible::Value);
        }
        if (const auto *label = qobject_cast<QLabel *>(widget)) {
            texts << label->text();
        }
        if (const auto *field = qobject_cast<QLineEdit *>(widget)) {
            texts << field->placeholderText();
        }
        if (const auto *field = qobject_cast<QPlainTextEdit *>(widget)) {
            texts << field->placeholderText();
        }
    }
    texts.removeAll(QString());
    return texts;
}

bool shows(const QWidget *root, const QString &text)
{
    return visibleTexts(root).contains(text);
}

QStringList symbols(const QWidget *root)
{
    QStringList names;
    for (const QWidget *widget : root->findChildren<QWidget *>()) {
        if (!widget->isVisibleTo(root)) {
            continue;
        }
        if (const auto *label = qobject_cast<const ui::kit::SymbolLabel *>(widget)) {
            names << label->symbol();
        } else if (const auto *button = qobject_cast<const ui::kit::ActionButton *>(widget)) {
            names << button->symbol();
        } else if (const auto *header = qobject_cast<const ui::kit::SectionHeader *>(widget)) {
            names << header->symbol();
        }
    }
    names.removeAll(QString());
    return names;
}

QAbstractButton *button(const QWidget *root, const QString &name)
{
    for (QAbstractButton *candidate : root->findChildren<QAbstractButton *>()) {
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(candidate);
        if (candidate->isVisibleTo(root) && accessible != nullptr &&
            accessible->text(QAccessible::Name) == name) {
            return candidate;
        }
    }
    return nullptr;
}

} // namespace zorel::tests
