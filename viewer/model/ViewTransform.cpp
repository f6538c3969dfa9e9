#include "viewer/model/ViewTransform.h"

#include <algorithm>
#include <cmath>

namespace zelto::view {

ViewTransform::ViewTransform(QPointF center, double scale, QSize size)
    : m_center(center), m_scale(scale), m_size(size) {}

ViewTransform ViewTransform::Fitting(const CBoundingBox& box, QSize size) {
    const QSize atLeastOne = size.expandedTo({1, 1});
    const double scale =
        std::max(box.GetWidth() / atLeastOne.width(), box.GetHeight() / atLeastOne.height());
    const CPoint2D center = box.GetCentroid();
    return {{center.x, center.y}, scale > 0.0 && std::isfinite(scale) ? scale : 1.0, size};
}

bool ViewTransform::IsValid() const {
    return !m_size.isEmpty() && m_scale > 0.0 && std::isfinite(m_scale) &&
           std::isfinite(m_center.x()) && std::isfinite(m_center.y());
}

CBoundingBox ViewTransform::Box() const {
    const double halfWidth = m_scale * m_size.width() / 2.0;
    const double halfHeight = m_scale * m_size.height() / 2.0;
    return {m_center.x() - halfWidth, m_center.y() + halfHeight, m_center.x() + halfWidth,
            m_center.y() - halfHeight};
}

QPointF ViewTransform::ToGround(QPointF pixel) const {
    return {m_center.x() + (pixel.x() - m_size.width() / 2.0) * m_scale,
            m_center.y() - (pixel.y() - m_size.height() / 2.0) * m_scale};
}

QPointF ViewTransform::ToPixel(QPointF ground) const {
    return {(ground.x() - m_center.x()) / m_scale + m_size.width() / 2.0,
            (m_center.y() - ground.y()) / m_scale + m_size.height() / 2.0};
}

QRectF ViewTransform::PlaceOf(const ViewTransform& other) const {
    const double factor = other.m_scale / m_scale;
    const QSizeF size(other.m_size.width() * factor, other.m_size.height() * factor);
    const QPointF middle = ToPixel(other.m_center);
    return {middle - QPointF(size.width() / 2.0, size.height() / 2.0), size};
}

QRectF ViewTransform::PlaceOf(const CBoundingBox& box) const {
    return {ToPixel({box.GetLeft(), box.GetTop()}), ToPixel({box.GetRight(), box.GetBottom()})};
}

ViewTransform ViewTransform::MovedBy(QPointF pixels) const {
    return CenteredAt({m_center.x() - pixels.x() * m_scale, m_center.y() + pixels.y() * m_scale});
}

ViewTransform ViewTransform::ZoomedAround(QPointF pixel, double factor) const {
    const QPointF fixed = ToGround(pixel);
    return {fixed + (m_center - fixed) / factor, m_scale / factor, m_size};
}

ViewTransform ViewTransform::AlignedTo(QPointF corner) const {
    const CBoundingBox box = Box();
    const double left = corner.x() + std::round((box.GetLeft() - corner.x()) / m_scale) * m_scale;
    const double top = corner.y() + std::round((box.GetTop() - corner.y()) / m_scale) * m_scale;
    return MovedBy({(box.GetLeft() - left) / m_scale, (top - box.GetTop()) / m_scale});
}

} // namespace zelto::view
