#include "widgets/ui/VextilAccessibility.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace {

const char *const kRoleProperty = "vextilAccessibleRole";
const char *const kDecorativeProperty = "vextilDecorative";
const char *const kHoldsDecorativeProperty = "vextilHoldsDecorative";

// A widget whose decorative children (pictures that repeat a caption beside them) are left out
// of what assistive technology walks, so that each text is read once.
class WithoutDecoration : public QAccessibleWidget {
public:
    explicit WithoutDecoration(QWidget *widget) : QAccessibleWidget(widget) {}
    int childCount() const override { return int(shown().size()); }
    QAccessibleInterface *child(int index) const override
    {
        const QWidgetList children = shown();
        return index >= 0 && index < children.size() ? QAccessible::queryAccessibleInterface(children[index]) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child ? int(shown().indexOf(qobject_cast<QWidget *>(child->object()))) : -1;
    }

private:
    QWidgetList shown() const
    {
        QWidgetList children;
        for (QObject *object : widget()->children())
            if (auto *child = qobject_cast<QWidget *>(object); child && !child->isWindow() && !child->property(kDecorativeProperty).toBool())
                children.append(child);
        return children;
    }
};

QAccessibleInterface *factory(const QString &className, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    if (widget->property(kHoldsDecorativeProperty).toBool())
        return new WithoutDecoration(widget);
    if (const QVariant role = widget->property(kRoleProperty); role.isValid())
        return new QAccessibleWidget(widget, QAccessible::Role(role.toInt()));
    if (className == QLatin1String("VextilImageView"))
        return new QAccessibleWidget(widget, QAccessible::Graphic);
    if (className == QLatin1String("VextilFaceProgressBar"))  // its fill is told as its description
        return new QAccessibleWidget(widget, QAccessible::ProgressBar);
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

void VextilAccessibility::setDecorative(QWidget *widget)
{
    install();
    widget->setProperty(kDecorativeProperty, true);
    if (QWidget *parent = widget->parentWidget())
        parent->setProperty(kHoldsDecorativeProperty, true);
}

void VextilAccessibility::setDescription(QWidget *widget, const QString &description)
{
    if (widget->accessibleDescription() != description)
        widget->setAccessibleDescription(description);  // which tells assistive technology, once
}
