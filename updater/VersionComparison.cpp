#include "updater/VersionComparison.h"

#include <algorithm>
#include <vector>

namespace zorel::updater {

namespace {

struct Version
{
    std::vector<qint64> components;
    QString suffix;
};

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool separatesSuffix(QChar character)
{
    return character.isSpace() || character == u'-' || character == u'_' || character == u'+';
}

void append(std::vector<qint64> &components, QStringView digits)
{
    bool isNumber = false;
    const qint64 number = digits.toLongLong(&isNumber);
    if (isNumber) {
        components.push_back(number);
    }
}

Version parsed(const QString &text)
{
    Version version;
    const auto *const numericEnd = std::find_if_not(
        text.cbegin(), text.cend(), [](QChar character) { return isDigit(character) || character == u'.'; });
    const qsizetype numericLength = numericEnd - text.cbegin();
    for (const QStringView digits : QStringView(text).left(numericLength).tokenize(u'.')) {
        append(version.components, digits);
    }
    QString suffix = text.mid(numericLength);
    if (!suffix.isEmpty() && separatesSuffix(suffix.front())) {
        suffix.remove(0, 1);
    }
    version.suffix = suffix.trimmed().toLower();
    return version;
}

int compareComponents(const std::vector<qint64> &left, const std::vector<qint64> &right)
{
    const std::size_t count = std::max(left.size(), right.size());
    for (std::size_t index = 0; index < count; ++index) {
        const qint64 ours = index < left.size() ? left[index] : 0;
        const qint64 theirs = index < right.size() ? right[index] : 0;
        if (ours != theirs) {
            return ours < theirs ? -1 : 1;
        }
    }
    return 0;
}

int compareSuffixes(const QString &left, const QString &right)
{
    if (left == right) {
        return 0;
    }
    if (left.isEmpty() || right.isEmpty()) {
        return left.isEmpty() ? 1 : -1;
    }
    return left < right ? -1 : 1;
}

} // namespace

int compareVersions(const QString &left, const QString &right)
{
    const Version ours = parsed(left);
    const Version theirs = parsed(right);
    const int byComponents = compareComponents(ours.components, theirs.components);
    return byComponents != 0 ? byComponents : compareSuffixes(ours.suffix, theirs.suffix);
}

} // namespace zorel::updater
