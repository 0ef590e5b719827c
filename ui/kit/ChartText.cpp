#include "ui/kit/ChartText.h"

#include <QStringList>

#include <array>
#include <charconv>
#include <cmath>

namespace zorel::ui::kit {

namespace {

QString stepAndValue(const ChartContent &content, const ChartPoint &point, const QLocale &locale)
{
    return QStringLiteral("%1 %2, %3 %4")
        .arg(content.stepTitle, chartStepText(point.step, locale), content.valueTitle,
             chartValueText(point.value));
}

QString valueAtStep(const ChartContent &content, const ChartPoint &point, const QLocale &locale)
{
    return QStringLiteral("%1 at %2 %3")
        .arg(chartValueText(point.value), content.stepTitle.toLower(), chartStepText(point.step, locale));
}

QString seriesSummary(const ChartContent &content, int number, const QLocale &locale)
{
    const ChartTrack &track = content.series[static_cast<std::size_t>(number)].raw();
    const QString name = content.nameOf(number);
    const auto count = static_cast<qlonglong>(track.size());
    if (count == 0) {
        return QStringLiteral("%1: no points.").arg(name);
    }
    QString text = count == 1 ? QStringLiteral("%1: 1 point").arg(name)
                              : QStringLiteral("%1: %2 points").arg(name, locale.toString(count));
    text += QStringLiteral("; first %1; last %2")
                .arg(valueAtStep(content, track.points().front(), locale),
                     valueAtStep(content, track.points().back(), locale));
    const auto extent = track.extent();
    if (extent->hasValues) {
        text += QStringLiteral("; lowest %1").arg(valueAtStep(content, track.at(extent->lowest), locale));
    }
    return text + QLatin1Char('.');
}

QString counted(std::size_t count, const QString &one, const QString &many, const QLocale &locale)
{
    return count == 1 ? one : many.arg(locale.toString(static_cast<qlonglong>(count)));
}

} // namespace

QString chartStepText(std::int64_t step, const QLocale &locale)
{
    return locale.toString(static_cast<qlonglong>(step));
}

QString chartValueText(double value)
{
    constexpr double firstLong = 1e9;
    if (std::isnan(value)) {
        return QStringLiteral("not a number");
    }
    if (std::isinf(value)) {
        return value > 0 ? QStringLiteral("infinite") : QStringLiteral("minus infinite");
    }
    const auto format =
        std::abs(value) < firstLong ? std::chars_format::fixed : std::chars_format::scientific;
    std::array<char, 64> text{};
    // Not by QString, which rounds 2.53125 up.
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), value, format, 4);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

QString chartMarkText(const ChartContent &content, ChartMark mark, const QLocale &locale)
{
    QString text = stepAndValue(content, content.at(mark), locale);
    if (content.series.size() < 2) {
        return text;
    }
    return QStringLiteral("%1: %2").arg(content.nameOf(mark.series), text);
}

QString chartOmissionText(const ChartContent &content, const QLocale &locale)
{
    QStringList parts;
    if (const std::size_t count = content.notPositiveCount()) {
        parts += counted(count, QStringLiteral("1 value of zero or below"),
                         QStringLiteral("%1 values of zero or below"), locale);
    }
    if (const std::size_t count = content.notFiniteCount()) {
        parts += counted(count, QStringLiteral("1 value that is no finite number"),
                         QStringLiteral("%1 values that are no finite numbers"), locale);
    }
    return parts.isEmpty() ? QString()
                           : QStringLiteral("Not drawn: %1.").arg(parts.join(QStringLiteral(", ")));
}

QString chartSummary(const ChartContent &content, const QLocale &locale)
{
    QStringList parts;
    parts += QStringLiteral("Line chart of %1 by %2.").arg(content.valueTitle, content.stepTitle);
    if (content.series.size() > 1 && !content.legendKey.isEmpty()) {
        QStringList names;
        for (std::size_t i = 0; i < content.series.size(); ++i) {
            names += content.nameOf(static_cast<int>(i));
        }
        parts += QStringLiteral("%1: %2.").arg(content.legendKey, names.join(QStringLiteral(", ")));
    }
    for (std::size_t i = 0; i < content.series.size(); ++i) {
        parts += seriesSummary(content, static_cast<int>(i), locale);
    }
    if (content.scale == ChartScaleKind::Logarithmic) {
        parts += QStringLiteral("Logarithmic scale.");
    }
    if (const QString omitted = chartOmissionText(content, locale); !omitted.isEmpty()) {
        parts += omitted;
    }
    return parts.join(QLatin1Char(' '));
}

} // namespace zorel::ui::kit
