#include "zelto/aoi/AOIMask.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/internal/MaskRaster.h"
#include "zelto/aoi/internal/SurfaceUnion.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/geometry/OgrAlgorithm.h"
#include "zelto/geometry/internal/GeosMemory.h"

#include <ogr_geometry.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

namespace {

constexpr const char* CUTTING = "the area cannot be cut to the box";

/// The box grown by one pixel on every side; a grid without pixels does not grow it.
OGRPolygon MakeFrame(const CBoundingBox& box, double pixelWidth, double pixelHeight) {
    const double dx = std::isfinite(pixelWidth) ? pixelWidth : 0.0;
    const double dy = std::isfinite(pixelHeight) ? pixelHeight : 0.0;
    OGRLinearRing ring;
    ring.addPoint(box.m_left - dx, box.m_top + dy);
    ring.addPoint(box.m_right + dx, box.m_top + dy);
    ring.addPoint(box.m_right + dx, box.m_bottom - dy);
    ring.addPoint(box.m_left - dx, box.m_bottom - dy);
    ring.addPoint(box.m_left - dx, box.m_top + dy);
    OGRPolygon frame;
    frame.addRing(&ring);
    return frame;
}

} // namespace

CAOIMask* CAOIMask::Create(OGRGeometry* geometry, CBoundingBox box, int width, int height,
                           int /*unused*/) {
    if (geometry == nullptr)
        return nullptr;
    using Mask = CAOIMask*;
    return zelto::NoThrow(Mask(nullptr), [&]() -> Mask {
        std::unique_ptr<CAOIMask> mask(new CAOIMask);
        mask->SetGrid(box, width, height);
        return mask->Initialize(geometry) ? mask.release() : nullptr;
    });
}

CAOIMask::CAOIMask(CAOISource* aoi, CBoundingBox box, int width, int height) {
    SetGrid(box, width, height);
    if (aoi == nullptr)
        return;
    zelto::NoThrow(false, [&] {
        SetClipped(std::make_unique<OGRPolygon>());
        OGRGeometry* const geometry = aoi->GetOGRGeometries();
        m_empty = aoi->GetDrawShapeCount() == 0 && geometry == nullptr;
        return geometry != nullptr && Initialize(geometry);
    });
}

CAOIMask::~CAOIMask() {
    delete[] m_mask;
    delete m_clipped;
}

void CAOIMask::SetGrid(const CBoundingBox& box, int width, int height) {
    m_box = box;
    m_width = width;
    m_height = height;
    m_pixelWidth = std::fabs(box.m_right - box.m_left) / width;
    m_pixelHeight = std::fabs(box.m_top - box.m_bottom) / height;
}

void CAOIMask::SetClipped(std::unique_ptr<OGRGeometry> clipped) {
    delete m_clipped;
    m_clipped = clipped.release();
}

bool CAOIMask::Initialize(OGRGeometry* geometry) {
    switch (Place(*geometry)) {
    case Coverage::All:
        return FillMask(1);
    case Coverage::Nothing:
        return FillMask(0);
    case Coverage::Part:
        return BurnMask();
    default:
        return false;
    }
}

/// Finds what the area covers of the grid and keeps that part; the reason why that is not known
/// is in LastError().
CAOIMask::Coverage CAOIMask::Place(OGRGeometry& geometry) {
    // Until more is known nothing is inside.
    SetClipped(std::make_unique<OGRPolygon>());
    const std::unique_ptr<OGRGeometry> area = zelto::UniteSurfaces(geometry);
    const OGRPolygon frame = MakeFrame(m_box, m_pixelWidth, m_pixelHeight);
    zelto::RequireGeosMemory(*area);
    zelto::GdalWatch watch;
    const bool holdsFrame = area->Contains(&frame);
    const bool meetsFrame = holdsFrame || frame.Intersects(area.get());
    // Both answer no where GDAL cannot tell.
    if (!watch.Succeeded(true, CUTTING))
        return Coverage::Unknown;
    if (holdsFrame) {
        SetClipped(nullptr);
        return Coverage::All;
    }
    m_empty = !meetsFrame;
    if (m_empty)
        return Coverage::Nothing;
    zelto::RequireGeosMemory(*area);
    std::unique_ptr<OGRGeometry> clipped(frame.Intersection(area.get()));
    if (!watch.Succeeded(clipped != nullptr, CUTTING))
        return Coverage::Unknown;
    SetClipped(std::move(clipped));
    return m_clipped->IsEmpty() ? Coverage::Unknown : Coverage::Part;
}

/// @return false, without a mask, for a grid without pixels and when memory is short
bool CAOIMask::AllocateMask() {
    if (m_width < 1 || m_height < 1) {
        zelto::SetLastError("the grid of the mask has no pixels");
        return false;
    }
    m_mask = new (std::nothrow) unsigned char[static_cast<std::size_t>(m_width) *
                                              static_cast<std::size_t>(m_height)];
    if (m_mask == nullptr)
        zelto::TellReason("not enough memory for the mask");
    return m_mask != nullptr;
}

bool CAOIMask::FillMask(unsigned char value) {
    if (!AllocateMask())
        return false;
    std::fill_n(m_mask, static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height),
                value);
    return true;
}

bool CAOIMask::BurnMask() {
    if (!AllocateMask())
        return false;
    const zelto::MaskGrid grid{m_box, m_width, m_height, m_pixelWidth, m_pixelHeight};
    const std::unique_ptr<unsigned char[]> burnt(new (std::nothrow) unsigned char[grid.Size()]());
    if (burnt == nullptr)
        zelto::TellReason("not enough memory for the mask");
    const bool isBurnt = burnt != nullptr && zelto::BurnGeometry(*m_clipped, grid, burnt.get());
    if (isBurnt)
        zelto::GrowByOnePixel(burnt.get(), m_mask, m_width, m_height);
    else
        delete[] std::exchange(m_mask, nullptr);
    return isBurnt;
}

bool CAOIMask::IsOnClipped(double x, double y) const {
    OGRPoint point(x, y);
    return COgrAlgorithm::IsPointOnSurface(m_clipped, &point);
}

bool CAOIMask::IsPointIn(int column, int row) const {
    if (column < 0 || column >= m_width || row < 0 || row >= m_height)
        return false;
    if (m_mask != nullptr)
        return m_mask[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_width) +
                      static_cast<std::size_t>(column)] != 0;
    const double x = m_box.m_left + (column + 0.5) * m_pixelWidth;
    const double y = m_box.m_top - (row + 0.5) * m_pixelHeight;
    return m_clipped != nullptr ? IsOnClipped(x, y) : m_box.IsContain(x, y);
}

bool CAOIMask::IsPoint2DIn(double x, double y) const {
    if (m_mask != nullptr)
        return IsPointIn(zelto::TruncateToInt32((x - m_box.m_left) / m_pixelWidth),
                         zelto::TruncateToInt32((m_box.m_top - y) / m_pixelHeight));
    return m_clipped != nullptr ? IsOnClipped(x, y) : m_box.IsContain(x, y);
}
