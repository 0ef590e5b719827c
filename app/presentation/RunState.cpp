#include "app/presentation/RunState.h"

#include <algorithm>
#include <array>

namespace zorel::app::presentation {

namespace {

struct NamedState
{
    QLatin1String text;
    RunState state;
    QLatin1String title;
};

constexpr std::array namedStates{
    NamedState{QLatin1String("idle"), RunState::idle, QLatin1String("Idle")},
    NamedState{QLatin1String("starting"), RunState::starting, QLatin1String("Starting")},
    NamedState{QLatin1String("preparing"), RunState::preparing, QLatin1String("Preparing")},
    NamedState{QLatin1String("running"), RunState::running, QLatin1String("Running")},
    NamedState{QLatin1String("paused"), RunState::paused, QLatin1String("Paused")},
    NamedState{QLatin1String("stopping"), RunState::stopping, QLatin1String("Stopping")},
    NamedState{QLatin1String("done"), RunState::done, QLatin1String("Done")},
    NamedState{QLatin1String("error"), RunState::error, QLatin1String("Error")},
};

const NamedState *find(const QString &text)
{
    const auto found = std::find_if(namedStates.begin(), namedStates.end(),
                                    [&text](const NamedState &named) { return text == named.text; });
    return found == namedStates.end() ? nullptr : &*found;
}

} // namespace

RunState runState(const QString &text)
{
    const NamedState *named = find(text);
    return named == nullptr ? RunState::other : named->state;
}

QString runStateTitle(const QString &text)
{
    const NamedState *named = find(text);
    return named == nullptr ? text : QString(named->title);
}

bool isUnderWay(RunState state)
{
    switch (state) {
    case RunState::starting:
    case RunState::preparing:
    case RunState::running:
    case RunState::paused:
    case RunState::stopping:
        return true;
    case RunState::idle:
    case RunState::done:
    case RunState::error:
    case RunState::other:
        return false;
    }
    return false;
}

} // namespace zorel::app::presentation
