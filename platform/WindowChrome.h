#pragma once

#include <QtGlobal>

namespace zorel::platform {

/// Hides the title's text of a shown window and lays its toolbar out in one line with the title bar.
/// `nativeView` is what QWidget::winId() gives. Without effect where the system has no such thing. Main
/// thread only.
void unifyTitleBar(quintptr nativeView);

} // namespace zorel::platform
