#include <VextilToolkit/VextilColorScheme.h>

#include <VextilToolkit/VextilDefaultColorScheme.h>

VextilColorScheme::~VextilColorScheme() = default;

QColor VextilDefaultColorScheme::textColorForState(int state) const
{
    switch (state) {
    case 0: return lightGrey();
    case 1: return Qt::black;
    case 2: return green();
    default: return {};
    }
}
