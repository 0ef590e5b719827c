#include "app/shell/AboutView.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QBoxLayout>

namespace zorel::app::shell {

namespace kit = ui::kit;
namespace spacing = ui::kit::spacing;

namespace {

constexpr int iconPoints = 64;
constexpr int featureIconPoints = 24;

kit::TextLabel *centered(const QString &text, kit::TextRole role, kit::Weight weight = kit::Weight::Regular,
                         kit::ColorRole color = kit::ColorRole::Text)
{
    auto *label = new kit::TextLabel(text, role, weight, color);
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

QLayout *featureRow(const QString &symbol, const QString &title, const QString &description)
{
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(new kit::TextLabel(title, kit::TextRole::Body, kit::Weight::Semibold));
    texts->addWidget(new kit::TextLabel(description, kit::TextRole::Caption, kit::Weight::Regular,
                                        kit::ColorRole::Secondary));
    auto *row = new QHBoxLayout;
    row->setSpacing(spacing::two);
    row->addWidget(new kit::SymbolLabel(symbol, featureIconPoints, kit::ColorRole::Accent), 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    return row;
}

} // namespace

AboutView::AboutView(Mode mode, const QString &displayName, const QString &version, QWidget *updates,
                     QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(spacing::two);
    if (mode == Mode::sheet) {
        addCloseButton(*column);
    }
    addTitle(*column, displayName, version);
    addFeatures(*column);
    addCredits(*column);
    column->addWidget(updates);
    column->addStretch(1);
    column->addWidget(centered(QStringLiteral("Copyright © 2026 Talvex. All rights reserved."),
                               kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary));
}

void AboutView::addCloseButton(QVBoxLayout &column)
{
    auto *button = new kit::ActionButton(QStringLiteral("xmark.circle.fill"), QStringLiteral("Close"),
                                         kit::ActionButton::Style::Plain);
    button->setDisplay(kit::ActionButton::Display::SymbolOnly);
    button->setTone(kit::ColorRole::Secondary);
    connect(button, &QPushButton::clicked, this, &AboutView::closeRequested);
    column.addWidget(button, 0, Qt::AlignRight);
}

void AboutView::addTitle(QVBoxLayout &column, const QString &displayName, const QString &version)
{
    auto *icon =
        new kit::SymbolLabel(QStringLiteral("brain.head.profile"), iconPoints, kit::ColorRole::Accent);
    column.addWidget(icon, 0, Qt::AlignHCenter);
    auto *title = new QVBoxLayout;
    title->setSpacing(spacing::half);
    title->addWidget(centered(displayName, kit::TextRole::LargeTitle, kit::Weight::Semibold));
    auto *versionLine = centered(QStringLiteral("Version ") + version, kit::TextRole::Caption,
                                 kit::Weight::Regular, kit::ColorRole::Secondary);
    // For bug reports.
    versionLine->setCopyable();
    title->addWidget(versionLine);
    title->addSpacing(spacing::half);
    title->addWidget(centered(QStringLiteral("Train text, image, and multimodal models on Apple Silicon."),
                              kit::TextRole::Body));
    column.addLayout(title);
}

void AboutView::addFeatures(QVBoxLayout &column)
{
    auto *card = new kit::Card(QStringLiteral("What you can build"));
    card->content()->setSpacing(spacing::two);
    card->content()->addLayout(featureRow(QStringLiteral("text.alignleft"),
                                          QStringLiteral("Text language models"),
                                          QStringLiteral("Pretrain causal LMs from your corpora.")));
    card->content()->addLayout(featureRow(QStringLiteral("photo.on.rectangle.angled"),
                                          QStringLiteral("Image generation"),
                                          QStringLiteral("Train diffusion models on image folders.")));
    card->content()->addLayout(featureRow(QStringLiteral("text.below.photo"), QStringLiteral("Multimodal"),
                                          QStringLiteral("Caption-conditioned prompt-to-image training.")));
    column.addWidget(card);
}

void AboutView::addCredits(QVBoxLayout &column)
{
    column.addWidget(centered(QStringLiteral("Built with MLX, Metal, Qt, and Caldra."),
                              kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary));
}

} // namespace zorel::app::shell
