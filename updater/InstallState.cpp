#include "updater/InstallState.h"

#include "updater/Overloaded.h"

#include <QLocale>

#include <utility>

namespace zorel::updater {

namespace {

QString byteCount(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString progressText(const InstallState::Downloading &progress)
{
    const QString received = QStringLiteral("Downloading ") + byteCount(progress.received);
    return progress.total ? received + QStringLiteral(" of ") + byteCount(*progress.total) : received;
}

} // namespace

InstallState::InstallState(Value value)
    : m_value(std::move(value))
{}

QString InstallState::text() const
{
    return std::visit(
        Overloaded{
            [](const Downloading &progress) { return progressText(progress); },
            [](const Failed &failure) { return failure.message; },
            [](const Idle &) { return QString(); },
            [](const Verifying &) { return QStringLiteral("Verifying download…"); },
            [](const Installing &) { return QStringLiteral("Installing update…"); },
            [](const Relaunching &) { return QStringLiteral("Restarting Talvex LLM Trainer…"); },
        },
        m_value);
}

} // namespace zorel::updater
