#pragma once

#include <QImage>

#include <array>
#include <cstdint>
#include <limits>

/// Tells whether an image continues the scene of the one before it, as the next frame of a
/// camera stream does, rather than showing another scene (a cut, another photo, another size).
/// It compares the grey levels of a coarse grid of pixels: a few hundred reads a frame.
class VextilSceneContinuity {
public:
    /// Grid points a side.
    static constexpr int kGrid = 16;
    /// Mean grey difference (0 to 255) above which the scene has changed; camera noise and a
    /// moving head stay well below it.
    static constexpr double kChange = 20;
    /// What change() answers when nothing can be compared: no image before, or another size.
    static constexpr double kNoScene = std::numeric_limits<double>::infinity();

    /// Whether `image` continues the previous image (a change of at most kChange); remembers it
    /// for the next call. A null image continues nothing.
    bool continues(const QImage &image) { return change(image) <= kChange; }
    /// The mean grey difference (0 to 255) of `image` from the previous image, or kNoScene;
    /// remembers it for the next call.
    double change(const QImage &image);
    /// Forgets the previous image.
    void reset() { m_size = {}; }

private:
    QSize m_size;
    std::array<std::uint8_t, kGrid * kGrid> m_grey{};
};
