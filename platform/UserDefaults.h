#pragma once

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

protected:
    UserDefaults() = default;
    UserDefaults(const UserDefaults &) = default;
    UserDefaults &operator=(const UserDefaults &) = default;
};

/// The application's own store on this system.
std::unique_ptr<UserDefaults> makeStandardUserDefaults();

} // namespace zorel::platform
