#include "zelto/aoi/RasterAOI.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/internal/HitPredicates.h"
#include "zelto/aoi/internal/RowMembership.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {

/// Feeds a rectangle or ellipse the corners of a pixel rectangle.
template <typename Shape>
CDrawShape* MakeFromRect(const CRect& rect) {
    auto shape = std::make_unique<Shape>();
    shape->AddVertex(CPoint2D(rect.left, -static_cast<double>(rect.top)));
    shape->AddVertex(CPoint2D(rect.right, -static_cast<double>(rect.bottom)));
    return shape.release();
}

std::vector<std::unique_ptr<CDrawShape>>
CopyShapes(const std::vector<std::unique_ptr<CDrawShape>>& shapes) {
    std::vector<std::unique_ptr<CDrawShape>> copies;
    copies.reserve(shapes.size());
    for (const auto& shape : shapes) {
        copies.emplace_back(CDrawShape::CreateCopy(shape.get()));
        if (copies.back() == nullptr)
            throw std::bad_alloc();
    }
    return copies;
}

} // namespace

CRasterAOI::CRasterAOI(CRasterSource* raster, CAOISource* aoi) : m_raster(raster), m_aoi(aoi) {
    if (raster != nullptr)
        SetRect(&m_pixelRect, raster->GetWidth(), raster->GetHeight(), 0, 0);
    SetPixelBox();
}

CRasterAOI::CRasterAOI(const CRasterAOI& other) {
    CopyFrom(other);
}

CRasterAOI& CRasterAOI::operator=(const CRasterAOI& other) {
    if (this == &other)
        return *this;
    DeleteTemporaryRaster();
    CopyFrom(other);
    return *this;
}

void CRasterAOI::CopyFrom(const CRasterAOI& other) {
    m_raster = other.m_raster;
    m_aoi = other.m_aoi;
    m_pixelRect = other.m_pixelRect;
    m_pixelBox = other.m_pixelBox;
    m_rows = other.m_rows;
    m_rasterShapes.clear();
    // A copy without its shapes converts them again when it is used.
    m_initialized = zelto::NoThrow(false, [&] {
        m_rasterShapes = CopyShapes(other.m_rasterShapes);
        return other.m_initialized;
    });
}

CRasterAOI::~CRasterAOI() {
    DeleteTemporaryRaster();
}

void CRasterAOI::SetPixelBox() {
    m_pixelBox.SetBoundingBox(m_pixelRect.left, -static_cast<double>(m_pixelRect.top),
                              m_pixelRect.right, -static_cast<double>(m_pixelRect.bottom));
}

void CRasterAOI::ResetRows() {
    std::vector<CDrawShape*> shapes;
    shapes.reserve(m_rasterShapes.size());
    for (const auto& shape : m_rasterShapes)
        shapes.push_back(shape.get());
    m_rows = std::make_shared<const zelto::RowMembership>(shapes);
}

bool CRasterAOI::Initialize() {
    m_initialized = zelto::NoThrow(false, [&] { return ConvertShapes(); });
    // A part of the shapes would be taken for all of them.
    if (!m_initialized)
        m_rasterShapes.clear();
    return m_initialized;
}

bool CRasterAOI::ConvertShapes() {
    if (m_raster == nullptr || m_aoi == nullptr) {
        zelto::SetLastError("no raster or area is given");
        return false;
    }
    const CBoundingBox rasterExtent = m_raster->GetExtent();
    for (int i = 0; i < m_aoi->GetDrawShapeCount(); ++i) {
        CDrawShape* shape = m_aoi->GetDrawShape(i);
        if (zelto::AreDisjoint(rasterExtent, shape->m_extent))
            continue;
        std::unique_ptr<CDrawShape> converted(ConvertToRasterDrawShape(shape));
        if (converted != nullptr)
            m_rasterShapes.push_back(std::move(converted));
    }
    ResetRows();
    SetPixelBox();
    return true;
}

bool CRasterAOI::ConvertToRasterMap(const wchar_t* /*path*/, CDataProgress* /*progress*/) {
    if (!m_initialized)
        Initialize();
    return true;
}

CDrawShape* CRasterAOI::ConvertToRasterDrawShape(CDrawShape* shape) {
    switch (shape->m_shapeKind) {
    case SHAPE_RECTANGLE:
    case SHAPE_ELLIPSE: {
        const CRect rect = m_raster->GroundToImage(&shape->m_extent);
        UnionRect(&m_pixelRect, &m_pixelRect, &rect);
        return shape->m_shapeKind == SHAPE_RECTANGLE ? MakeFromRect<CDrawRectangle>(rect)
                                                     : MakeFromRect<CDrawEllipse>(rect);
    }
    case SHAPE_POLYGON:
        return ConvertPolygon(shape->m_vertices);
    default:
        return nullptr;
    }
}

CDrawShape* CRasterAOI::ConvertPolygon(const std::vector<CPoint2D>& vertices) {
    const double* g = m_raster->GetInverseGeoTransform();
    auto polygon = std::make_unique<CDrawPolygon>();
    polygon->m_vertices.reserve(vertices.size());
    for (const auto& [x, y] : vertices) {
        const std::int32_t column = zelto::TruncateToInt32(g[0] + x * g[1] + y * g[2]);
        const std::int32_t row = zelto::TruncateToInt32(g[3] + x * g[4] + y * g[5]);
        m_pixelRect.left = std::min(m_pixelRect.left, column);
        m_pixelRect.right = std::max(m_pixelRect.right, column);
        m_pixelRect.top = std::min(m_pixelRect.top, row);
        m_pixelRect.bottom = std::max(m_pixelRect.bottom, row);
        polygon->AddVertex(CPoint2D(column, -static_cast<double>(row)));
    }
    return polygon.release();
}

CRect CRasterAOI::GetRect() {
    if (!m_initialized)
        Initialize();
    return m_pixelRect;
}

CBoundingBox CRasterAOI::GetExtent() {
    CRect rect = GetRect();
    return m_raster != nullptr ? m_raster->ImageToGround(&rect) : CBoundingBox();
}
