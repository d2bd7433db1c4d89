#include "ui/VextilAccessibility.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace {

// A progress bar whose value is the widget's "strokeEnd" property, from 0 to 1.
class AccessibleProgress : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleProgress(QWidget *widget) : QAccessibleWidget(widget, QAccessible::ProgressBar) {}
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return widget()->property("strokeEnd"); }
    void setCurrentValue(const QVariant &) override {}  // shown, not set by the user
    QVariant maximumValue() const override { return 1.0; }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 0.2; }
};

const char *const kRoleProperty = "vextilAccessibleRole";

QAccessibleInterface *factory(const QString &className, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    if (const QVariant role = widget->property(kRoleProperty); role.isValid())
        return new QAccessibleWidget(widget, QAccessible::Role(role.toInt()));
    if (className == QLatin1String("VextilImageView"))
        return new QAccessibleWidget(widget, QAccessible::Graphic);
    if (className == QLatin1String("VextilFaceProgressBar"))
        return new AccessibleProgress(widget);
    return nullptr;
}

}  // namespace

void VextilAccessibility::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(factory);
        return true;
    }();
    Q_UNUSED(installed);
}

void VextilAccessibility::setRole(QWidget *widget, QAccessible::Role role)
{
    install();
    widget->setProperty(kRoleProperty, int(role));
}

void VextilAccessibility::announceValue(QObject *object, double value)
{
    QAccessibleValueChangeEvent event(object, value);
    QAccessible::updateAccessibility(&event);
}

void VextilAccessibility::announceAlert(QObject *object)
{
    QAccessibleEvent event(object, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}
