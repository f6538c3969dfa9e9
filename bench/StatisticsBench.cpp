#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/ZonalStatistics.h"
#include "zelto/algorithm/internal/RegionWindow.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "bench/support/Ratio.h"
#include "bench/support/Scene.h"

#include <gdal_priv.h>
#include <ogr_geometry.h>

#include <cmath>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace zelto::bench {

namespace {

/// Statistics cost seconds on a scene of this size: fewer pairs do.
constexpr int PAIRS = 3;

struct Scene {
    Scene() {
        const std::string path = FourBands16Bit();
        const std::wstring wide(path.begin(), path.end());
        if (source.OpenSimple(wide.c_str(), GIS_READONLY, false) != GIS_SUCCESS)
            throw std::runtime_error("cannot open " + path);
    }
    CRasterSource source;
};

CRasterSource& TheScene() {
    static Scene scene;
    return scene.source;
}

/// A star-shaped outline around a ground point.
CDrawPolygon* MakePolygon(CPoint2D centre, double radius, int vertices, unsigned seed) {
    std::minstd_rand random(seed);
    auto* polygon = new CDrawPolygon;
    for (int i = 0; i < vertices; ++i) {
        const double angle = 6.283185307179586 * i / vertices;
        const double r = radius * (0.8 + 0.2 * static_cast<double>(random() % 1000) / 1000);
        polygon->AddVertex({centre.x + r * std::cos(angle), centre.y + r * std::sin(angle)});
    }
    polygon->m_complete = true;
    return polygon;
}

/// 1,000 vertices around the middle of the scene, nearly as wide as it.
CAOISource& LargeArea() {
    static CAOISource area;
    if (area.GetDrawShapeCount() == 0)
        area.AddDrawShape(MakePolygon({360000, 4440000}, 59000, 1000, 1));
    return area;
}

/// A hundred polygons of 50 vertices and about 1,000 pixels across.
const std::vector<std::unique_ptr<CDrawPolygon>>& SmallPolygons() {
    static std::vector<std::unique_ptr<CDrawPolygon>> polygons;
    std::minstd_rand random(2);
    while (polygons.size() < 100) {
        const CPoint2D centre(306000.0 + random() % 108000, 4386000.0 + random() % 108000);
        polygons.emplace_back(
            MakePolygon(centre, 5000, 50, static_cast<unsigned>(polygons.size())));
    }
    return polygons;
}

void ReadRaw(int band, const PixelWindow& window, double* buffer) {
    if (TheScene().GetRasterBand(band)->GetGDALBand()->RasterIO(
            GF_Read, window.left, window.top, window.width, window.height, buffer, window.width,
            window.height, GDT_Float64, 0, 0, nullptr) != CE_None)
        throw std::runtime_error("cannot read the scene");
}

void FlushBands() {
    for (int b = 0; b < TheScene().GetBandCount(); ++b)
        TheScene().GetRasterBand(b)->FlushCache();
}

PixelWindow LargeWindow() {
    CRasterAOI aoi(&TheScene(), &LargeArea());
    return WindowOf(aoi.GetRect());
}

/// Reads a window's blocks of rows, band by band, into one buffer.
void ReadBlocks(PixelWindow window, int blockRows) {
    const std::unique_ptr<double[]> buffer(
        new double[static_cast<std::size_t>(window.width) * static_cast<std::size_t>(blockRows)]);
    const int bottom = window.top + window.height;
    for (int b = 0; b < TheScene().GetBandCount(); ++b) {
        for (int row = window.top; row < bottom; row += blockRows)
            ReadRaw(b, {window.left, row, window.width, std::min(blockRows, bottom - row)},
                    buffer.get());
        TheScene().GetRasterBand(b)->FlushCache();
    }
}

/// The same with all bands of a block before the next block.
void ReadBlocksOfAllBands(PixelWindow window, int blockRows) {
    const std::size_t samples =
        static_cast<std::size_t>(window.width) * static_cast<std::size_t>(blockRows);
    std::vector<std::unique_ptr<double[]>> buffers;
    for (int b = 0; b < TheScene().GetBandCount(); ++b)
        buffers.emplace_back(new double[samples]);
    const int bottom = window.top + window.height;
    for (int row = window.top; row < bottom; row += blockRows)
        for (int b = 0; b < TheScene().GetBandCount(); ++b)
            ReadRaw(b, {window.left, row, window.width, std::min(blockRows, bottom - row)},
                    buffers[static_cast<std::size_t>(b)].get());
    FlushBands();
}

void ComputeBlocks() {
    CRasterAOI aoi(&TheScene(), &LargeArea());
    __int64 count = 0;
    double min[4], max[4], mean[4];
    if (!CRasterAlgorithm::ComputeStaticsFromAOI(&TheScene(), &aoi, count, min, max, mean, nullptr,
                                                 false, nullptr) ||
        count == 0)
        throw std::runtime_error("no statistics");
}

void ComputeEveryPixel() {
    CRegionStatistics statistics(&TheScene());
    statistics.SetAOI(&LargeArea());
    if (statistics.Compute(nullptr) != GIS_SUCCESS || statistics.GetBands()[0].count == 0)
        throw std::runtime_error("no statistics");
}

void ComputeCovariance() {
    CRasterAOI aoi(&TheScene(), &LargeArea());
    const double mean[] = {4500, 4500, 4500, 4500};
    double covariance[16];
    if (!CRasterAlgorithm::ComputeCovarianceFromAOI(&TheScene(), &aoi, mean, covariance, false,
                                                    nullptr))
        throw std::runtime_error("no covariance");
}

void ComputeSmallPolygons() {
    for (const auto& polygon : SmallPolygons()) {
        __int64 count = 0;
        double min[4], max[4], mean[4];
        if (!CRasterAlgorithm::ComputeStaticsFromDrawshape(&TheScene(), polygon.get(), count, min,
                                                           max, mean, nullptr, nullptr) ||
            count == 0)
            throw std::runtime_error("no statistics");
    }
}

/// The same polygons as zones of one pass.
void MeasureZones(CZonalStatistics::Weights weights) {
    CZonalStatistics statistics(&TheScene());
    statistics.SetWeights(weights);
    for (const auto& polygon : SmallPolygons()) {
        OGRLinearRing ring;
        for (const CPoint2D& vertex : polygon->m_vertices)
            ring.addPoint(vertex.x, vertex.y);
        ring.closeRings();
        OGRPolygon zone;
        zone.addRing(&ring);
        if (!statistics.AddZone(&zone))
            throw std::runtime_error("no zone");
    }
    if (statistics.Compute(nullptr) != GIS_SUCCESS || statistics.GetZone(0)[0].count == 0)
        throw std::runtime_error("no statistics");
}

void ReadSmallPolygons() {
    for (const auto& polygon : SmallPolygons()) {
        const auto window = WindowInside(TheScene(), polygon->m_extent);
        ReadBlocks(*window, window->height);
    }
}

/// A work that remarks on its line how much memory the process has needed at most.
Work WithMemory(const std::string& name, void (*run)()) {
    return {[name, run] {
        run();
        Remark(name, "peak " + std::to_string(std::lround(PeakMemoryMegabytes())) + " MB");
    }};
}

void Add(const std::string& name, double limit, void (*measured)(),
         std::function<void()> baseline) {
    AddRatio(name, limit, WithMemory(name, measured), {std::move(baseline)}, PAIRS);
}

} // namespace

void Register() {
    CGISDataSource::RegisterGDAL();
    Add("statistics of every pixel in 1,000 vertices, 4 bands, 12,000 squared / raw read", 1.4,
        ComputeEveryPixel, [] {
            const PixelWindow window = LargeWindow();
            ReadBlocks(window, AoiStatisticsBlockRows(window.width, window.height));
        });
    Add("statistics of a large area in blocks / raw read", 1.4, ComputeBlocks, [] {
        PixelWindow window = LargeWindow();
        window.left = window.top = 0;
        ReadBlocks(window, AoiStatisticsBlockRows(window.width, window.height));
    });
    Add("covariance of 4 bands in 1,000 vertices, 12,000 squared / raw read", 2.0,
        ComputeCovariance, [] {
            const PixelWindow window = LargeWindow();
            ReadBlocksOfAllBands(
                window, PlanAoiCovariance(window.width, window.height, 4, false).blockRows);
        });
    Add("statistics of 100 polygons of 50 vertices / raw reads", 1.5, ComputeSmallPolygons,
        ReadSmallPolygons);
    Add(
        "zonal statistics of 100 polygons by centres, one pass / raw reads", 1.5,
        [] { MeasureZones(CZonalStatistics::Weights::Center); }, ReadSmallPolygons);
    Add(
        "zonal statistics of 100 polygons by coverage, one pass / raw reads", 1.5,
        [] { MeasureZones(CZonalStatistics::Weights::Coverage); }, ReadSmallPolygons);
}

} // namespace zelto::bench
