#pragma once

#include "ui/kit/ActionButton.h"

#include <QDialog>

class QHBoxLayout;
class QVBoxLayout;

namespace zorel::ui::kit {

class TextLabel;

/// A window-modal dialog: a title, a content and buttons at the bottom. Esc closes it.
class Sheet : public QDialog
{
    Q_OBJECT

public:
    explicit Sheet(const QString &title, QWidget *parent);

    void setTitle(const QString &title);
    QVBoxLayout *content() { return m_content; }
    /// At the trailing end of the title.
    void addHeaderWidget(QWidget *widget);

    /// Prominent is also what Return presses. The button does nothing by itself.
    ActionButton *addButton(const QString &title, ActionButton::Style style = ActionButton::Style::Bordered,
                            const QString &symbol = {});

protected:
    void showEvent(QShowEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    TextLabel *m_title;
    QHBoxLayout *m_header;
    QVBoxLayout *m_content;
    QHBoxLayout *m_buttons;
};

} // namespace zorel::ui::kit
