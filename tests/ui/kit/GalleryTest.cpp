#include "tests/ui/kit/GalleryPage.h"
#include "tests/ui/kit/Screen.h"
#include "ui/kit/Palettes.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/ScrollPage.h"
#include "ui/kit/TextLabel.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QScrollBar>

namespace zorel::tests {

using namespace ui::kit;

/// What holds for the widgets of the kit together.
class GalleryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void namesWhatTakesTheFocus();
    void reachesEverythingWithTheTabKey();
    void fitsNarrowAndWideWindows_data();
    void fitsNarrowAndWideWindows();
    void hasNoTimerWhileIdle();
    void sleepsWhileIdle();
    void followsPaletteAndFontTogether();
};

void GalleryTest::cleanup()
{
    QApplication::setPalette(lightPalette());
}

void GalleryTest::namesWhatTakesTheFocus()
{
    const std::unique_ptr<QWidget> page(makeGalleryPage());
    showAt(*page, {1200, 900});
    const QList<QWidget *> widgets = page->findChildren<QWidget *>();
    int focusable = 0;
    for (QWidget *widget : widgets) {
        const bool isOurs = QByteArray(widget->metaObject()->className()).contains("::kit::");
        if (isOurs && (widget->focusPolicy() & Qt::TabFocus)) {
            QVERIFY2(!spokenName(widget).isEmpty(), widget->metaObject()->className());
            QVERIFY(spoken(widget).role() != QAccessible::Client);
            ++focusable;
        }
    }
    QVERIFY(focusable > 20);
}

void GalleryTest::reachesEverythingWithTheTabKey()
{
    const std::unique_ptr<QWidget> page(makeGalleryPage());
    showAt(*page, {1200, 900});
    page->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page.get()));
    QSet<QWidget *> reached;
    QTest::keyClick(page.get(), Qt::Key_Tab);
    while (QApplication::focusWidget() && !reached.contains(QApplication::focusWidget())) {
        reached.insert(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const QList<QAbstractButton *> buttons = page->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        const bool isStop =
            button->isVisible() && button->isEnabled() && (button->focusPolicy() & Qt::TabFocus);
        QVERIFY2(!isStop || reached.contains(button), qPrintable(button->text()));
    }
    QVERIFY(reached.size() > 15);
}

void GalleryTest::fitsNarrowAndWideWindows_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("narrow") << QSize(400, 500);
    QTest::newRow("small") << QSize(900, 640);
    QTest::newRow("wide") << QSize(1600, 1000);
}

void GalleryTest::fitsNarrowAndWideWindows()
{
    QFETCH(QSize, size);
    const std::unique_ptr<QWidget> page(makeGalleryPage());
    showAt(*page, size);
    auto *scroll = qobject_cast<ScrollPage *>(page.get());
    QVERIFY(!scroll->horizontalScrollBar()->isVisible());
    const QList<QWidget *> widgets = scroll->widget()->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->isVisible()) {
            continue;
        }
        QVERIFY2(widget->parentWidget()->rect().contains(widget->geometry()),
                 widget->metaObject()->className());
        QVERIFY2(widget->width() > 0 && widget->height() > 0, widget->metaObject()->className());
    }
}

void GalleryTest::hasNoTimerWhileIdle()
{
    const std::unique_ptr<QWidget> page(makeGalleryPage());
    const QList<ProgressMeter *> meters = page->findChildren<ProgressMeter *>();
    for (ProgressMeter *meter : meters) {
        meter->setFraction(0.5);
    }
    showAt(*page, {1200, 900});
    const auto timers = [&page] {
        qsizetype count = 0;
        const QList<QObject *> objects = page->findChildren<QObject *>();
        for (QObject *object : objects) {
            count += QAbstractEventDispatcher::instance()->registeredTimers(object).size();
        }
        return count;
    };
    QTRY_COMPARE(timers(), 0);
}

void GalleryTest::sleepsWhileIdle()
{
    const std::unique_ptr<QWidget> page(makeGalleryPage());
    const QList<ProgressMeter *> meters = page->findChildren<ProgressMeter *>();
    for (ProgressMeter *meter : meters) {
        meter->setFraction(0.5);
    }
    showAt(*page, {1200, 900});
    // Sooner or later there is nothing left to do.
    QTRY_VERIFY(!QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents));
}

void GalleryTest::followsPaletteAndFontTogether()
{
    const std::unique_ptr<QWidget> page(makeGalleryPage());
    const QList<ProgressMeter *> meters = page->findChildren<ProgressMeter *>();
    for (ProgressMeter *meter : meters) {
        meter->setFraction(0.5);
    }
    const QFont font = QApplication::font();
    QFont large = font;
    large.setPointSizeF(1.4 * font.pointSizeF());
    showAt(*page, {1200, 900});
    const QImage before = picture(*page);
    const auto *title = page->findChild<TextLabel *>();
    const double size = title->font().pointSizeF();
    QApplication::setPalette(darkPalette());
    QApplication::setFont(large);
    QTRY_VERIFY(title->font().pointSizeF() > 1.2 * size);
    QVERIFY(picture(*page) != before);
    // What was changed back looks as if nothing had happened: no widget kept a colour or a size.
    QApplication::setPalette(lightPalette());
    QApplication::setFont(font);
    const std::unique_ptr<QWidget> fresh(makeGalleryPage());
    const QList<ProgressMeter *> freshMeters = fresh->findChildren<ProgressMeter *>();
    for (ProgressMeter *meter : freshMeters) {
        meter->setFraction(0.5);
    }
    showAt(*fresh, {1200, 900});
    QTRY_COMPARE(picture(*page), picture(*fresh));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::GalleryTest)
#include "GalleryTest.moc"
