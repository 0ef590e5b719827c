#pragma once

#include <QWidget>

namespace zorel::ui::library {

/// A message in place of what is not there yet. Pages of one height show their headings at one height,
/// whatever the texts below them need.
class EmptyPage : public QWidget
{
    Q_OBJECT

public:
    /// Symbol and text may be missing.
    EmptyPage(const QString &symbol, const QString &title, const QString &text, QWidget *parent = nullptr);
};

} // namespace zorel::ui::library
