#include "terminal/LibraryReport.h"

#include "app/presentation/ComparisonTexts.h"
#include "app/presentation/Figures.h"
#include "app/presentation/NeuronTexts.h"
#include "app/presentation/RunTexts.h"
#include "library/ActivationDelta.h"
#include "terminal/TextWidth.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace zorel::terminal {

using namespace app::presentation;
using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSnapshotPayload;
using library::ActivityChange;
using library::ArchivedModelRecord;
using library::ComparisonData;
using library::CurveSummary;
using library::ModelRunComparison;

namespace {

/// As the other figures in the terminal, whatever the locale.
const QLocale &numbers()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

QString dateText(const ArchivedModelRecord &run)
{
    return run.archivedAt ? library::toDateTime(*run.archivedAt)
                                .toLocalTime()
                                .toString(QStringLiteral("yyyy-MM-dd HH:mm"))
                          : QStringLiteral("—");
}

QString runSteps(const ArchivedModelRecord &run)
{
    return groupedText(run.step) + QStringLiteral(" / ") + groupedText(run.maxSteps);
}

QString padded(const QString &text, int columns)
{
    return text + QString(std::max(0, columns - textWidth(text)), u' ');
}

/// Columns as wide as their widest text, two spaces between them.
QString table(const std::vector<QStringList> &rows)
{
    std::vector<int> widths(static_cast<std::size_t>(rows.front().size()));
    for (const QStringList &row : rows) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], textWidth(row[qsizetype(column)]));
        }
    }
    QStringList lines;
    for (const QStringList &row : rows) {
        QString line;
        for (std::size_t column = 0; column + 1 < widths.size(); ++column) {
            line += padded(row[qsizetype(column)], widths[column]) + QStringLiteral("  ");
        }
        lines << line + row.last();
    }
    return lines.join(u'\n');
}

/// A list of labels and values, one below the other.
class Sheet
{
public:
    explicit Sheet(const QString &heading)
        : m_text(withoutControls(heading))
    {}

    /// Leaves out an empty value.
    void add(const char *label, const QString &value)
    {
        constexpr int labelColumns = 17;
        if (!value.isEmpty()) {
            m_text += QStringLiteral("\n  ") + padded(QString::fromLatin1(label), labelColumns) +
                      withoutControls(value);
        }
    }

    QString text() const { return m_text; }

private:
    QString m_text;
};

QString curveText(const std::optional<CurveSummary> &curve)
{
    if (!curve) {
        return QStringLiteral("none");
    }
    return QStringLiteral("%1 %2, step %3 to %4: %5 → %6, lowest %7 at step %8")
        .arg(groupedText(curve->points),
             curve->points == 1 ? QStringLiteral("point") : QStringLiteral("points"),
             groupedText(curve->steps.first), groupedText(curve->steps.last), lossText(curve->firstLoss),
             lossText(curve->lastLoss), lossText(curve->lowestLoss), groupedText(curve->lowestStep));
}

QString snapshotText(const std::optional<NeuronSnapshotPayload> &snapshot)
{
    if (!snapshot) {
        return QStringLiteral("none");
    }
    std::array<std::int64_t, 3> counts{};
    for (const backend::protocol::LayerNeurons &layer : snapshot->layers) {
        for (const backend::protocol::VisualNeuron &neuron : layer.neurons) {
            ++counts.at(static_cast<std::size_t>(neuron.tier));
        }
    }
    QStringList tiers;
    for (const auto tier :
         {NeuronActivityTier::high, NeuronActivityTier::moderate, NeuronActivityTier::inactive}) {
        tiers << groupedText(counts.at(static_cast<std::size_t>(tier))) + u' ' + tierTitle(tier).toLower();
    }
    const auto blocks = static_cast<std::int64_t>(snapshot->layers.size());
    return QStringLiteral("step %1, %2 %3: ")
               .arg(groupedText(snapshot->step), groupedText(blocks),
                    blocks == 1 ? QStringLiteral("block") : QStringLiteral("blocks")) +
           tiers.join(QStringLiteral(", "));
}

QString heading(const ArchivedModelRecord &run)
{
    return run.name + QStringLiteral(" v") + run.version;
}

QString comparedRun(const ArchivedModelRecord &run)
{
    return heading(run) + QStringLiteral(", ") + run.folderName;
}

QString activationsText(const ModelRunComparison &comparison, const ComparisonData &data)
{
    if (!data.baselineNeurons || !data.candidateNeurons) {
        return snapshotMessage(comparison);
    }
    std::array<std::int64_t, 3> counts{};
    for (const library::DeltaRow &row :
         library::activationDeltas(*data.baselineNeurons, *data.candidateNeurons)) {
        for (const double delta : row.deltas) {
            ++counts.at(static_cast<std::size_t>(library::activityChange(delta)));
        }
    }
    QStringList changes;
    for (const ActivityChange change : legendChanges) {
        changes << groupedText(counts.at(static_cast<std::size_t>(change))) + u' ' +
                       changeTitle(change).toLower();
    }
    return changes.join(QStringLiteral(", "));
}

} // namespace

QString runTable(const std::vector<const ArchivedModelRecord *> &runs)
{
    std::vector<QStringList> rows{{QStringLiteral("FOLDER"), QStringLiteral("NAME"),
                                   QStringLiteral("VERSION"), QStringLiteral("ARCHIVED"),
                                   QStringLiteral("STEPS"), QStringLiteral("LOSS"),
                                   QStringLiteral("VAL LOSS")}};
    for (const ArchivedModelRecord *run : runs) {
        rows.push_back({withoutControls(run->folderName), withoutControls(run->name),
                        withoutControls(run->version), dateText(*run), runSteps(*run),
                        lossText(run->finalLoss),
                        run->valLoss ? lossText(*run->valLoss) : QStringLiteral("—")});
    }
    return table(rows);
}

QString runReport(const ArchivedModelRecord &run, const std::optional<CurveSummary> &curve,
                  const std::optional<NeuronSnapshotPayload> &snapshot)
{
    Sheet sheet(heading(run) +
                (run.author.trimmed().isEmpty() ? QString() : QStringLiteral(" by ") + run.author));
    sheet.add("Folder", run.path);
    sheet.add("Model type", familyTitle(run.modelFamily));
    sheet.add("Training mode", capabilityTitle(run.trainingCapability));
    sheet.add("Archived", dateText(run));
    sheet.add("Steps", runSteps(run));
    sheet.add("Final loss", lossText(run.finalLoss));
    sheet.add("Val loss", run.valLoss ? lossText(*run.valLoss) : QString());
    sheet.add("Elapsed", durationText(run.elapsedS));
    sheet.add("Throughput", throughputText(run.tokensPerSec) + QStringLiteral(" tok/s"));
    sheet.add("Loss curve", curveText(curve));
    sheet.add("Neuron snapshot", snapshotText(snapshot));
    return sheet.text();
}

QString comparisonReport(const ModelRunComparison &comparison, const ComparisonData &data)
{
    Sheet sheet(heading(comparison.baseline) + QStringLiteral(" → ") + heading(comparison.candidate));
    sheet.add("Baseline", comparedRun(comparison.baseline));
    sheet.add("Candidate", comparedRun(comparison.candidate));
    sheet.add("Note", identityWarning(comparison));
    sheet.add("Loss change", lossChangeText(comparison));
    sheet.add("Steps", stepsText(comparison, numbers()));
    sheet.add("Training time", trainingTimeText(comparison));
    sheet.add("Baseline curve", curveText(library::summary(data.baselineLoss)));
    sheet.add("Candidate curve", curveText(library::summary(data.candidateLoss)));
    sheet.add("", commonStepsNotice(data, numbers()));
    sheet.add("Neuron pathways", activationsText(comparison, data));
    sheet.add("", shapeNotice(data));
    return sheet.text();
}

QString nothingFound(const QString &searchText)
{
    return searchText.isEmpty()
               ? QStringLiteral("No trained models yet. Complete a training run and it will appear "
                                "here under Finished models.")
               : QStringLiteral("No run has “%1” in its name, version or folder.").arg(searchText);
}

} // namespace zorel::terminal
