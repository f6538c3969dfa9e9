#pragma once

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace zelto::test {

/// Makes rasters in a temporary folder and opens them through the engine. The data source it
/// holds keeps GDAL alive between them.
class RegionTest : public testing::Test {
  protected:
    /// A raster with the given bands, opened as a host does that does not draw.
    std::unique_ptr<CRasterSource> Open(const RasterSpec& spec, const std::vector<Pixels>& bands) {
        m_path =
            WriteRaster(m_folder.File("raster" + std::to_string(m_count++) + ".tif"), spec, bands);
        return Reopen();
    }

    std::unique_ptr<CRasterSource> Reopen(bool keepRotation = false) {
        auto source = std::make_unique<CRasterSource>();
        source->SetForDisplay(keepRotation);
        const std::wstring path(m_path.begin(), m_path.end());
        EXPECT_EQ(source->Open(path.c_str(), GIS_READONLY, keepRotation), GIS_SUCCESS);
        return source;
    }

    /// 300 × 300 pixels of 1 … 5 in two bands, the second of which ends early and is not read.
    std::unique_ptr<CRasterSource> OpenWithCutSecondBand() {
        RasterSpec spec = UnitSpec(300, 300);
        spec.options = {"INTERLEAVE=BAND"};
        const auto fives = MakePixels(300, 300, [](int c, int) { return 1.0 + c % 5; });
        Open(spec, {fives, fives}).reset();
        std::filesystem::resize_file(m_path, 120000);
        return Reopen();
    }

    /// width × height pixels of one ground unit each, so that ground (x, y) is column x and row
    /// height − y.
    static RasterSpec UnitSpec(int width, int height, GDALDataType type = GDT_Byte) {
        RasterSpec spec;
        spec.width = width;
        spec.height = height;
        spec.type = type;
        spec.geoTransform = NorthUp(0, height, 1);
        return spec;
    }

    TemporaryFolder m_folder;
    CRasterSource m_keeper;
    std::string m_path;
    int m_count = 0;
};

inline std::unique_ptr<CDrawRectangle> Rectangle(double left, double top, double right,
                                                 double bottom) {
    auto shape = std::make_unique<CDrawRectangle>();
    shape->AddVertex({left, top});
    shape->AddVertex({right, bottom});
    return shape;
}

inline std::unique_ptr<CDrawEllipse> Ellipse(double left, double top, double right, double bottom) {
    auto shape = std::make_unique<CDrawEllipse>();
    shape->AddVertex({left, top});
    shape->AddVertex({right, bottom});
    return shape;
}

inline std::unique_ptr<CDrawPolygon> Polygon(const std::vector<CPoint2D>& points) {
    auto shape = std::make_unique<CDrawPolygon>();
    for (const CPoint2D& p : points)
        shape->AddVertex(p);
    shape->m_complete = true;
    return shape;
}

/// A star-shaped polygon of 3 … 12 vertices around a random centre, which may lie off the
/// square 0 … size by a quarter of it.
inline std::unique_ptr<CDrawPolygon> RandomPolygon(std::minstd_rand& random, double size) {
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const double x = (unit(random) * 1.5 - 0.25) * size;
    const double y = (unit(random) * 1.5 - 0.25) * size;
    const int count = 3 + static_cast<int>(unit(random) * 10);
    std::vector<CPoint2D> points;
    for (int i = 0; i < count; ++i) {
        const double angle = 6.283185307179586 * i / count;
        const double radius = (0.05 + unit(random) * 0.7) * size;
        points.emplace_back(x + radius * std::cos(angle), y + radius * std::sin(angle));
    }
    return Polygon(points);
}

/// An area of interest of the given shapes, which it owns.
template <typename... Shapes>
std::unique_ptr<CAOISource> Area(std::unique_ptr<Shapes>... shapes) {
    auto area = std::make_unique<CAOISource>();
    const auto add = [&](std::unique_ptr<CDrawShape> shape) {
        EXPECT_TRUE(area->AddDrawShape(shape.get()));
        shape.release();
    };
    (..., add(std::move(shapes)));
    return area;
}

/// The digits of column and row.
inline Pixels Digits() {
    return MakePixels(10, 10, [](int c, int r) { return 10.0 * c + r; });
}

} // namespace zelto::test
