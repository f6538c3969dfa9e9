#include "zelto/aoi/DrawRectangle.h"

// Each setter refuses first: the comparisons are those of the untouched rectangle. What is
// kept is the opposite side, so that sizes are computed before the corner moves.

void CDrawRectangle::SetTop(double top) {
    if (m_topLeft.y - m_height >= top)
        return;
    m_height = top - (m_topLeft.y - m_height);
    m_topLeft.y = top;
    UpdateExtent();
}

void CDrawRectangle::SetBottom(double bottom) {
    if (bottom >= m_topLeft.y)
        return;
    m_height = m_topLeft.y - bottom;
    UpdateExtent();
}

void CDrawRectangle::SetLeft(double left) {
    if (left >= m_topLeft.x + m_width)
        return;
    m_width = (m_topLeft.x + m_width) - left;
    m_topLeft.x = left;
    UpdateExtent();
}

void CDrawRectangle::SetRight(double right) {
    if (m_topLeft.x >= right)
        return;
    m_width = right - m_topLeft.x;
    UpdateExtent();
}

void CDrawRectangle::SetTopLeft(CPoint2D p) {
    if (p.x >= m_topLeft.x + m_width || m_topLeft.y - m_height >= p.y)
        return;
    m_width = (m_topLeft.x + m_width) - p.x;
    m_height = p.y - (m_topLeft.y - m_height);
    m_topLeft = p;
    UpdateExtent();
}

void CDrawRectangle::SetTopRight(CPoint2D p) {
    if (m_topLeft.x >= p.x || m_topLeft.y - m_height >= p.y)
        return;
    m_width = p.x - m_topLeft.x;
    m_height = p.y - (m_topLeft.y - m_height);
    m_topLeft.y = p.y;
    UpdateExtent();
}

void CDrawRectangle::SetBottomLeft(CPoint2D p) {
    if (p.x >= m_topLeft.x + m_width || p.y >= m_topLeft.y)
        return;
    m_width = (m_topLeft.x + m_width) - p.x;
    m_height = m_topLeft.y - p.y;
    m_topLeft.x = p.x;
    UpdateExtent();
}

void CDrawRectangle::SetBottomRight(CPoint2D p) {
    if (m_topLeft.x >= p.x || p.y >= m_topLeft.y)
        return;
    m_width = p.x - m_topLeft.x;
    m_height = m_topLeft.y - p.y;
    UpdateExtent();
}

void CDrawRectangle::UpdateExtent() {
    const CPoint2D bottomRight(m_topLeft.x + m_width, m_topLeft.y - m_height);
    m_extent.SetBoundingBox(m_topLeft, bottomRight);
    if (m_vertices.size() < 2)
        return;
    m_vertices[0] = m_topLeft;
    m_vertices[1] = bottomRight;
}
