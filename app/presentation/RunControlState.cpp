#include "app/presentation/RunControlState.h"

#include "app/presentation/Figures.h"
#include "app/presentation/RunState.h"
#include "app/presentation/StatusText.h"

namespace zorel::app::presentation {

namespace {

QString stateWithSteps(const RunFacts &facts)
{
    return QStringLiteral("%1 — step %2 of %3")
        .arg(runStateTitle(facts.state), groupedText(facts.step), groupedText(facts.maxSteps));
}

QString lineWhileUnderWay(const RunFacts &facts, RunState state)
{
    if (state == RunState::preparing || state == RunState::starting) {
        return emptyChartHint(facts.state, facts.family).replace(QLatin1Char('\n'), QLatin1Char(' '));
    }
    return stateWithSteps(facts);
}

QString lineBetweenRuns(const RunFacts &facts, RunState state)
{
    if (!facts.ready) {
        return {};
    }
    if (!facts.error.isEmpty() && (state == RunState::error || state == RunState::idle)) {
        return facts.error;
    }
    if (state == RunState::error || state == RunState::done) {
        return stateWithSteps(facts);
    }
    return emptyChartHint(facts.state, facts.family);
}

} // namespace

RunControlState runControlState(const RunFacts &facts)
{
    const RunState state = runState(facts.state);
    const bool underWay = facts.ready && isUnderWay(state);
    RunControlState controls;
    controls.canStart = !underWay;
    controls.canPause = underWay && (state == RunState::running || state == RunState::paused);
    controls.canStop = underWay && state != RunState::stopping;
    controls.pauseAction = state == RunState::paused ? RunControlState::PauseAction::resume
                                                     : RunControlState::PauseAction::pause;
    controls.startLabel = underWay ? QStringLiteral("A run is under way") : startLabel(facts.ready);
    controls.statusLine = underWay ? lineWhileUnderWay(facts, state) : lineBetweenRuns(facts, state);
    return controls;
}

} // namespace zorel::app::presentation
