#include "ui/neurons/NeuronDetailsBox.h"

#include "app/presentation/NeuronTexts.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Painting.h"
#include "ui/kit/TextLabel.h"

#include <QGridLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace zorel::ui::neurons {

namespace {

constexpr int padding = 10;
constexpr int lineGap = 4;
constexpr int columnGap = 16;
constexpr qreal boxRadius = 8;

} // namespace

NeuronDetailsBox::NeuronDetailsBox(QWidget *parent)
    : QWidget(parent)
    , m_sentence(new kit::TextLabel(QString(), kit::TextRole::Caption2))
{
    const QString heading = QStringLiteral("Selected neuron");
    setAccessibleName(heading);
    auto *lines = new QVBoxLayout(this);
    lines->setContentsMargins(padding, padding, padding, padding);
    lines->setSpacing(lineGap);
    lines->addWidget(new kit::TextLabel(heading, kit::TextRole::Caption, kit::Weight::Semibold));
    lines->addWidget(m_sentence);

    auto *pairs = new QGridLayout;
    pairs->setHorizontalSpacing(columnGap);
    pairs->setVerticalSpacing(lineGap);
    pairs->setColumnStretch(1, 1);
    const QString labels[FieldCount] = {QStringLiteral("Layer"), QStringLiteral("Neuron"),
                                        QStringLiteral("Dims"), QStringLiteral("Activation"),
                                        QStringLiteral("State")};
    for (int field = 0; field < FieldCount; ++field) {
        m_values[field] = new kit::TextLabel(QString(), kit::TextRole::Caption2);
        m_values[field]->setFontKind(kit::FontKind::Tabular);
        pairs->addWidget(new kit::TextLabel(labels[field], kit::TextRole::Caption2, kit::Weight::Regular,
                                            kit::ColorRole::Secondary),
                         field, 0);
        pairs->addWidget(m_values[field], field, 1);
    }
    lines->addLayout(pairs);
}

void NeuronDetailsBox::showSelection(const backend::protocol::NeuronSelection &selection,
                                     std::int64_t layerCount)
{
    m_sentence->setText(app::presentation::selectedNeuronSentence(selection, layerCount));
    m_values[Layer]->setText(QString::number(selection.layer));
    m_values[Neuron]->setText(QString::number(selection.neuron.index));
    m_values[Dims]->setText(app::presentation::channelsText(selection.neuron));
    m_values[Activation]->setText(app::presentation::activationText(selection.neuron.activation));
    m_values[State]->setText(app::presentation::tierTitle(selection.neuron.tier));
}

void NeuronDetailsBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    kit::paintPanel(painter, QRectF(rect()), boxRadius,
                    kit::color(kit::ColorRole::HoverBackground, palette()));
}

} // namespace zorel::ui::neurons
