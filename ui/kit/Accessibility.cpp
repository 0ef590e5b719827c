#include "ui/kit/Accessibility.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace zorel::ui::kit {

namespace {

constexpr const char *roleProperty = "zorelAccessibleRole";
constexpr const char *disclosureProperty = "zorelDisclosure";

class KitAccessible : public QAccessibleWidget
{
public:
    KitAccessible(QWidget *widget, QAccessible::Role role)
        : QAccessibleWidget(widget, role)
    {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        const QVariant disclosure = widget()->property(disclosureProperty);
        if (disclosure.isValid()) {
            state.expandable = true;
            state.expanded = disclosure.toBool();
            state.collapsed = !disclosure.toBool();
        }
        if (const QAbstractButton *pressable = button()) {
            state.checkable = pressable->isCheckable();
            state.checked = pressable->isChecked();
            state.pressed = pressable->isDown();
        }
        return state;
    }

    /// A tooltip repeats what has no room, for the eye and as markup; it is no description.
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Description ? widget()->accessibleDescription()
                                                : QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (button() && button()->isEnabled()) {
            names.prepend(pressAction());
        }
        return names;
    }

    void doAction(const QString &name) override
    {
        if (button() && name == pressAction()) {
            button()->click();
            return;
        }
        QAccessibleWidget::doAction(name);
    }

private:
    QAbstractButton *button() const { return qobject_cast<QAbstractButton *>(widget()); }
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget) {
        return nullptr;
    }
    const QVariant role = widget->property(roleProperty);
    return role.isValid() ? new KitAccessible(widget, static_cast<QAccessible::Role>(role.toInt())) : nullptr;
}

} // namespace

void setAccessibleRole(QWidget *widget, QAccessible::Role role)
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    widget->setProperty(roleProperty, static_cast<int>(role));
}

void setDisclosure(QWidget *widget, Disclosure disclosure)
{
    const bool isExpanded = disclosure == Disclosure::Expanded;
    if (widget->property(disclosureProperty) == QVariant(isExpanded)) {
        return;
    }
    widget->setProperty(disclosureProperty, isExpanded);
    QAccessible::State changed;
    changed.expanded = true;
    changed.collapsed = true;
    QAccessibleStateChangeEvent event(widget, changed);
    QAccessible::updateAccessibility(&event);
}

void setSpokenName(QWidget *widget, const QString &name)
{
    // QWidget itself tells of the change.
    if (widget->accessibleName() != name) {
        widget->setAccessibleName(name);
    }
}

void announce(QWidget *widget)
{
    QAccessibleEvent event(widget, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

} // namespace zorel::ui::kit
