#include "library/ArchiveDate.h"

namespace zorel::library {

namespace {

using namespace std::chrono_literals;

/// Takes a text apart from its start; once something is not as wanted, nothing matches any more.
class DateText
{
public:
    explicit DateText(std::string_view text)
        : m_rest(text)
    {}

    bool isWhole() const { return m_isGood && m_rest.empty(); }
    bool startsWith(char character) const { return m_isGood && m_rest.starts_with(character); }

    void expect(char character)
    {
        m_isGood = startsWith(character);
        if (m_isGood) {
            m_rest.remove_prefix(1);
        }
    }

    int number(std::size_t digits, int most)
    {
        int value = 0;
        for (std::size_t count = 0; count < digits; ++count) {
            value = 10 * value + digit();
        }
        m_isGood = m_isGood && value <= most;
        return value;
    }

    /// The digits behind a decimal point; there must be one at least.
    std::chrono::microseconds fraction()
    {
        std::chrono::microseconds value{0};
        std::chrono::microseconds unit = 100'000us;
        do {
            value += digit() * unit;
            unit /= 10;
        } while (isAtDigit());
        return value;
    }

private:
    bool isAtDigit() const
    {
        return m_isGood && !m_rest.empty() && m_rest.front() >= '0' && m_rest.front() <= '9';
    }

    int digit()
    {
        m_isGood = isAtDigit();
        if (!m_isGood) {
            return 0;
        }
        const int value = m_rest.front() - '0';
        m_rest.remove_prefix(1);
        return value;
    }

    std::string_view m_rest;
    bool m_isGood = true;
};

std::chrono::sys_days readDay(DateText &text, bool &exists)
{
    const std::chrono::year year(text.number(4, 9999));
    text.expect('-');
    const std::chrono::month month(static_cast<unsigned>(text.number(2, 12)));
    text.expect('-');
    const std::chrono::day day(static_cast<unsigned>(text.number(2, 31)));
    const std::chrono::year_month_day date(year, month, day);
    exists = date.ok();
    return exists ? std::chrono::sys_days(date) : std::chrono::sys_days();
}

std::chrono::microseconds readTime(DateText &text)
{
    const std::chrono::hours hours(text.number(2, 23));
    text.expect(':');
    const std::chrono::minutes minutes(text.number(2, 59));
    text.expect(':');
    const std::chrono::seconds seconds(text.number(2, 60)); // 60 is a leap second
    std::chrono::microseconds time = hours + minutes + seconds;
    if (text.startsWith('.')) {
        text.expect('.');
        time += text.fraction();
    }
    return time;
}

std::chrono::minutes readZone(DateText &text)
{
    if (text.startsWith('Z')) {
        text.expect('Z');
        return 0min;
    }
    const bool isWest = text.startsWith('-');
    text.expect(isWest ? '-' : '+');
    const std::chrono::hours hours(text.number(2, 23));
    text.expect(':');
    const std::chrono::minutes offset = hours + std::chrono::minutes(text.number(2, 59));
    return isWest ? -offset : offset;
}

} // namespace

std::optional<ArchiveDate> parseArchiveDate(std::string_view text)
{
    DateText rest(text);
    bool exists = false;
    const std::chrono::sys_days day = readDay(rest, exists);
    rest.expect('T');
    const std::chrono::microseconds time = readTime(rest);
    const std::chrono::minutes zone = readZone(rest);
    return exists && rest.isWhole() ? std::optional<ArchiveDate>(day + time - zone) : std::nullopt;
}

QString toIsoText(ArchiveDate date)
{
    const auto day = std::chrono::floor<std::chrono::days>(date);
    const std::chrono::year_month_day calendar(day);
    const std::chrono::hh_mm_ss time(date - day);
    const auto microseconds = static_cast<int>(time.subseconds().count());
    const QString fraction = microseconds % 1000 == 0 ? QString::asprintf("%03d", microseconds / 1000)
                                                      : QString::asprintf("%06d", microseconds);
    return QString::asprintf("%04d-%02u-%02uT%02d:%02d:%02d.", int(calendar.year()),
                             unsigned(calendar.month()), unsigned(calendar.day()),
                             static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                             static_cast<int>(time.seconds().count())) +
           fraction + u'Z';
}

QDateTime toDateTime(ArchiveDate date)
{
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::floor<std::chrono::milliseconds>(date).time_since_epoch().count(), Qt::UTC);
}

} // namespace zorel::library
