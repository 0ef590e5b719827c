#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace zorel::backend::protocol {

/// The bytes of one command: compact JSON with sorted keys, ended by one line feed.
QByteArray encodeCommand(const QJsonObject &command);

} // namespace zorel::backend::protocol
