// Shows every widget of the kit and every symbol: to be looked at, not to be asserted.
//
//   KitGallery [--dark] [--rtl] [--symbols] [--size 1200x900] [--save FILE.png]

#include "tests/ui/kit/GalleryPage.h"
#include "ui/kit/Palettes.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <QWidget>

#include <memory>

int main(int argumentCount, char *arguments[])
{
    using namespace zorel;
    QApplication application(argumentCount, arguments);
    QCommandLineParser parser;
    const QCommandLineOption dark(QStringLiteral("dark"));
    const QCommandLineOption rtl(QStringLiteral("rtl"));
    const QCommandLineOption symbols(QStringLiteral("symbols"));
    const QCommandLineOption size(QStringLiteral("size"), {}, QStringLiteral("WxH"),
                                  QStringLiteral("1200x900"));
    const QCommandLineOption save(QStringLiteral("save"), {}, QStringLiteral("FILE"));
    parser.addOptions({dark, rtl, symbols, size, save});
    parser.process(application);

    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(parser.isSet(dark) ? ui::kit::darkPalette() : ui::kit::lightPalette());
    QApplication::setLayoutDirection(parser.isSet(rtl) ? Qt::RightToLeft : Qt::LeftToRight);
    const std::unique_ptr<QWidget> page(parser.isSet(symbols) ? tests::makeSymbolSheet()
                                                              : tests::makeGalleryPage());
    const QStringList lengths = parser.value(size).split(QLatin1Char('x'));
    page->resize(lengths.value(0).toInt(), lengths.value(1).toInt());
    page->show();
    if (parser.isSet(save)) {
        QTimer::singleShot(300, page.get(), [&] {
            page->grab().save(parser.value(save));
            QApplication::quit();
        });
    }
    return QApplication::exec();
}
