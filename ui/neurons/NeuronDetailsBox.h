#pragma once

#include "backend/protocol/NeuronSelection.h"

#include <QWidget>

namespace zorel::ui::kit {
class TextLabel;
}

namespace zorel::ui::neurons {

/// What is known about the selected cell.
class NeuronDetailsBox : public QWidget
{
    Q_OBJECT

public:
    explicit NeuronDetailsBox(QWidget *parent = nullptr);

    /// `layerCount` is the figure of the snapshot that is shown.
    void showSelection(const backend::protocol::NeuronSelection &selection, std::int64_t layerCount);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    enum Field { Layer, Neuron, Dims, Activation, State, FieldCount };

    kit::TextLabel *m_sentence;
    kit::TextLabel *m_values[FieldCount] = {};
};

} // namespace zorel::ui::neurons
