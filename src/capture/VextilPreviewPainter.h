#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QRectF>
#include <QSizeF>

class QPainter;

/// Draws the camera preview as both faces show it: black, then the frame filling the area
/// (cropped, never stretched) and mirrored when asked, as a selfie camera's picture is.
/// Exported for the Qt Quick module; not part of the toolkit's API.
class VEXTIL_EXPORT VextilPreviewPainter {
public:
    static void paint(QPainter &painter, QSizeF area, const QImage &frame, bool mirrored);
    /// The part of a frame of `frame` size that fills `area`: its middle, at the area's aspect.
    static QRectF filledPart(QSizeF frame, QSizeF area);
};
