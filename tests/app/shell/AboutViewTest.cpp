#include "app/shell/AboutView.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/TextLabel.h"

#include <QSignalSpy>
#include <QTest>

using namespace zorel;
using app::shell::AboutView;

namespace {

QStringList texts(const QWidget &widget)
{
    QStringList found;
    for (const ui::kit::TextLabel *label : widget.findChildren<ui::kit::TextLabel *>()) {
        found.append(label->text());
    }
    return found;
}

QStringList symbols(const QWidget &widget)
{
    QStringList found;
    for (const ui::kit::SymbolLabel *label : widget.findChildren<ui::kit::SymbolLabel *>()) {
        found.append(label->symbol());
    }
    return found;
}

} // namespace

class AboutViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextIsThereFromTopToBottom();
    void everySymbolIsThereAndExists();
    void theSheetHasAButtonThatClosesIt();
    void theEmbeddedViewHasNone();
    void theVersionCanBeCopied();
    void aLongNameWraps();
};

void AboutViewTest::everyTextIsThereFromTopToBottom()
{
    AboutView view(AboutView::Mode::embedded, QStringLiteral("Trainer"), QStringLiteral("1.2"), new QWidget);
    const QStringList expected{
        QStringLiteral("Trainer"),
        QStringLiteral("Version 1.2"),
        QStringLiteral("Train text, image, and multimodal models on Apple Silicon."),
        QStringLiteral("What you can build"),
        QStringLiteral("Text language models"),
        QStringLiteral("Pretrain causal LMs from your corpora."),
        QStringLiteral("Image generation"),
        QStringLiteral("Train diffusion models on image folders."),
        QStringLiteral("Multimodal"),
        QStringLiteral("Caption-conditioned prompt-to-image training."),
        QStringLiteral("Built with MLX, Metal, Qt, and Caldra."),
        QStringLiteral("Copyright © 2026 Talvex. All rights reserved."),
    };
    const QStringList found = texts(view);
    qsizetype position = 0;
    for (const QString &text : expected) {
        position = found.indexOf(text, position);
        QVERIFY2(position >= 0, qPrintable(text));
    }
}

void AboutViewTest::everySymbolIsThereAndExists()
{
    AboutView view(AboutView::Mode::sheet, QStringLiteral("Trainer"), QStringLiteral("1.2"), new QWidget);
    const QStringList expected{QStringLiteral("brain.head.profile"), QStringLiteral("text.alignleft"),
                               QStringLiteral("photo.on.rectangle.angled"),
                               QStringLiteral("text.below.photo")};
    QCOMPARE(symbols(view), expected);
    for (const QString &name : expected + QStringList{QStringLiteral("xmark.circle.fill")}) {
        QVERIFY2(ui::kit::hasSymbol(name), qPrintable(name));
    }
}

void AboutViewTest::theSheetHasAButtonThatClosesIt()
{
    AboutView view(AboutView::Mode::sheet, QStringLiteral("Trainer"), QStringLiteral("1.2"), new QWidget);
    const auto *button = view.findChild<ui::kit::ActionButton *>();
    QVERIFY(button);
    QCOMPARE(button->symbol(), QStringLiteral("xmark.circle.fill"));
    QCOMPARE(button->accessibleName(), QStringLiteral("Close"));
    QSignalSpy closed(&view, &AboutView::closeRequested);
    view.findChild<ui::kit::ActionButton *>()->click();
    QCOMPARE(closed.count(), 1);
}

void AboutViewTest::theEmbeddedViewHasNone()
{
    AboutView view(AboutView::Mode::embedded, QStringLiteral("Trainer"), QStringLiteral("1.2"), new QWidget);
    QVERIFY(!view.findChild<ui::kit::ActionButton *>());
}

void AboutViewTest::theVersionCanBeCopied()
{
    AboutView view(AboutView::Mode::embedded, QStringLiteral("Trainer"), QStringLiteral("1.2"), new QWidget);
    for (const ui::kit::TextLabel *label : view.findChildren<ui::kit::TextLabel *>()) {
        if (label->text() == QLatin1String("Version 1.2")) {
            QVERIFY(label->focusPolicy() != Qt::NoFocus);
            return;
        }
    }
    QFAIL("no version");
}

void AboutViewTest::aLongNameWraps()
{
    AboutView view(AboutView::Mode::embedded, QString(10'000, QLatin1Char('w')), QStringLiteral("1"),
                   new QWidget);
    QVERIFY(view.minimumSizeHint().width() < 600);
}

QTEST_MAIN(AboutViewTest)
#include "AboutViewTest.moc"
