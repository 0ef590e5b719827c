// The least that a program of this kind can be: a window with a menu and a button.

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QMainWindow window;
    QMenu *menu = window.menuBar()->addMenu(QStringLiteral("File"));
    menu->addAction(QStringLiteral("Quit"), &window, &QWidget::close);
    // At its place in an empty page: a button that fills the window would cost a picture of that size.
    auto *page = new QWidget;
    new QPushButton(QStringLiteral("Start"), page);
    window.setCentralWidget(page);
    // As large as the program's own, so that both have as many pixels to fill.
    window.resize(1200, 912);
    window.show();
    return QApplication::exec();
}
