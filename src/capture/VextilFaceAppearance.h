#pragma once

#include <QImage>
#include <QRectF>

#include <array>

/// How a face looks, coarsely: the mean grey of each cell of an 8x8 grid over its box, less
/// the mean of the whole grid, so that the face's expression shows and the light's level does
/// not. Following the box, it leaves the head's movement out too. A few hundred reads a frame.
class VextilFaceAppearance {
public:
    static constexpr int kCells = 8;

    VextilFaceAppearance() = default;
    /// The look of `box` (image pixels, origin top left) in `image` (32 bits a pixel).
    VextilFaceAppearance(const QImage &image, const QRectF &box);

    /// How this look differs from `before`, cell by cell: a change, which changes add up to.
    VextilFaceAppearance changeFrom(const VextilFaceAppearance &before) const;
    VextilFaceAppearance &operator+=(const VextilFaceAppearance &change);
    /// The mean of the cells' absolute values (0 to 255): a change's size.
    double size() const;
    /// The mean grey of the box (0 to 255), before the mean was taken out.
    double brightness() const { return m_brightness; }

private:
    std::array<float, kCells * kCells> m_cells{};
    double m_brightness = 0;
};
