#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace zorel::updater {

/// Something that the user asked for and is to be told in a dialog.
struct UpdateAlert
{
    enum class Kind { UpToDate, CheckFailed };

    /// A button beside the one that closes the dialog; it opens `page` in the browser.
    struct Link
    {
        QString title;
        QUrl page;

        bool operator==(const Link &) const = default;
    };

    Kind kind = Kind::UpToDate;
    QString title;
    QString text;
    std::optional<Link> link;

    bool operator==(const UpdateAlert &) const = default;
};

} // namespace zorel::updater
