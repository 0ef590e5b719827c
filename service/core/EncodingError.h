#pragma once

#include <exception>

namespace caldra {

/// A request body that JSON cannot express: a number that is not finite, or nesting without end.
class EncodingError : public std::exception
{
public:
    explicit EncodingError(const char *reason)
        : m_reason(reason)
    {}

    const char *what() const noexcept override { return m_reason; }

private:
    const char *m_reason; // a literal
};

} // namespace caldra
