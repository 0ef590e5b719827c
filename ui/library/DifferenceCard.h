#pragma once

#include "app/presentation/ComparisonTexts.h"

#include <QWidget>

#include <optional>

namespace zorel::ui::library {

/// One headline difference of two runs: its title, its value and, where it is judged, an arrow.
class DifferenceCard : public QWidget
{
    Q_OBJECT

public:
    DifferenceCard(const QString &title, const QString &value, std::optional<app::presentation::Trend> trend,
                   QWidget *parent = nullptr);
};

} // namespace zorel::ui::library
