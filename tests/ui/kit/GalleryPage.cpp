#include "tests/ui/kit/GalleryPage.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/Badge.h"
#include "ui/kit/Card.h"
#include "ui/kit/ChoicePicker.h"
#include "ui/kit/CollapsibleSection.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/Figure.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/ResponsiveColumns.h"
#include "ui/kit/ScrollPage.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/TextLabel.h"
#include "ui/kit/TileLayout.h"
#include "ui/kit/Toast.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QSpinBox>

namespace zorel::tests {

using namespace ui::kit;

namespace {

QWidget *buttons()
{
    auto *card = new Card(QStringLiteral("Buttons"), QStringLiteral("slider.horizontal.3"));
    using Style = ActionButton::Style;
    for (const bool isEnabled : {true, false}) {
        auto *row = new FlowLayout;
        for (const Style style : {Style::Prominent, Style::Bordered, Style::Plain, Style::Link}) {
            for (const QString &symbol : {QStringLiteral("play.fill"), QString()}) {
                auto *button = new ActionButton(symbol, QStringLiteral("Begin & train"), style);
                button->setEnabled(isEnabled);
                row->addWidget(button);
            }
        }
        auto *only = new ActionButton(QStringLiteral("arrow.clockwise"), QStringLiteral("Refresh"));
        only->setDisplay(ActionButton::Display::SymbolOnly);
        only->setEnabled(isEnabled);
        row->addWidget(only);
        auto *danger = new ActionButton(QStringLiteral("stop.fill"), QStringLiteral("Stop"));
        danger->setTone(ColorRole::Danger);
        danger->setEnabled(isEnabled);
        row->addWidget(danger);
        card->content()->addLayout(row);
    }
    return card;
}

QWidget *pickers()
{
    auto *card = new Card(QStringLiteral("Choose what you want to build and how it should be trained."));
    auto *family = new ChoicePicker(QStringLiteral("Model Type"));
    family->setChoices(
        {{QStringLiteral("text"), QStringLiteral("text.alignleft"), QStringLiteral("Text Language Model"),
          QStringLiteral("Train a causal LM for text completion and chat.")},
         {QStringLiteral("image"), QStringLiteral("photo.on.rectangle.angled"),
          QStringLiteral("Image Generation"),
          QStringLiteral("Train a diffusion model to generate images from noise.")},
         {QStringLiteral("both"), QStringLiteral("text.below.photo"),
          QStringLiteral("Text + Image (Multimodal)"),
          QStringLiteral("Train a text-conditioned model for prompt-to-image generation.")}});
    family->setCurrent(QStringLiteral("text"));
    card->content()->addWidget(
        new TextLabel(QStringLiteral("Model Type"), TextRole::Caption, Weight::Medium, ColorRole::Secondary));
    card->content()->addWidget(family);
    auto *mode = new ChoicePicker(QStringLiteral("Training mode"));
    mode->setChoices({{QStringLiteral("pretrain"),
                       {},
                       QStringLiteral("Pretrain from scratch"),
                       QStringLiteral("Begin with random weights.")},
                      {QStringLiteral("lora"),
                       {},
                       QStringLiteral("LoRA adapter"),
                       QStringLiteral("Train a small adapter.")}});
    mode->setCurrent(QStringLiteral("lora"));
    card->content()->addWidget(new TextLabel(QStringLiteral("Training mode"), TextRole::Caption,
                                             Weight::Medium, ColorRole::Secondary));
    card->content()->addWidget(mode);
    return card;
}

QWidget *figures()
{
    auto *card =
        new Card(QStringLiteral("Pretraining progress"), QStringLiteral("chart.line.uptrend.xyaxis"));
    card->addHeaderWidget(
        new Badge(QStringLiteral("circle.fill"), QStringLiteral("Running"), ColorRole::Success));
    auto *known = new ProgressMeter(QStringLiteral("Progress"));
    known->setFraction(0.62);
    card->content()->addWidget(known);
    card->content()->addWidget(new ProgressMeter(QStringLiteral("Unknown")));
    auto *tiles = new TileLayout(96);
    const QStringList labels{QStringLiteral("Loss"), QStringLiteral("Perplexity"),
                             QStringLiteral("Learning rate"), QStringLiteral("Grad norm"),
                             QStringLiteral("Tokens/sec")};
    const QStringList values{QStringLiteral("2.3457"), QStringLiteral("10.4"), QStringLiteral("3.00e-04"),
                             QStringLiteral("0.988"), QStringLiteral("12840")};
    for (int index = 0; index < labels.size(); ++index) {
        auto *figure = new Figure(labels[index]);
        figure->setValue(values[index]);
        tiles->addWidget(figure);
    }
    card->content()->addLayout(tiles);
    return card;
}

QWidget *texts()
{
    auto *card = new Card(QStringLiteral("Texts"), QStringLiteral("text.alignleft"));
    const std::pair<TextRole, QString> roles[]{{TextRole::LargeTitle, QStringLiteral("Large title")},
                                               {TextRole::Title, QStringLiteral("Title")},
                                               {TextRole::Heading, QStringLiteral("Heading")},
                                               {TextRole::Subheading, QStringLiteral("Subheading")},
                                               {TextRole::Body, QStringLiteral("Body text 0123456789")},
                                               {TextRole::Caption, QStringLiteral("Caption 0123456789")},
                                               {TextRole::Caption2, QStringLiteral("Caption 2")}};
    for (const auto &[role, text] : roles) {
        card->content()->addWidget(new TextLabel(text, role));
    }
    auto *markdown = new TextLabel({}, TextRole::Body, Weight::Regular, ColorRole::Secondary);
    markdown->setMarkdown(
        QStringLiteral("Your training corpora live in **Training Data**. Every completed run is "
                       "archived under **Finished models**. Browse past runs to inspect neuron "
                       "pathways and compare retrainings."));
    card->content()->addWidget(markdown);
    auto *wall =
        new TextLabel(QString(300, QLatin1Char('x')) + QStringLiteral(" <b>no markup</b>\nsecond line"));
    wall->setCopyable();
    card->content()->addWidget(wall);
    card->content()->addWidget(new TextLabel(QStringLiteral("שלום עולם, שורה מימין לשמאל")));
    auto *path = new ElidedLabel;
    path->setText(QStringLiteral("/Users/ada/Documents/Zorel/Finished models/") +
                  QString(200, QLatin1Char('n')) + QStringLiteral("/2025-01-31_12-00-00\nend"));
    path->setTextStyle(TextRole::Caption, Weight::Regular, FontKind::Monospaced);
    path->setColorRole(ColorRole::Secondary);
    card->content()->addWidget(path);
    return card;
}

QWidget *badges()
{
    auto *card = new Card(QStringLiteral("Badges"), QStringLiteral("tag.fill"));
    auto *row = new FlowLayout;
    row->addWidget(new Badge({}, QStringLiteral("Default"), ColorRole::Secondary));
    row->addWidget(new Badge({}, QStringLiteral("Custom"), ColorRole::Accent));
    row->addWidget(
        new Badge(QStringLiteral("checkmark.shield.fill"), QStringLiteral("Allowed"), ColorRole::Success));
    row->addWidget(new Badge(QStringLiteral("exclamationmark.shield.fill"), QStringLiteral("Needs access"),
                             ColorRole::Warning));
    row->addWidget(
        new Badge(QStringLiteral("xmark.circle.fill"), QStringLiteral("Failed"), ColorRole::Danger));
    row->addWidget(new Badge({}, QString(300, QLatin1Char('m')), ColorRole::Text));
    card->content()->addLayout(row);
    return card;
}

QWidget *sections()
{
    auto *column = new QWidget;
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::two);
    auto *identity = new CollapsibleSection(QStringLiteral("Model Identity"), QStringLiteral("tag.fill"));
    identity->addHeaderWidget(new ActionButton(QStringLiteral("arrow.counterclockwise"),
                                               QStringLiteral("Reset"), ActionButton::Style::Plain));
    identity->setExpanded(true);
    auto *form = new QGridLayout;
    form->setSpacing(spacing::one);
    form->addWidget(new TextLabel(QStringLiteral("Name")), 0, 0);
    auto *name = new QLineEdit;
    name->setPlaceholderText(QStringLiteral("MyModel"));
    form->addWidget(name, 0, 1);
    form->addWidget(new TextLabel(QStringLiteral("Version")), 1, 0);
    form->addWidget(new QSpinBox, 1, 1);
    form->addWidget(new QCheckBox(QStringLiteral("A check box")), 2, 1);
    auto *combo = new QComboBox;
    combo->addItem(QStringLiteral("Linear"));
    form->addWidget(combo, 3, 1);
    identity->content()->addLayout(form);
    layout->addWidget(identity);
    auto *log = new CollapsibleSection(QStringLiteral("Recent activity"), QStringLiteral("terminal.fill"));
    log->addHeaderWidget(
        new TextLabel(QStringLiteral("12 lines"), TextRole::Caption, Weight::Regular, ColorRole::Secondary));
    log->addHeaderWidget(new ActionButton({}, QStringLiteral("Show"), ActionButton::Style::Link));
    layout->addWidget(log);
    return column;
}

} // namespace

QWidget *makeGalleryPage()
{
    auto *page = new ScrollPage;
    auto *columns = new ResponsiveColumns;
    columns->leading()->addWidget(pickers());
    columns->leading()->addWidget(buttons());
    columns->leading()->addWidget(sections());
    columns->leading()->addStretch(1);
    columns->trailing()->addWidget(figures());
    columns->trailing()->addWidget(badges());
    columns->trailing()->addWidget(texts());
    columns->trailing()->addStretch(1);
    page->content()->addWidget(columns);
    auto *toast = new Toast(page);
    toast->content()->addWidget(
        new SymbolLabel(QStringLiteral("checkmark.seal.fill"), 28, ColorRole::Success));
    auto *lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addWidget(new TextLabel(QStringLiteral("Model archived"), TextRole::Subheading, Weight::Semibold));
    auto *folder = new ElidedLabel(Qt::ElideRight);
    folder->setText(QStringLiteral("2025-01-31_12-00-00"));
    folder->setTextStyle(TextRole::Caption, Weight::Regular, FontKind::Monospaced);
    folder->setColorRole(ColorRole::Secondary);
    lines->addWidget(folder);
    toast->content()->addLayout(lines, 1);
    toast->content()->addWidget(
        new ActionButton(QStringLiteral("folder"), QStringLiteral("Reveal in Finder")));
    toast->showToast();
    return page;
}

QWidget *makeSymbolSheet()
{
    auto *sheet = new QWidget;
    auto *tiles = new TileLayout(190, sheet);
    for (const QString &name : symbolNames()) {
        auto *cell = new QWidget;
        auto *row = new QHBoxLayout(cell);
        row->setContentsMargins(4, 4, 4, 4);
        row->addWidget(new SymbolLabel(name, 16, ColorRole::Text));
        row->addWidget(new SymbolLabel(name, 32, ColorRole::Accent));
        row->addWidget(new TextLabel(name, TextRole::Caption2), 1);
        tiles->addWidget(cell);
    }
    return sheet;
}

} // namespace zorel::tests
