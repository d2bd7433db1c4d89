#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QColor>
#include <QImage>
#include <QSizeF>
#include <QString>

/// The toolkit's own artwork, compiled in as SVG under :/VextilToolkit/images/. Exported for
/// the Qt Quick module; not part of the toolkit's API.
class VEXTIL_EXPORT VextilImages {
public:
    /// Whether an image of that name ships with the toolkit.
    static bool exists(const QString &name);
    /// Its natural size in device-independent pixels; empty when it does not exist.
    static QSizeF naturalSize(const QString &name);
    /// The image drawn at a size (device-independent pixels) for a device pixel ratio; a null
    /// image when it does not exist. A valid tint draws it as a template: only its alpha counts.
    static QImage render(const QString &name, QSizeF size, qreal devicePixelRatio = 1.0, QColor tint = {});
};
