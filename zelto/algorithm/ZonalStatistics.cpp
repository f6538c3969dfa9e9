#include "zelto/algorithm/ZonalStatistics.h"

#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/ZoneSweep.h"
#include "zelto/aoi/internal/SurfaceUnion.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <ogr_geometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

using zelto::PixelPoint;
using zelto::ZoneOutline;

/// Ground positions as positions in pixels, taken from the raster's origin first: that keeps the
/// digits that a large coordinate would take away.
class PixelGrid {
  public:
    explicit PixelGrid(const CRasterSource& source) {
        source.GetGeoTransform(m_terms.data(), false);
        m_determinant = m_terms[1] * m_terms[5] - m_terms[2] * m_terms[4];
    }

    bool IsUsable() const { return std::isfinite(m_determinant) && m_determinant != 0.0; }
    PixelPoint At(double x, double y) const {
        const double dx = x - m_terms[0];
        const double dy = y - m_terms[3];
        if (m_terms[2] == 0.0 && m_terms[4] == 0.0)
            return {dx / m_terms[1], dy / m_terms[5]};
        return {(dx * m_terms[5] - dy * m_terms[2]) / m_determinant,
                (dy * m_terms[1] - dx * m_terms[4]) / m_determinant};
    }

  private:
    std::array<double, 6> m_terms{};
    double m_determinant = 0.0;
};

void AddRing(const OGRLinearRing& ring, bool isHole, const PixelGrid& grid, ZoneOutline& outline) {
    std::vector<PixelPoint> points;
    points.reserve(static_cast<std::size_t>(ring.getNumPoints()));
    for (const OGRPoint& point : ring)
        points.push_back(grid.At(point.getX(), point.getY()));
    outline.AddRing(points, isHole);
}

void AddPolygon(const OGRPolygon& polygon, const PixelGrid& grid, ZoneOutline& outline) {
    bool isHole = false;
    for (const OGRLinearRing* ring : polygon) {
        AddRing(*ring, isHole, grid, outline);
        isHole = true;
    }
}

/// Adds the polygons of a geometry.
/// @return false when there is anything else in it
bool AddPolygons(const OGRGeometry& geometry, const PixelGrid& grid, ZoneOutline& outline) {
    const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
    if (type == wkbPolygon) {
        AddPolygon(*geometry.toPolygon(), grid, outline);
        return true;
    }
    if (type != wkbMultiPolygon && type != wkbGeometryCollection)
        return false;
    for (const OGRGeometry* member : *geometry.toGeometryCollection())
        if (!AddPolygons(*member, grid, outline))
            return false;
    return true;
}

bool IsValid(const OGRGeometry& geometry) {
    // What is not valid is repaired; there is nothing to report.
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    return wkbFlatten(geometry.getGeometryType()) != wkbGeometryCollection && geometry.IsValid();
}

/// A geometry without curves whose polygons do not cross; null where that cannot be made.
std::unique_ptr<OGRGeometry> Repaired(const OGRGeometry& geometry) {
    std::unique_ptr<OGRGeometry> straight(geometry.hasCurveGeometry() ? geometry.getLinearGeometry()
                                                                      : geometry.clone());
    if (straight == nullptr)
        throw std::bad_alloc();
    if (straight->IsEmpty() || IsValid(*straight))
        return straight;
    zelto::ClearLastError();
    auto united = zelto::UniteSurfaces(*straight);
    return zelto::LastError().empty() ? std::move(united) : nullptr;
}

} // namespace

CZonalStatistics::CZonalStatistics(CRasterSource* source) : m_source(source) {
    for (int b = 0; source != nullptr && b < source->GetBandCount(); ++b)
        if (source->GetRasterBand(b) != nullptr)
            m_bands.push_back(b);
}

CZonalStatistics::~CZonalStatistics() = default;

void CZonalStatistics::SetBands(const std::vector<int>& bands) {
    m_bands.clear();
    for (const int band : bands)
        if (m_source != nullptr && m_source->GetRasterBand(band) != nullptr)
            m_bands.push_back(band);
}

bool CZonalStatistics::SetQuantiles(const std::vector<double>& shares) {
    if (!std::all_of(shares.begin(), shares.end(),
                     [](double share) { return share >= 0 && share <= 1; }))
        return zelto::FailWith(false, L"", "the share of a quantile is from 0 to 1");
    m_quantiles = shares;
    return true;
}

bool CZonalStatistics::AddZone(const OGRGeometry* polygons) {
    return zelto::Operation(false, [&] {
        if (!IsUsable())
            return false;
        const PixelGrid grid(*m_source);
        if (!grid.IsUsable())
            return zelto::Refuse(*m_source, "its pixels have no place on the ground");
        auto outline = std::make_unique<ZoneOutline>();
        if (polygons != nullptr) {
            const auto repaired = Repaired(*polygons);
            if (repaired == nullptr)
                return false;
            if (!AddPolygons(*repaired, grid, *outline))
                return zelto::FailWith(false, L"", "a zone is no polygon");
        }
        outline->Finish(m_source->GetWidth(), m_source->GetHeight());
        m_zones.push_back(std::move(outline));
        return true;
    });
}

/// Whether the raster still has all the bands that are asked for.
bool CZonalStatistics::IsUsable() const {
    if (!zelto::IsUsable(m_source))
        return false;
    for (const int band : m_bands)
        if (m_source->GetRasterBand(band) == nullptr)
            return zelto::Refuse(*m_source, "the raster has fewer bands than before");
    return true;
}

GISError CZonalStatistics::Compute(CDataProgress* progress) {
    m_results.clear();
    const GISError answer = zelto::Operation(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        std::vector<CRasterBand*> bands;
        for (const int band : m_bands)
            bands.push_back(m_source->GetRasterBand(band));
        zelto::ZoneSweep sweep(bands, m_weights, m_quantiles);
        if (!sweep.Run(m_zones, progress))
            return GIS_FAILED;
        m_results = sweep.TakeResults();
        for (std::vector<Band>& zone : m_results)
            for (std::size_t b = 0; b < zone.size(); ++b)
                zone[b].index = m_bands[b];
        return GIS_SUCCESS;
    });
    if (answer != GIS_SUCCESS && m_source != nullptr)
        zelto::NameFileOfLastError(m_source->GetFilePath());
    return answer;
}

const std::vector<CZonalStatistics::Band>& CZonalStatistics::GetZone(int zone) const {
    static const std::vector<Band> nothing;
    if (zone < 0 || zone >= static_cast<int>(m_results.size()))
        return nothing;
    return m_results[static_cast<std::size_t>(zone)];
}
