#include "service/core/InfoPlistError.h"

using namespace Qt::StringLiterals;

namespace caldra {

InfoPlistError::InfoPlistError(Case errorCase, QString key, std::optional<QString> bundleIdentifier)
    : m_case(errorCase)
    , m_key(std::move(key))
    , m_bundleIdentifier(std::move(bundleIdentifier))
    , m_what(description().toUtf8())
{}

QString InfoPlistError::description() const
{
    // A bundle without an identifier may report an empty one, which says nothing.
    const bool isKnown = m_bundleIdentifier && !m_bundleIdentifier->isEmpty();
    const QString bundle = isKnown ? u" in bundle "_s + *m_bundleIdentifier : QString();
    if (m_case == Case::missingAPIKey) {
        return u"Caldra: missing API key. Add a `"_s + m_key + u"` entry to your target's Info.plist"_s +
               bundle + u" (string value, no quotes)."_s;
    }
    return u"Caldra: `"_s + m_key + u"` Info.plist entry"_s + bundle +
           u" is empty. Remove the key to fall back to the default organization, or set a non-empty string."_s;
}

} // namespace caldra
