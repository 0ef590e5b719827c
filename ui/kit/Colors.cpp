#include "ui/kit/Colors.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <cmath>

namespace zorel::ui::kit {

namespace {

constexpr double textContrast = 4.5;
constexpr double lineContrast = 3.0;
constexpr double tintAmount = 0.12;
constexpr std::size_t roleCount = static_cast<std::size_t>(ColorRole::FocusRing) + 1;

/// What text may stand on.
constexpr std::array surfaces{ColorRole::WindowBackground,  ColorRole::CardBackground,
                              ColorRole::ControlBackground, ColorRole::HoverBackground,
                              ColorRole::PressedBackground, ColorRole::SelectionBackground};

using Scheme = std::array<QColor, roleCount>;

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The nearest colour to `wanted`, on the way to black or white, that satisfies the condition.
template <typename Condition>
QColor shifted(const QColor &wanted, const QColor &limit, Condition isGood)
{
    constexpr int steps = 50;
    for (int step = 0; step < steps; ++step) {
        const QColor candidate = mixed(wanted, limit, double(step) / steps);
        if (isGood(candidate)) {
            return candidate;
        }
    }
    return limit;
}

class SchemeBuilder
{
public:
    explicit SchemeBuilder(const QPalette &palette)
        : m_palette(palette)
        , m_isDark(isDark(palette))
    {}

    Scheme build()
    {
        addSurfaces();
        addAccent();
        addText();
        return m_scheme;
    }

private:
    QColor &at(ColorRole role) { return m_scheme[static_cast<std::size_t>(role)]; }
    QColor active(QPalette::ColorRole role) const { return m_palette.color(QPalette::Active, role); }
    QColor ink() const { return m_isDark ? QColor(Qt::white) : QColor(Qt::black); }

    void addSurfaces()
    {
        const QColor window = active(QPalette::Window);
        at(ColorRole::WindowBackground) = window;
        at(ColorRole::CardBackground) =
            m_isDark ? mixed(window, Qt::white, 0.05) : mixed(window, Qt::white, 0.85);
        const QColor card = at(ColorRole::CardBackground);
        at(ColorRole::ControlBackground) =
            m_isDark ? mixed(card, Qt::white, 0.07) : mixed(card, Qt::white, 0.6);
        at(ColorRole::HoverBackground) = mixed(card, ink(), m_isDark ? 0.11 : 0.045);
        at(ColorRole::PressedBackground) = mixed(card, ink(), m_isDark ? 0.16 : 0.09);
        at(ColorRole::Track) = mixed(card, ink(), m_isDark ? 0.15 : 0.1);
        at(ColorRole::CardBorder) = mixed(window, ink(), m_isDark ? 0.14 : 0.12);
        at(ColorRole::ControlBorder) = mixed(card, ink(), m_isDark ? 0.28 : 0.24);
        at(ColorRole::Separator) = mixed(card, ink(), m_isDark ? 0.13 : 0.1);
    }

    QColor legible(const QColor &wanted) const
    {
        const QColor card = m_scheme[static_cast<std::size_t>(ColorRole::CardBackground)];
        return shifted(wanted, ink(), [this, &card](const QColor &candidate) {
            return contrastRatio(candidate, mixed(card, candidate, tintAmount)) >= textContrast &&
                   std::all_of(surfaces.begin(), surfaces.end(), [this, &candidate](ColorRole surface) {
                       const QColor &behind = m_scheme[static_cast<std::size_t>(surface)];
                       return !behind.isValid() || contrastRatio(candidate, behind) >= textContrast;
                   });
        });
    }

    void addText()
    {
        const QColor text = active(QPalette::WindowText);
        at(ColorRole::Text) = legible(text);
        at(ColorRole::Secondary) = legible(mixed(text, at(ColorRole::WindowBackground), 0.38));
        at(ColorRole::Success) = legible(m_isDark ? QColor(0x4c, 0xc3, 0x6a) : QColor(0x1e, 0x86, 0x3c));
        at(ColorRole::Warning) = legible(m_isDark ? QColor(0xf0, 0xa0, 0x3c) : QColor(0xb4, 0x5f, 0x06));
        at(ColorRole::Danger) = legible(m_isDark ? QColor(0xff, 0x6b, 0x63) : QColor(0xc6, 0x28, 0x28));
    }

    void addAccent()
    {
        const QColor accent = accentOf();
        at(ColorRole::Accent) = legible(accent);
        const bool takesWhite = contrastRatio(Qt::white, accent) >= 2.5;
        const QColor onAccent = takesWhite ? Qt::white : Qt::black;
        at(ColorRole::OnAccent) = onAccent;
        at(ColorRole::AccentFill) =
            shifted(accent, takesWhite ? Qt::black : Qt::white, [&onAccent](const QColor &candidate) {
                return contrastRatio(candidate, onAccent) >= textContrast;
            });
        at(ColorRole::SelectionBackground) =
            mixed(at(ColorRole::CardBackground), at(ColorRole::Accent), tintAmount);
        at(ColorRole::FocusRing) = shifted(accent, ink(), [this](const QColor &candidate) {
            return contrastRatio(candidate, at(ColorRole::CardBackground)) >= lineContrast &&
                   contrastRatio(candidate, at(ColorRole::WindowBackground)) >= lineContrast;
        });
    }

    QColor accentOf() const
    {
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
        return active(QPalette::Accent);
#else
        return active(QPalette::Highlight);
#endif
    }

    QPalette m_palette;
    bool m_isDark;
    Scheme m_scheme;
};

/// Colours are asked for in every paint event, and a program has a handful of palettes.
const Scheme &schemeFor(const QPalette &palette)
{
    static QHash<qint64, Scheme> schemes;
    const qint64 key = palette.cacheKey();
    const auto found = schemes.constFind(key);
    if (found != schemes.constEnd()) {
        return *found;
    }
    if (schemes.size() >= 64) {
        schemes.clear();
    }
    return *schemes.insert(key, SchemeBuilder(palette).build());
}

bool isText(ColorRole role)
{
    return role <= ColorRole::Danger;
}

} // namespace

QColor color(ColorRole role, const QPalette &palette)
{
    if (isText(role) && palette.currentColorGroup() == QPalette::Disabled) {
        return palette.color(QPalette::Disabled, QPalette::WindowText);
    }
    return schemeFor(palette)[static_cast<std::size_t>(role)];
}

QColor tint(ColorRole tone, const QPalette &palette)
{
    QColor hue = color(tone, palette);
    // What is dark enough to be read makes a dull surface; grey has no hue to bring out.
    if (!isDark(palette) && hue.hsvSaturationF() > 0.3F) {
        hue = QColor::fromHsvF(hue.hsvHueF(), hue.hsvSaturationF(), 0.85F);
    }
    return mixed(color(ColorRole::CardBackground, palette), hue, tintAmount);
}

bool isDark(const QPalette &palette)
{
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    return contrastRatio(Qt::white, window) > contrastRatio(Qt::black, window);
}

double contrastRatio(const QColor &first, const QColor &second)
{
    const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor mixed(const QColor &first, const QColor &second, double amount)
{
    const auto channel = [amount](float from, float to) {
        return float(from + (to - from) * amount);
    };
    return QColor::fromRgbF(channel(first.redF(), second.redF()), channel(first.greenF(), second.greenF()),
                            channel(first.blueF(), second.blueF()), channel(first.alphaF(), second.alphaF()));
}

} // namespace zorel::ui::kit
