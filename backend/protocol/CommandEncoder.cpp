#include "backend/protocol/CommandEncoder.h"

#include <QJsonDocument>

namespace zorel::backend::protocol {

QByteArray encodeCommand(const QJsonObject &command)
{
    // QJsonObject keeps its keys sorted.
    return QJsonDocument(command).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace zorel::backend::protocol
