#pragma once

#include <VextilToolkit/VextilSampleBuffer.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>

/// Turns camera frames into images the face capture model can analyse and store.
class VEXTIL_EXPORT VextilImageBuffer {
public:
    /// Copies the whole plane, row padding included, into a new Format_RGB32 image with the
    /// buffer's stride; no scaling, rotation or mirroring. Returns a null image when
    /// buffer.status() is not Ok. Runs on the calling thread (the capture thread).
    static QImage imageFromSampleBuffer(const VextilSampleBuffer &buffer);
};
