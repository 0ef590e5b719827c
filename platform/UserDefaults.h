#pragma once

#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>

namespace zorel::platform {

/// The persistent key/value store of the user's settings. Main thread only.
class UserDefaults
{
public:
    virtual ~UserDefaults() = default;

    /// Nothing when the key is absent or its value is not a string.
    virtual std::optional<QString> string(const QString &key) const = 0;
    /// Takes effect at once for every reader of this process; a store that cannot be written keeps the value
    /// in memory.
    virtual void setString(const QString &key, const QString &value) = 0;

    /// Nothing when the key is absent or its value is not a boolean.
    virtual std::optional<bool> boolean(const QString &key) const = 0;
    virtual void setBoolean(const QString &key, bool value) = 0;

    /// Nothing when the key is absent or its value is not a date. A store that knows no dates keeps them as
    /// texts in ISO 8601, to the millisecond; others may keep no more than the second.
    virtual std::optional<QDateTime> date(const QString &key) const;
    virtual void setDate(const QString &key, const QDateTime &value);

    /// Persists what has been set and is not persisted yet, which otherwise happens by the next turn of the
    /// event loop. May wait for another process, for a second at the most.
    virtual void synchronize() {}

protected:
    UserDefaults() = default;
    UserDefaults(const UserDefaults &) = default;
    UserDefaults &operator=(const UserDefaults &) = default;
};

/// A new object over the application's own store on this system; persists when it is destroyed.
std::unique_ptr<UserDefaults> makeStandardUserDefaults();

/// The one object over the application's own store that the whole process shares, so that everyone sees the
/// same values even when they cannot be persisted. Created on first use, safely from any thread; never
/// destroyed; persists at exit.
UserDefaults &standardUserDefaults();

} // namespace zorel::platform
