#include "zelto/geometry/BoundingBox.h"

#include <algorithm>
#include <cmath>

CBoundingBox::CBoundingBox(CPoint2D topLeft, CPoint2D bottomRight)
    : CBoundingBox(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y) {}

CBoundingBox::CBoundingBox(double left, double top, double right, double bottom)
    : m_left(left), m_top(top), m_right(right), m_bottom(bottom) {}

void CBoundingBox::SetBoundingBox(CPoint2D topLeft, CPoint2D bottomRight) {
    *this = CBoundingBox(topLeft, bottomRight);
}

void CBoundingBox::SetBoundingBox(double left, double top, double right, double bottom) {
    *this = CBoundingBox(left, top, right, bottom);
}

double CBoundingBox::GetWidth() const {
    return std::fabs(m_right - m_left);
}

double CBoundingBox::GetHeight() const {
    return std::fabs(m_top - m_bottom);
}

CPoint2D CBoundingBox::GetCentroid() const {
    return {(m_left + m_right) * 0.5, (m_top + m_bottom) * 0.5};
}

void CBoundingBox::OffsetBoundingBox(double dx, double dy) {
    m_left += dx;
    m_right += dx;
    m_top += dy;
    m_bottom += dy;
}

void CBoundingBox::Recompute(CPoint2D p) {
    // One side per axis and point: callers seed the box with the first vertex.
    if (p.x < m_left)
        m_left = p.x;
    else if (p.x > m_right)
        m_right = p.x;
    if (p.y < m_bottom)
        m_bottom = p.y;
    else if (p.y > m_top)
        m_top = p.y;
}

void CBoundingBox::Combine(CBoundingBox* box) {
    if (box == nullptr)
        return;
    m_left = std::min(m_left, box->m_left);
    m_right = std::max(m_right, box->m_right);
    m_top = std::max(m_top, box->m_top);
    m_bottom = std::min(m_bottom, box->m_bottom);
}

bool CBoundingBox::Intersect(CBoundingBox* box) {
    if (!IsIntersect(box))
        return false;
    m_left = std::max(m_left, box->m_left);
    m_right = std::min(m_right, box->m_right);
    m_top = std::min(m_top, box->m_top);
    m_bottom = std::max(m_bottom, box->m_bottom);
    return true;
}

bool CBoundingBox::IsIntersect(CBoundingBox* box) const {
    return box != nullptr && !(box->m_left > m_right || m_bottom > box->m_top ||
                               m_left > box->m_right || box->m_bottom > m_top);
}

bool CBoundingBox::IsContain(CBoundingBox* box) const {
    return box != nullptr && m_left <= box->m_left && box->m_right <= m_right &&
           m_bottom <= box->m_bottom && box->m_top <= m_top;
}

bool CBoundingBox::IsContain(CPoint2D p) const {
    return IsContain(p.x, p.y);
}

bool CBoundingBox::IsContain(double x, double y) const {
    return m_left <= x && x <= m_right && m_bottom <= y && y <= m_top;
}
