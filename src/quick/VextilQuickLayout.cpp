#include "quick/VextilQuickLayout.h"

#include "core/VextilPortraitRegion.h"

QRectF VextilQuickLayout::region(double width, double height) const
{
    return VextilPortraitRegion::of(QSizeF(width, height));
}

QRectF VextilQuickLayout::cameraView(double width, double height) const
{
    return VextilPortraitRegion::of(QSizeF(width, height), 0, VextilPortraitRegion::kWidestCameraView);
}
