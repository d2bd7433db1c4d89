#include "detection/VextilSceneContinuity.h"

#include <cstdlib>

double VextilSceneContinuity::change(const QImage &image)
{
    if (image.isNull() || image.depth() != 32) {
        reset();
        return kNoScene;
    }
    std::array<std::uint8_t, kGrid * kGrid> grey{};
    int difference = 0;
    for (int gy = 0; gy < kGrid; ++gy) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine((2 * gy + 1) * image.height() / (2 * kGrid)));
        for (int gx = 0; gx < kGrid; ++gx) {
            const QRgb pixel = row[(2 * gx + 1) * image.width() / (2 * kGrid)];
            const int i = gy * kGrid + gx;
            grey[size_t(i)] = std::uint8_t((qRed(pixel) + 2 * qGreen(pixel) + qBlue(pixel)) / 4);
            difference += std::abs(int(grey[size_t(i)]) - int(m_grey[size_t(i)]));
        }
    }
    const bool comparable = image.size() == m_size;
    m_size = image.size();
    m_grey = grey;
    return comparable ? double(difference) / (kGrid * kGrid) : kNoScene;
}
