#include "app/shell/AboutSheet.h"

#include "app/shell/AboutView.h"
#include "app/shell/ScreenRoom.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ScrollPage.h"
#include "ui/update/UpdatesBlock.h"

#include <QVBoxLayout>

namespace zorel::app::shell {

namespace kit = ui::kit;

AboutSheet::AboutSheet(const QString &displayName, const QString &version, updater::UpdateChecker &updater,
                       QWidget *parent)
    : QDialog(parent, Qt::Sheet)
{
    setWindowModality(Qt::WindowModal);
    setWindowTitle(QStringLiteral("About ") + displayName);
    auto *view =
        new AboutView(AboutView::Mode::sheet, displayName, version, new ui::update::UpdatesBlock(updater));
    connect(view, &AboutView::closeRequested, this, &QDialog::accept);
    // Small screens scroll.
    auto *page = new kit::ScrollPage;
    page->content()->addWidget(view);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(page);
    const int width = 56 * kit::gridUnit;
    const int height = page->widget()->layout()->totalHeightForWidth(width);
    resize(QSize(width, height).boundedTo(screenRoom(*parent->screen())));
}

} // namespace zorel::app::shell
