#include "platform/UserDefaults.h"

namespace zorel::platform {

namespace {

struct SynchronizedAtExit
{
    UserDefaults &store;

    ~SynchronizedAtExit() { store.synchronize(); }
};

} // namespace

std::optional<QDateTime> UserDefaults::date(const QString &key) const
{
    const QDateTime date = QDateTime::fromString(string(key).value_or(QString()), Qt::ISODateWithMs);
    return date.isValid() ? std::optional(date) : std::nullopt;
}

void UserDefaults::setDate(const QString &key, const QDateTime &value)
{
    setString(key, value.toUTC().toString(Qt::ISODateWithMs));
}

UserDefaults &standardUserDefaults()
{
    static UserDefaults *const store = makeStandardUserDefaults().release();
    static const SynchronizedAtExit guard{*store};
    return *store;
}

} // namespace zorel::platform
