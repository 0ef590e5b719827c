#pragma once

namespace zorel::backend::protocol {

/// Visits a variant with one lambda an alternative; a missing one is a compile error.
template <class... Callables>
struct Overloaded : Callables...
{
    using Callables::operator()...;
};

template <class... Callables>
Overloaded(Callables...) -> Overloaded<Callables...>;

} // namespace zorel::backend::protocol
