#include "app/presentation/StepCount.h"

#include <algorithm>

namespace zorel::app::presentation {

std::optional<std::int64_t> parseStepCount(const QString &text)
{
    const bool hasSign = text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-'));
    const QString digits = text.mid(hasSign ? 1 : 0);
    const bool onlyDigits = std::all_of(digits.begin(), digits.end(), [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    });
    if (digits.isEmpty() || !onlyDigits) {
        return std::nullopt;
    }
    bool fits = false;
    const qlonglong number = text.toLongLong(&fits);
    return fits ? std::optional<std::int64_t>(number) : std::nullopt;
}

std::int64_t stepperIncrement(std::int64_t current)
{
    if (current < 100) {
        return 10;
    }
    if (current < 1000) {
        return 100;
    }
    return current < 100'000 ? 1000 : 10'000;
}

} // namespace zorel::app::presentation
