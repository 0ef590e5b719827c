#pragma once

#include <QWidget>

namespace zorel::app::folders {
class FolderAccessChecker;
}
namespace zorel::ui::kit {
class TextLabel;
}

namespace zorel::ui::dashboard {

/// Says which folders the system keeps the program out of, and leads the user out of that. Hidden while every
/// folder can be used.
class FolderAccessBanner : public QWidget
{
    Q_OBJECT

public:
    /// `access` must outlive the banner.
    explicit FolderAccessBanner(app::folders::FolderAccessChecker &access, QWidget *parent = nullptr);

private:
    void follow();

    app::folders::FolderAccessChecker &m_access;
    kit::TextLabel *m_message;
};

} // namespace zorel::ui::dashboard
