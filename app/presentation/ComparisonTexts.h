#pragma once

#include "app/presentation/SrgbColor.h"
#include "library/ActivationDelta.h"
#include "library/ModelRunComparison.h"

#include <QLocale>
#include <QString>

#include <array>
#include <cstdint>

namespace zorel::app::presentation {

// What is said about two compared runs, in the window and in the terminal alike. An empty text means that
// there is nothing to say.

/// That the runs are not of one model, when they are not.
QString identityWarning(const library::ModelRunComparison &comparison);

/// How a difference is judged.
enum class Trend : std::uint8_t { good, bad };
/// "arrow.down.right" or "arrow.up.right", whatever direction the figure took.
QString trendSymbol(Trend trend);

/// Signed, four decimals.
QString lossChangeText(const library::ModelRunComparison &comparison);
/// Good only when the loss is lower.
Trend lossTrend(const library::ModelRunComparison &comparison);

/// "1,000 → 800 (-200)", the two step counts as the locale writes them.
QString stepsText(const library::ModelRunComparison &comparison, const QLocale &locale = QLocale());
/// Good when the candidate was trained for at least as many steps.
Trend stepsTrend(const library::ModelRunComparison &comparison);

/// The candidate's additional time, "+42s" or "+125m7s"; when it took less, the difference without a sign. An
/// em dash for what is not finite.
QString trainingTimeText(const library::ModelRunComparison &comparison);

/// Why the activations cannot be compared when a snapshot could not be loaded. Goes by what lay in the
/// folders when they were scanned, not by which file failed.
QString snapshotMessage(const library::ModelRunComparison &comparison);

/// "More active", "Less active" or "Similar".
QString changeTitle(library::ActivityChange change);
SrgbColor changeColor(library::ActivityChange change);
inline constexpr std::array legendChanges{library::ActivityChange::moreActive,
                                          library::ActivityChange::lessActive,
                                          library::ActivityChange::similar};

/// "Δ 0.0312".
QString deltaToolTip(double delta);
/// The side of a cell in points, 5 to 12: about 280 points for all cells of a block.
double deltaCellSize(std::int64_t neuronsPerLayer);

/// Which of the two runs has no curve to draw beside the other's.
QString missingCurveNotice(const library::ComparisonData &data);
/// Over which steps both curves have data, when one goes further than the other.
QString commonStepsNotice(const library::ComparisonData &data, const QLocale &locale = QLocale());
/// How the two models differ in shape, when they do: cells then compare groups of different channels.
QString shapeNotice(const library::ComparisonData &data);

} // namespace zorel::app::presentation
