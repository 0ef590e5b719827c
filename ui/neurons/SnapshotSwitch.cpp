#include "ui/neurons/SnapshotSwitch.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Typography.h"

#include <QHBoxLayout>
#include <QRadioButton>
#include <QSignalBlocker>

namespace zorel::ui::neurons {

SnapshotSwitch::SnapshotSwitch(QWidget *parent)
    : QWidget(parent)
    , m_live(new QRadioButton(QStringLiteral("Live")))
    , m_final(new QRadioButton(QStringLiteral("Final")))
{
    setAccessibleName(QStringLiteral("Neuron snapshot"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::two);
    for (QRadioButton *button : {m_live, m_final}) {
        kit::setTextFont(button, kit::TextRole::Caption);
        row->addWidget(button);
    }
    m_live->setChecked(true);
    m_final->setToolTip(QStringLiteral("The snapshot taken at the end of a run"));
    connect(m_final, &QRadioButton::toggled, this, [this](bool isFinal) {
        m_choice = isFinal ? Choice::Final : Choice::Live;
        Q_EMIT chosen(m_choice);
    });
    setFinalAvailable(false);
}

void SnapshotSwitch::setFinalAvailable(bool available)
{
    m_final->setEnabled(available);
    const QSignalBlocker notTheUser(m_final);
    (available && m_choice == Choice::Final ? m_final : m_live)->setChecked(true);
}

} // namespace zorel::ui::neurons
