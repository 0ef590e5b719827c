#pragma once

#include <QWidget>

namespace zorel::ui::library {

/// A warning triangle and a sentence, in the colour of warnings.
class NoticeLine : public QWidget
{
    Q_OBJECT

public:
    explicit NoticeLine(const QString &text, QWidget *parent = nullptr);
};

} // namespace zorel::ui::library
