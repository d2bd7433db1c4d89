#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QtGlobal>

/// Why a sample buffer cannot be turned into an image.
enum class VextilSampleBufferStatus {
    Ok,                ///< the buffer describes a readable frame
    NoData,            ///< no pixel data
    InvalidSize,       ///< width or height is zero or negative
    RowTooShort,       ///< bytes per row is less than 4 x width
    MisalignedRows,    ///< bytes per row is not a multiple of 4
    BufferTooSmall,    ///< fewer bytes than height x bytes per row
};

/// One camera frame at the capture edge: a 32-bit plane, in memory blue, green, red and an
/// ignored byte per pixel, with its own row stride. It views memory it does not own.
struct VEXTIL_EXPORT VextilSampleBuffer {
    const uchar *data = nullptr;  ///< first byte of the plane
    qsizetype size = 0;           ///< number of readable bytes from data
    int width = 0;                ///< pixels per row
    int height = 0;               ///< rows
    qsizetype bytesPerRow = 0;    ///< stride, row padding included

    /// Checks that the stated geometry fits inside the readable bytes.
    VextilSampleBufferStatus status() const;
};
