#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QSizeF>

class QPainter;

/// Draws the camera preview as both faces show it: black, then the frame filling the area
/// (cropped, never stretched) and mirrored when asked, as a selfie camera's picture is.
/// Exported for the Qt Quick module; not part of the toolkit's API.
class VEXTIL_EXPORT VextilPreviewPainter {
public:
    static void paint(QPainter &painter, QSizeF area, const QImage &frame, bool mirrored);
};
