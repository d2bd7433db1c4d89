#include <VextilToolkit/VextilBaseViewController.h>

void VextilBaseNavigationController::pushViewController(QWidget *controller)
{
    setCurrentIndex(addWidget(controller));
}

QWidget *VextilBaseNavigationController::popViewController()
{
    if (count() < 2)
        return nullptr;
    QWidget *top = widget(count() - 1);
    removeWidget(top);
    setCurrentIndex(count() - 1);
    return top;
}
