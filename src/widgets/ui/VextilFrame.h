#pragma once

#include <QRectF>
#include <QSizeF>

#include <optional>

/// Geometry of one view from a few layout constraints, in its parent's coordinates: a size (or
/// two opposite edges) and a position on each axis. Views compute every child's frame with it
/// in one layout pass, so proportional layouts read like the constraints they stand for:
///   VextilFrame().width(0.8 * box.width()).height(15).centerX(box.center().x()).top(y).rect()
class VextilFrame {
public:
    VextilFrame &width(double w) { m_width = w; return *this; }
    VextilFrame &height(double h) { m_height = h; return *this; }
    VextilFrame &size(QSizeF s) { m_width = s.width(); m_height = s.height(); return *this; }
    VextilFrame &left(double x) { m_left = x; return *this; }
    VextilFrame &right(double x) { m_right = x; return *this; }
    VextilFrame &centerX(double x) { m_centerX = x; return *this; }
    VextilFrame &top(double y) { m_top = y; return *this; }
    VextilFrame &bottom(double y) { m_bottom = y; return *this; }
    VextilFrame &centerY(double y) { m_centerY = y; return *this; }

    /// The resolved frame; an axis with too few constraints starts at 0 with size 0.
    QRectF rect() const
    {
        const auto [x, w] = resolve(m_left, m_right, m_centerX, m_width);
        const auto [y, h] = resolve(m_top, m_bottom, m_centerY, m_height);
        return QRectF(x, y, w, h);
    }
    /// The same, rounded to whole device-independent pixels for widget geometry.
    QRect pixels() const { return rect().toRect(); }

private:
    using Edge = std::optional<double>;
    static std::pair<double, double> resolve(Edge start, Edge end, Edge center, Edge size)
    {
        if (start && end)
            return {*start, *end - *start};
        const double s = size.value_or(0);
        if (start)
            return {*start, s};
        if (end)
            return {*end - s, s};
        if (center)
            return {*center - s / 2, s};
        return {0, s};
    }

    Edge m_width, m_height, m_left, m_right, m_centerX, m_top, m_bottom, m_centerY;
};
