#include "zelto/aoi/DrawShape.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPoint.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"

#include <algorithm>

namespace {

CRgbaColor OpaqueColor(unsigned long bgr) {
    return {static_cast<unsigned char>(bgr & 0xFF), static_cast<unsigned char>(bgr >> 8 & 0xFF),
            static_cast<unsigned char>(bgr >> 16 & 0xFF), 255};
}

} // namespace

CDrawShape::~CDrawShape() = default;

int CDrawShape::RemoveLastVertex() {
    if (!m_vertices.empty())
        m_vertices.pop_back();
    return static_cast<int>(m_vertices.size());
}

void CDrawShape::SetOffset(double dx, double dy) {
    for (CPoint2D& vertex : m_vertices)
        vertex += CPoint2D(dx, dy);
    m_extent.OffsetBoundingBox(dx, dy);
}

void CDrawShape::UpdateSelectPoint(CPoint2D p) {
    const auto count = static_cast<std::int64_t>(m_vertices.size());
    if (m_selectedPointIndex < 0 || m_selectedPointIndex >= count)
        return;
    m_vertices[static_cast<std::size_t>(m_selectedPointIndex)] = p;
    RecomputeExtent();
}

void CDrawShape::RecomputeExtent() {
    if (m_vertices.empty())
        return;
    m_extent.SetBoundingBox(m_vertices.front(), m_vertices.front());
    for (const CPoint2D& vertex : m_vertices) {
        m_extent.m_left = std::min(m_extent.m_left, vertex.x);
        m_extent.m_right = std::max(m_extent.m_right, vertex.x);
        m_extent.m_top = std::max(m_extent.m_top, vertex.y);
        m_extent.m_bottom = std::min(m_extent.m_bottom, vertex.y);
    }
}

void CDrawShape::Check() {}

void CDrawShape::Delete() {}

void CDrawShape::SetDrawModelState(DrawModelState state) {
    m_drawModelState = state;
}

void CDrawShape::Update() {}

bool CDrawShape::Validate() {
    return true;
}

void CDrawShape::SetColor(unsigned long first, unsigned long second) {
    m_firstColor = OpaqueColor(first);
    m_secondColor = OpaqueColor(second);
}

CDrawShape* CDrawShape::CreateCopy(CDrawShape* shape) {
    if (shape == nullptr)
        return nullptr;
    switch (shape->m_shapeKind) {
    case SHAPE_POINT:
        return new CDrawPoint(static_cast<const CDrawPoint&>(*shape));
    case SHAPE_LINE:
        return new CDrawLine(static_cast<const CDrawLine&>(*shape));
    case SHAPE_MULTILINE:
        return new CDrawMultiLine(static_cast<const CDrawMultiLine&>(*shape));
    case SHAPE_RECTANGLE:
        return new CDrawRectangle(static_cast<const CDrawRectangle&>(*shape));
    case SHAPE_ELLIPSE:
        return new CDrawEllipse(static_cast<const CDrawEllipse&>(*shape));
    case SHAPE_POLYGON:
        return new CDrawPolygon(static_cast<const CDrawPolygon&>(*shape));
    }
    return nullptr;
}
