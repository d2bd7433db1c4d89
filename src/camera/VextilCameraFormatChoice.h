#pragma once

#include <QList>
#include <QSize>

/// Picks the camera format the capture runs on. Faces are analysed on a small copy and stored as
/// portrait crops, so more pixels than 1080p buy nothing but conversion time, and fewer than
/// 720p give blurry stored images; a smooth preview needs 15 frames a second or more. So: among
/// formats of 15 fps or more, the one nearest the 720p to 1080p range, the larger inside it, then
/// the faster, then one read without conversion. With no such rate on offer, the fastest.
class VextilCameraFormatChoice {
public:
    /// What matters of one format.
    struct Format {
        QSize resolution;
        float maxFrameRate = 0;
        bool direct = false;  ///< pixels already blue, green, red, ignored byte
    };

    /// Index of the chosen format, or -1 when there is none.
    static int choose(const QList<Format> &formats);

    static constexpr float kMinFrameRate = 15;
};
