#pragma once

namespace zorel::updater {

/// One visitor out of several lambdas; an alternative without an arm does not compile.
template <class... Arms>
struct Overloaded : Arms...
{
    using Arms::operator()...;
};

template <class... Arms>
Overloaded(Arms...) -> Overloaded<Arms...>;

} // namespace zorel::updater
