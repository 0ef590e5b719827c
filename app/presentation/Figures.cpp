#include "app/presentation/Figures.h"

#include "app/presentation/DecimalText.h"

#include <QLocale>

#include <cmath>

namespace zorel::app::presentation {

namespace {

QString dash()
{
    return QStringLiteral("—");
}

QString fixedOrDash(double value, int decimals)
{
    return std::isfinite(value) ? fixedText(value, decimals) : dash();
}

} // namespace

QString durationText(double seconds)
{
    const double whole = std::trunc(seconds);
    if (!(std::abs(whole) < 9e15)) {
        return dash();
    }
    const auto s = static_cast<long long>(whole);
    if (s >= 3600) {
        return QString::asprintf("%lldh%02lldm", s / 3600, s % 3600 / 60);
    }
    if (s >= 60) {
        return QString::asprintf("%lldm%02llds", s / 60, s % 60);
    }
    return QString::asprintf("%llds", s);
}

QString lossText(double loss)
{
    return fixedOrDash(loss, 4);
}

QString perplexityText(double loss)
{
    return loss > 0 && loss < 20 ? fixedOrDash(std::exp(loss), 1) : dash();
}

QString learningRateText(double rate)
{
    return std::isfinite(rate) ? scientificText(rate, 2) : dash();
}

QString gradNormText(double norm)
{
    return fixedOrDash(norm, 3);
}

QString throughputText(double perSecond)
{
    return fixedOrDash(perSecond, 0);
}

QString groupedText(std::int64_t number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(static_cast<qlonglong>(number));
}

} // namespace zorel::app::presentation
