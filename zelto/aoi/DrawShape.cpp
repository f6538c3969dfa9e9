#include "zelto/aoi/DrawShape.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPoint.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/NoThrow.h"

#include <algorithm>
#include <memory>
#include <type_traits>

namespace {

CRgbaColor OpaqueColor(unsigned long bgr) {
    return {static_cast<unsigned char>(bgr & 0xFF), static_cast<unsigned char>(bgr >> 8 & 0xFF),
            static_cast<unsigned char>(bgr >> 16 & 0xFF), 255};
}

/// The shape as one of class `Copied`, from what it has in common with `Part`; null where it is
/// not of that class: a host may give any kind to a class of its own.
template <typename Copied, typename Part = Copied>
CDrawShape* CopyAs(const CDrawShape& shape) {
    const auto* const part = dynamic_cast<const Part*>(&shape);
    if (part == nullptr)
        return nullptr;
    if constexpr (std::is_same_v<Copied, Part>)
        return new Copied(*part);
    auto copy = std::make_unique<Copied>();
    static_cast<Part&>(*copy) = *part;
    return copy.release();
}

CDrawShape* Copy(const CDrawShape& shape) {
    switch (shape.m_shapeKind) {
    case SHAPE_POINT:
        return CopyAs<CDrawPoint>(shape);
    case SHAPE_LINE:
        return CopyAs<CDrawLine>(shape);
    case SHAPE_MULTILINE:
        return CopyAs<CDrawMultiLine>(shape);
    case SHAPE_RECTANGLE:
        return CopyAs<CDrawRectangle>(shape);
    case SHAPE_ELLIPSE:
        return CopyAs<CDrawEllipse, CDrawRectangle>(shape);
    case SHAPE_POLYGON:
        return CopyAs<CDrawPolygon>(shape);
    }
    return nullptr;
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
    using Shape = CDrawShape*;
    return shape == nullptr ? nullptr
                            : zelto::NoThrow(Shape(nullptr), [&] { return Copy(*shape); });
}
