#pragma once

#include <QString>

namespace zorel::terminal {

/// What a stream can show: Unicode or ASCII, colours or none.
struct TerminalStyle
{
    enum class Characters { unicode, ascii };
    enum class Colours { none, ansi };
    enum class Colour { green, red, dim };

    Characters characters = Characters::unicode;
    Colours colours = Colours::none;

    QString separator() const;
    QString ellipsis() const;
    /// `text` in a colour, where there are any.
    QString coloured(const QString &text, Colour colour) const;
    /// A bar of `columns` columns, the first `fraction` (0 to 1) of it filled.
    QString bar(double fraction, int columns) const;
    /// `text` with its signs replaced by ASCII ones where Unicode cannot be shown. Letters of other scripts
    /// stay: a path must remain the path.
    QString shown(QString text) const;

    /// The characters that the process's locale can show. To be asked before Qt changes the locale.
    static Characters charactersOfLocale();
    /// Whether colours are wanted: NO_COLOR and TERM=dumb refuse them.
    static Colours coloursOfEnvironment();
};

} // namespace zorel::terminal
