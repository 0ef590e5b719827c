#pragma once

#include "tests/service/support/LoopbackServer.h"
#include "updater/AvailableUpdate.h"

#include <QCryptographicHash>

#include <mutex>

namespace zorel::tests {

/// Serves one file that an update is made of.
class ArtifactHost
{
public:
    ArtifactHost(const QString &fileName, const QByteArray &archive)
        : server([this](const caldra::tests::ReceivedRequest &) {
            const std::lock_guard lock(m_mutex);
            return m_answer;
        })
        , m_answer(caldra::tests::Answer::with(200, "application/octet-stream", archive))
    {
        update.version = QStringLiteral("2.0");
        update.channel = QStringLiteral("stable");
        update.downloadUrl = server.url(QStringLiteral("/file"));
        update.fileName = fileName;
        update.sizeBytes = archive.size();
        update.sha256 =
            QString::fromLatin1(QCryptographicHash::hash(archive, QCryptographicHash::Sha256).toHex());
    }

    void answer(const caldra::tests::Answer &answer)
    {
        const std::lock_guard lock(m_mutex);
        m_answer = answer;
    }

    updater::AvailableUpdate update;
    caldra::tests::LoopbackServer server;

private:
    std::mutex m_mutex;
    caldra::tests::Answer m_answer;
};

} // namespace zorel::tests
