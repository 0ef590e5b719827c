#pragma once

class QWidget;

namespace zorel::tests {

/// Every widget of the kit, with easy and with hard texts. The caller owns it.
QWidget *makeGalleryPage();

/// Every symbol at 16 and 32 pixels with its name. The caller owns it.
QWidget *makeSymbolSheet();

} // namespace zorel::tests
