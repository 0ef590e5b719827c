#pragma once

#include <QString>

#include <optional>
#include <variant>

namespace zorel::updater {

/// What the installation is at. One of the cases below; Idle at first.
class InstallState
{
public:
    struct Downloading
    {
        qint64 received = 0;         ///< bytes
        std::optional<qint64> total; ///< bytes; nothing when the server does not tell

        bool operator==(const Downloading &) const = default;
    };
    struct Failed
    {
        QString message; ///< for people

        bool operator==(const Failed &) const = default;
    };
    struct Idle
    {
        bool operator==(const Idle &) const = default;
    };
    struct Verifying
    {
        bool operator==(const Verifying &) const = default;
    };
    struct Installing
    {
        bool operator==(const Installing &) const = default;
    };
    struct Relaunching
    {
        bool operator==(const Relaunching &) const = default;
    };
    using Value = std::variant<Downloading, Failed, Idle, Verifying, Installing, Relaunching>;

    InstallState()
        : m_value(Idle{})
    {}
    InstallState(Value value);

    bool operator==(const InstallState &) const = default;

    const Value &value() const { return m_value; }
    template <class Case>
    bool is() const
    {
        return std::holds_alternative<Case>(m_value);
    }
    /// Null unless that is the case.
    template <class Case>
    const Case *get() const
    {
        return std::get_if<Case>(&m_value);
    }

    /// Whether an installation is under way: neither idle nor failed.
    bool isUnderWay() const { return !is<Idle>() && !is<Failed>(); }
    /// What the update sheet says, with byte counts as the user's locale writes them; a failure's message;
    /// empty when idle.
    QString text() const;

private:
    Value m_value;
};

} // namespace zorel::updater
