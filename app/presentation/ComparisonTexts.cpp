#include "app/presentation/ComparisonTexts.h"

#include "app/presentation/DecimalText.h"
#include "library/CurveSummary.h"

#include <algorithm>
#include <cmath>

namespace zorel::app::presentation {

using backend::protocol::NeuronSnapshotPayload;
using library::ActivityChange;
using library::ComparisonData;
using library::ModelRunComparison;

namespace {

constexpr double rowWidth = 280;
constexpr double smallestCell = 5;
constexpr double largestCell = 12;

QString grouped(std::int64_t number, QLocale locale)
{
    // The locale of a system that has none set would leave them out.
    QLocale::NumberOptions options = locale.numberOptions();
    locale.setNumberOptions(options.setFlag(QLocale::OmitGroupSeparator, false));
    return locale.toString(static_cast<qlonglong>(number));
}

/// Always signed; the difference of two 64-bit numbers may need 65 bits.
QString signedDifference(std::int64_t from, std::int64_t to)
{
    const bool isNegative = to < from;
    const auto lower = static_cast<std::uint64_t>(isNegative ? to : from);
    const auto upper = static_cast<std::uint64_t>(isNegative ? from : to);
    return (isNegative ? u'-' : u'+') + QString::number(upper - lower);
}

QString durationDifference(double seconds)
{
    if (!std::isfinite(seconds)) {
        return QStringLiteral("—");
    }
    const QString sign = seconds >= 0 ? QStringLiteral("+") : QString();
    const double whole = std::trunc(std::abs(seconds));
    if (whole < 60) {
        return sign + fixedText(whole, 0) + u's';
    }
    const double rest = std::fmod(whole, 60);
    return sign + fixedText((whole - rest) / 60, 0) + u'm' + fixedText(rest, 0) + u's';
}

/// "4 blocks of 32 channel groups (512 channels)".
QString shapeText(const NeuronSnapshotPayload &snapshot)
{
    const auto blocks = static_cast<qlonglong>(snapshot.layers.size());
    return QStringLiteral("%1 %2 of %3 channel groups (%4 channels)")
        .arg(blocks)
        .arg(blocks == 1 ? QStringLiteral("block") : QStringLiteral("blocks"))
        .arg(static_cast<qlonglong>(snapshot.neuronsPerLayer))
        .arg(static_cast<qlonglong>(snapshot.hiddenDim));
}

} // namespace

QString identityWarning(const ModelRunComparison &comparison)
{
    return comparison.isOfOneModel() ? QString()
                                     : QStringLiteral("These runs use different model names or families — "
                                                      "treat the comparison as exploratory.");
}

QString trendSymbol(Trend trend)
{
    return trend == Trend::good ? QStringLiteral("arrow.down.right") : QStringLiteral("arrow.up.right");
}

QString lossChangeText(const ModelRunComparison &comparison)
{
    const double change = comparison.lossChange();
    if (!std::isfinite(change)) {
        return QStringLiteral("—");
    }
    return (std::signbit(change) ? QString() : QStringLiteral("+")) + fixedText(change, 4);
}

Trend lossTrend(const ModelRunComparison &comparison)
{
    return comparison.lossChange() < 0 ? Trend::good : Trend::bad;
}

QString stepsText(const ModelRunComparison &comparison, const QLocale &locale)
{
    const std::int64_t from = comparison.baseline.step;
    const std::int64_t to = comparison.candidate.step;
    return grouped(from, locale) + QStringLiteral(" → ") + grouped(to, locale) + QStringLiteral(" (") +
           signedDifference(from, to) + u')';
}

Trend stepsTrend(const ModelRunComparison &comparison)
{
    return comparison.candidate.step >= comparison.baseline.step ? Trend::good : Trend::bad;
}

QString trainingTimeText(const ModelRunComparison &comparison)
{
    return durationDifference(comparison.elapsedChange());
}

QString snapshotMessage(const ModelRunComparison &comparison)
{
    if (comparison.baseline.hasNeuronSnapshot) {
        return QStringLiteral("The candidate run has no neuron snapshot.");
    }
    return comparison.candidate.hasNeuronSnapshot
               ? QStringLiteral("The baseline run has no neuron snapshot.")
               : QStringLiteral("Neither run has a saved neuron snapshot. Retrain to capture pathways.");
}

QString changeTitle(ActivityChange change)
{
    switch (change) {
    case ActivityChange::moreActive:
        return QStringLiteral("More active");
    case ActivityChange::lessActive:
        return QStringLiteral("Less active");
    case ActivityChange::similar:
        return QStringLiteral("Similar");
    }
    return {};
}

SrgbColor changeColor(ActivityChange change)
{
    switch (change) {
    case ActivityChange::moreActive:
        return {0.15, 0.62, 0.30};
    case ActivityChange::lessActive:
        return {0.85, 0.25, 0.22};
    case ActivityChange::similar:
        return {0.82, 0.82, 0.82};
    }
    return {};
}

QString deltaToolTip(double delta)
{
    return QStringLiteral("Δ ") + fixedText(delta, 4);
}

double deltaCellSize(std::int64_t neuronsPerLayer)
{
    if (neuronsPerLayer == 0) {
        return largestCell;
    }
    return std::max(std::min(rowWidth / static_cast<double>(neuronsPerLayer), largestCell), smallestCell);
}

QString missingCurveNotice(const ComparisonData &data)
{
    if (data.baselineLoss.empty() == data.candidateLoss.empty()) {
        return {};
    }
    return data.baselineLoss.empty() ? QStringLiteral("The baseline run has no loss curve.")
                                     : QStringLiteral("The candidate run has no loss curve.");
}

QString commonStepsNotice(const ComparisonData &data, const QLocale &locale)
{
    const auto baseline = library::summary(data.baselineLoss);
    const auto candidate = library::summary(data.candidateLoss);
    if (!baseline || !candidate || baseline->steps == candidate->steps) {
        return {};
    }
    const auto common = library::commonSteps(*baseline, *candidate);
    if (!common) {
        return QStringLiteral("The two curves have no steps in common.");
    }
    if (common->first == common->last) {
        return QStringLiteral("Both curves have data at step %1 only.").arg(grouped(common->first, locale));
    }
    return QStringLiteral("Both curves have data from step %1 to step %2.")
        .arg(grouped(common->first, locale), grouped(common->last, locale));
}

QString shapeNotice(const ComparisonData &data)
{
    if (!data.baselineNeurons || !data.candidateNeurons ||
        library::haveSameShape(*data.baselineNeurons, *data.candidateNeurons)) {
        return {};
    }
    const QString baseline = shapeText(*data.baselineNeurons);
    const QString candidate = shapeText(*data.candidateNeurons);
    const QString difference =
        baseline == candidate
            ? QStringLiteral("The two models group their channels differently.")
            : QStringLiteral("The two models differ in shape: the baseline has %1, the candidate %2.")
                  .arg(baseline, candidate);
    return difference +
           QStringLiteral(" Cells compare groups of the same number; those without a counterpart are grey.");
}

} // namespace zorel::app::presentation
