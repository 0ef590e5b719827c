#include "ui/kit/Typography.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPointer>
#include <QSet>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace zorel::ui::kit {

namespace {

double scaleOf(TextRole role)
{
    switch (role) {
    case TextRole::LargeTitle:
        return 2.0;
    case TextRole::Title:
        return 1.5;
    case TextRole::Heading:
        return 1.2;
    case TextRole::Subheading:
        return 1.1;
    case TextRole::Body:
        return 1.0;
    case TextRole::Caption:
        return 0.9;
    case TextRole::Caption2:
        return 0.82;
    }
    return 1.0;
}

QFont::Weight fontWeight(Weight weight)
{
    switch (weight) {
    case Weight::Regular:
        return QFont::Normal;
    case Weight::Medium:
        return QFont::Medium;
    case Weight::Semibold:
        return QFont::DemiBold;
    }
    return QFont::Normal;
}

/// Never below 7 points or 10 pixels, unless the whole application is: smaller text is no text.
void setSizeFrom(QFont &font, const QFont &base, TextRole role)
{
    const double scale = scaleOf(role);
    if (base.pointSizeF() > 0) {
        const double points = base.pointSizeF() * scale;
        font.setPointSizeF(std::max(std::min(7.0, base.pointSizeF()), std::round(points * 4) / 4));
    } else {
        font.setPixelSize(std::max(std::min(10, base.pixelSize()), qRound(base.pixelSize() * scale)));
    }
}

[[maybe_unused]] bool hasEqualDigits(const QFont &font)
{
    const QFontMetricsF metrics(font);
    const double width = metrics.horizontalAdvance(QLatin1Char('0'));
    for (char digit = '1'; digit <= '9'; ++digit) {
        if (std::abs(metrics.horizontalAdvance(QLatin1Char(digit)) - width) > 0.01) {
            return false;
        }
    }
    return true;
}

QFont fontFor(TextRole role, Weight weight, FontKind kind)
{
    switch (kind) {
    case FontKind::Proportional:
        return textFont(role, weight);
    case FontKind::Tabular:
        return tabularFont(role, weight);
    case FontKind::Monospaced:
        return monospacedFont(role, weight);
    }
    return textFont(role, weight);
}

/// Sets a widget's font again when the application's has changed. One per widget, as its child.
class FontFollower : public QObject
{
public:
    explicit FontFollower(QWidget *widget);
    ~FontFollower() override;

    void follow(TextRole role, Weight weight, FontKind kind)
    {
        m_role = role;
        m_weight = weight;
        m_kind = kind;
        applyFont();
    }

    void applyFont() { m_widget->setFont(fontFor(m_role, m_weight, m_kind)); }

private:
    QWidget *m_widget;
    TextRole m_role = TextRole::Body;
    Weight m_weight = Weight::Regular;
    FontKind m_kind = FontKind::Proportional;
};

/// Only the application and its windows are told of the change, not the widgets inside. One per application.
class FontWatcher : public QObject
{
public:
    /// Null when there is none any more, as at the end of the program.
    static QPointer<FontWatcher> &instance()
    {
        static QPointer<FontWatcher> watcher;
        return watcher;
    }

    explicit FontWatcher(QObject *application)
        : QObject(application)
    {
        application->installEventFilter(this);
    }

    QSet<FontFollower *> followers;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == qApp && event->type() == QEvent::ApplicationFontChange) {
            // Setting a font may make or delete widgets.
            const QSet<FontFollower *> present = followers;
            for (FontFollower *follower : present) {
                if (followers.contains(follower)) {
                    follower->applyFont();
                }
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

FontFollower::FontFollower(QWidget *widget)
    : QObject(widget)
    , m_widget(widget)
{
    QPointer<FontWatcher> &watcher = FontWatcher::instance();
    if (!watcher) {
        watcher = new FontWatcher(qApp);
    }
    watcher->followers.insert(this);
}

FontFollower::~FontFollower()
{
    if (FontWatcher *watcher = FontWatcher::instance()) {
        watcher->followers.remove(this);
    }
}

const QString followerName = QStringLiteral("zorelFontFollower");

} // namespace

QFont textFont(TextRole role, Weight weight)
{
    QFont font = QApplication::font();
    setSizeFrom(font, QApplication::font(), role);
    font.setWeight(fontWeight(weight));
    return font;
}

QFont monospacedFont(TextRole role, Weight weight)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    setSizeFrom(font, QApplication::font(), role);
    font.setWeight(fontWeight(weight));
    return font;
}

QFont tabularFont(TextRole role, Weight weight)
{
    QFont font = textFont(role, weight);
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    font.setFeature("tnum", 1);
    return font;
#else
    return hasEqualDigits(font) ? font : monospacedFont(role, weight);
#endif
}

void setTextFont(QWidget *widget, TextRole role, Weight weight, FontKind kind)
{
    QObject *found = widget->findChild<QObject *>(followerName, Qt::FindDirectChildrenOnly);
    auto *follower = static_cast<FontFollower *>(found);
    if (!follower) {
        follower = new FontFollower(widget);
        follower->setObjectName(followerName);
    }
    follower->follow(role, weight, kind);
}

} // namespace zorel::ui::kit
