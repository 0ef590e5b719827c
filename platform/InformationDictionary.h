#pragma once

#include "platform/Bundle.h"

#include <QByteArray>
#include <QVariantMap>

#include <optional>

namespace zorel::platform {

/// What a bundle tells of itself in Contents/Info.plist, such as its names and its version, by key. Texts
/// alone; a value of another type is left out.
using InformationDictionary = QVariantMap;

/// From a property list in XML. Empty when that is damaged or holds no dictionary.
InformationDictionary parseInformationDictionary(const QByteArray &xml);

/// Empty when there is no bundle or its Info.plist cannot be read.
InformationDictionary informationDictionaryOf(const std::optional<Bundle> &bundle);

/// Of this process's bundle, as it was at the first call. Any thread.
const InformationDictionary &mainInformationDictionary();

} // namespace zorel::platform
