#include "capture/VextilFaceAppearance.h"

#include <algorithm>
#include <cmath>

namespace {

// Samples a cell's grey at this many points a side.
constexpr int kSamples = 4;

int grey(QRgb pixel) { return (qRed(pixel) + 2 * qGreen(pixel) + qBlue(pixel)) / 4; }

}  // namespace

VextilFaceAppearance::VextilFaceAppearance(const QImage &image, const QRectF &box)
{
    if (image.isNull() || image.depth() != 32 || box.isEmpty())
        return;
    const double step = box.width() / (kCells * kSamples), rise = box.height() / (kCells * kSamples);
    double total = 0;
    for (int cy = 0; cy < kCells; ++cy) {
        for (int cx = 0; cx < kCells; ++cx) {
            int sum = 0;
            for (int sy = 0; sy < kSamples; ++sy) {
                const int y = std::clamp(int(box.y() + ((cy * kSamples + sy) + 0.5) * rise), 0, image.height() - 1);
                const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
                for (int sx = 0; sx < kSamples; ++sx)
                    sum +=
                        grey(row[std::clamp(int(box.x() + ((cx * kSamples + sx) + 0.5) * step), 0, image.width() - 1)]);
            }
            m_cells[size_t(cy * kCells + cx)] = float(sum) / (kSamples * kSamples);
            total += m_cells[size_t(cy * kCells + cx)];
        }
    }
    m_brightness = total / m_cells.size();
    for (float &cell : m_cells)
        cell -= float(m_brightness);
}

VextilFaceAppearance VextilFaceAppearance::changeFrom(const VextilFaceAppearance &before) const
{
    VextilFaceAppearance change;
    for (size_t i = 0; i < m_cells.size(); ++i)
        change.m_cells[i] = m_cells[i] - before.m_cells[i];
    change.m_brightness = m_brightness - before.m_brightness;
    return change;
}

VextilFaceAppearance &VextilFaceAppearance::operator+=(const VextilFaceAppearance &change)
{
    for (size_t i = 0; i < m_cells.size(); ++i)
        m_cells[i] += change.m_cells[i];
    m_brightness += change.m_brightness;
    return *this;
}

double VextilFaceAppearance::size() const
{
    double sum = 0;
    for (float cell : m_cells)
        sum += std::abs(cell);
    return sum / m_cells.size();
}
