#include "app/presentation/Figures.h"

#include <QLocale>

#include <cmath>

namespace zorel::app::presentation {

namespace {

QString formatted(const char *format, double value)
{
    return std::isfinite(value) ? QString::asprintf(format, value) : QStringLiteral("—");
}

} // namespace

QString durationText(double seconds)
{
    const double whole = std::trunc(seconds);
    if (!(std::abs(whole) < 9e15)) {
        return QStringLiteral("—");
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
    return formatted("%.4f", loss);
}

QString perplexityText(double loss)
{
    return loss > 0 && loss < 20 ? formatted("%.1f", std::exp(loss)) : QStringLiteral("—");
}

QString learningRateText(double rate)
{
    return formatted("%.2e", rate);
}

QString gradNormText(double norm)
{
    return formatted("%.3f", norm);
}

QString throughputText(double perSecond)
{
    return formatted("%.0f", perSecond);
}

QString groupedText(std::int64_t number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(static_cast<qlonglong>(number));
}

} // namespace zorel::app::presentation
