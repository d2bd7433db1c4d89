#include "core/VextilPortraitRegion.h"

#include <algorithm>

QRectF VextilPortraitRegion::of(QSizeF area, double narrowest, double widest)
{
    if (area.width() <= 0 || area.height() <= 0)
        return {};
    const double aspect = std::clamp(area.width() / area.height(), narrowest, widest);
    // Too wide: full height, narrower; too tall: full width, shorter.
    const QSizeF region = area.width() / area.height() > aspect ? QSizeF(area.height() * aspect, area.height())
                                                                : QSizeF(area.width(), area.width() / aspect);
    return QRectF(QPointF((area.width() - region.width()) / 2, (area.height() - region.height()) / 2), region);
}
