#pragma once

#include <QWidget>

class QRadioButton;

namespace zorel::ui::neurons {

/// Chooses between the live snapshot and the final one.
class SnapshotSwitch : public QWidget
{
    Q_OBJECT

public:
    enum class Choice { Live, Final };

    explicit SnapshotSwitch(QWidget *parent = nullptr);

    /// What the user chose last, also while there is no final snapshot.
    Choice choice() const { return m_choice; }
    /// Without a final snapshot the switch stands at Live and cannot be moved; with the next one it goes back
    /// to where the user put it.
    void setFinalAvailable(bool available);

Q_SIGNALS:
    void chosen(zorel::ui::neurons::SnapshotSwitch::Choice choice);

private:
    Choice m_choice = Choice::Live;
    QRadioButton *m_live;
    QRadioButton *m_final;
};

} // namespace zorel::ui::neurons
