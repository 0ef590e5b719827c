#include "terminal/TerminalStyle.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <utility>

#include <langinfo.h>

namespace zorel::terminal {

namespace {

const std::array replacements{
    std::pair{QStringLiteral("×"), QStringLiteral("x")},
    std::pair{QStringLiteral("✓"), QStringLiteral("*")},
    std::pair{QStringLiteral("→"), QStringLiteral("->")},
    std::pair{QStringLiteral("…"), QStringLiteral("...")},
    std::pair{QStringLiteral("—"), QStringLiteral("-")},
    std::pair{QStringLiteral("–"), QStringLiteral("-")},
    std::pair{QStringLiteral("“"), QStringLiteral("\"")},
    std::pair{QStringLiteral("”"), QStringLiteral("\"")},
    std::pair{QStringLiteral("’"), QStringLiteral("'")},
};

} // namespace

QString TerminalStyle::separator() const
{
    return characters == Characters::unicode ? QStringLiteral(" · ") : QStringLiteral(", ");
}

QString TerminalStyle::ellipsis() const
{
    return characters == Characters::unicode ? QStringLiteral("…") : QStringLiteral("...");
}

QString TerminalStyle::coloured(const QString &text, Colour colour) const
{
    if (colours == Colours::none || text.isEmpty()) {
        return text;
    }
    const char *code = colour == Colour::green ? "32" : colour == Colour::red ? "31" : "2";
    return QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(code), text);
}

QString TerminalStyle::bar(double fraction, int columns) const
{
    const double share = std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0.0;
    if (characters == Characters::ascii) {
        const int inner = std::max(0, columns - 2);
        const int filled = int(share * inner);
        return u'[' + QString(filled, u'#') + QString(inner - filled, u'.') + u']';
    }
    // Half columns make the bar move twice as often.
    const int halves = int(share * columns * 2);
    QString filled(halves / 2, u'━');
    if (halves % 2 != 0) {
        filled += u'╸';
    }
    return coloured(filled, Colour::green) +
           coloured(QString(columns - int(filled.size()), u'─'), Colour::dim);
}

QString TerminalStyle::shown(QString text) const
{
    if (characters == Characters::ascii) {
        for (const auto &[sign, replacement] : replacements) {
            text.replace(sign, replacement);
        }
    }
    return text;
}

TerminalStyle::Characters TerminalStyle::charactersOfLocale()
{
    std::setlocale(LC_CTYPE, "");
    const QByteArray charset = nl_langinfo(CODESET);
    return charset.compare("UTF-8", Qt::CaseInsensitive) == 0 ? Characters::unicode : Characters::ascii;
}

TerminalStyle::Colours TerminalStyle::coloursOfEnvironment()
{
    return qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb" ? Colours::ansi
                                                                                : Colours::none;
}

} // namespace zorel::terminal
