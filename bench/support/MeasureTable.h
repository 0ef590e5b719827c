#pragma once

#include <QString>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace zorel::bench {

/// Prints measures that were taken by hand, one a line, beside their goals, and knows whether all were kept.
class MeasureTable
{
public:
    /// `measured` heads the column of values.
    explicit MeasureTable(const char *measured = "measured")
    {
        std::printf("%-66s %18s   %-18s %s\n", "measure", measured, "goal", "ok?");
    }

    void print(const QString &measure, const QString &value, const QString &goal, bool isKept)
    {
        std::printf("%-66s %18s   %-18s %s\n", qPrintable(measure), qPrintable(value), qPrintable(goal),
                    isKept ? "yes" : "NO");
        std::fflush(stdout);
        m_allKept = m_allKept && isKept;
    }

    void printAtMost(const QString &measure, double value, double most, const char *unit, int digits)
    {
        print(measure, text(value, unit, digits), QStringLiteral("<= ") + text(most, unit, digits),
              value <= most);
    }

    void printAtLeast(const QString &measure, double value, double least, const char *unit, int digits)
    {
        print(measure, text(value, unit, digits), QStringLiteral(">= ") + text(least, unit, digits),
              value >= least);
    }

    /// What another measure is compared with; promises nothing.
    void printReference(const QString &measure, double value, const char *unit, int digits)
    {
        print(measure, text(value, unit, digits), QStringLiteral("reference"), true);
    }

    /// To be returned from main: 0 when every promise was kept.
    int status() const { return m_allKept ? 0 : 1; }

private:
    static QString text(double value, const char *unit, int digits)
    {
        return QString::number(value, 'f', digits) + QLatin1String(unit);
    }

    bool m_allKept = true;
};

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace zorel::bench
