#include "zelto/aoi/AOIMask.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/aoi/internal/RasterAoiRows.h"
#include "zelto/raster/RasterSource.h"

#include "bench/support/Ratio.h"

#include <gdal_alg.h>
#include <gdal_priv.h>
#include <ogr_geometry.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr int SIZE = 12000;
constexpr int VERTICES = 1000;
constexpr int ROW_STEP = 100;
constexpr const char* IMAGE = "/vsimem/aoi-bench.tif";
constexpr std::size_t PIXELS = static_cast<std::size_t>(SIZE) * SIZE;

/// Stops the program: a benchmark of wrong results is worth nothing.
void Require(bool condition, const char* what) {
    if (condition)
        return;
    std::cerr << "aoi bench: " << what << '\n';
    std::exit(1);
}

/// A star of 1,000 vertices over an image of 12,000 × 12,000 pixels of one ground unit.
class Scene {
  public:
    CRasterSource raster;
    CAOISource aoi;
    OGRPolygon polygon;
    const CBoundingBox box{0, SIZE, SIZE, 0};

    Scene() {
        MakeImage();
        Require(raster.OpenSimple(L"/vsimem/aoi-bench.tif", GIS_READONLY, true) == GIS_SUCCESS,
                "the image does not open");
        AddStar();
    }

  private:
    static void MakeImage() {
        CPLStringList options;
        options.SetNameValue("SPARSE_OK", "TRUE");
        options.SetNameValue("TILED", "YES");
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        GDALDatasetUniquePtr image(driver->Create(IMAGE, SIZE, SIZE, 1, GDT_Byte, options.List()));
        double geoTransform[6] = {0, 1, 0, SIZE, 0, -1};
        Require(image != nullptr && image->SetGeoTransform(geoTransform) == CE_None, "no image");
    }

    void AddStar() {
        std::mt19937 random(1);
        std::uniform_real_distribution<double> radius(3000, 5900);
        auto shape = std::make_unique<CDrawPolygon>();
        OGRLinearRing ring;
        for (int i = 0; i < VERTICES; ++i) {
            const double angle = 2 * 3.14159265358979323846 * i / VERTICES;
            const double r = radius(random);
            const CPoint2D p(SIZE / 2.0 + r * std::cos(angle), SIZE / 2.0 + r * std::sin(angle));
            shape->AddVertex(p);
            ring.addPoint(p.x, p.y);
        }
        ring.closeRings();
        polygon.addRing(&ring);
        shape->m_complete = true;
        Require(aoi.AddDrawShape(shape.release()), "no shape");
    }
};

Scene& TheScene() {
    static Scene scene;
    return scene;
}

void MakeMask() {
    Scene& scene = TheScene();
    const std::unique_ptr<CAOIMask> mask(
        CAOIMask::Create(&scene.polygon, scene.box, SIZE, SIZE, 0));
    Require(mask != nullptr && mask->IsPointIn(SIZE / 2, SIZE / 2) && !mask->IsPointIn(0, 0),
            "the mask is wrong");
}

/// The rasteriser alone, over the whole grid at once.
void RasterizeByGdal(unsigned char* pixels) {
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("MEM");
    GDALDatasetUniquePtr dataset(driver->Create("", SIZE, SIZE, 0, GDT_Byte, nullptr));
    char pointer[64] = {};
    CPLPrintPointer(pointer, pixels, sizeof(pointer) - 1);
    CPLStringList options;
    options.SetNameValue("DATAPOINTER", pointer);
    dataset->AddBand(GDT_Byte, options.List());
    double geoTransform[6] = {0, 1, 0, SIZE, 0, -1};
    dataset->SetGeoTransform(geoTransform);
    int band = 1;
    double burn = 1;
    OGRGeometryH geometry = OGRGeometry::ToHandle(&TheScene().polygon);
    Require(GDALRasterizeGeometries(GDALDataset::ToHandle(dataset.get()), 1, &band, 1, &geometry,
                                    nullptr, nullptr, &burn, nullptr, nullptr, nullptr) == CE_None,
            "GDAL does not rasterise");
}

/// The growth by one pixel as one pass over the pixels.
void GrowPlainly(const unsigned char* burnt, unsigned char* grown) {
    std::copy_n(burnt, PIXELS, grown);
    for (std::size_t row = 1; row < SIZE - 1; ++row)
        for (std::size_t column = 1; column < SIZE - 1; ++column) {
            const unsigned char* p = burnt + row * SIZE + column;
            grown[row * SIZE + column] = p[-SIZE - 1] | p[-SIZE] | p[-SIZE + 1] | p[-1] | p[0] |
                                         p[1] | p[SIZE - 1] | p[SIZE] | p[SIZE + 1];
        }
}

void RasterizeAndGrow() {
    const std::unique_ptr<unsigned char[]> burnt(new unsigned char[PIXELS]());
    const std::unique_ptr<unsigned char[]> grown(new unsigned char[PIXELS]);
    RasterizeByGdal(burnt.get());
    GrowPlainly(burnt.get(), grown.get());
    Require(grown[PIXELS / 2 + SIZE / 2] == 1 && grown[0] == 0, "the baseline is wrong");
}

/// Pixels of every hundredth row that are inside, by rows; preparing the area counts.
std::int64_t CountByRows() {
    CRasterAOI area(&TheScene().raster, &TheScene().aoi);
    area.Initialize();
    const zelto::RasterAoiRows rows(area);
    zelto::RasterAoiRows::Scratch scratch;
    std::vector<double> columns(SIZE);
    std::iota(columns.begin(), columns.end(), 0.0);
    std::vector<unsigned char> inside(SIZE);
    std::int64_t count = 0;
    for (int row = 0; row < SIZE; row += ROW_STEP) {
        rows.Row(row, columns, inside, scratch);
        count = std::accumulate(inside.begin(), inside.end(), count);
    }
    return count;
}

/// The same by asking pixel after pixel.
std::int64_t CountByPixels() {
    CRasterAOI area(&TheScene().raster, &TheScene().aoi);
    area.Initialize();
    std::int64_t count = 0;
    for (int row = 0; row < SIZE; row += ROW_STEP)
        for (int column = 0; column < SIZE; ++column)
            count += area.IsInAOI(column, row) ? 1 : 0;
    return count;
}

void RasterizeWholeGrid() {
    CRasterAOI area(&TheScene().raster, &TheScene().aoi);
    const CRect rect = area.GetRect();
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    std::vector<unsigned char> buffer(static_cast<std::size_t>(width) *
                                      static_cast<std::size_t>(height));
    Require(zelto::RasterAoiRows(area).ToBuffer(buffer.data(), width, height, nullptr),
            "the buffer is not filled");
}

} // namespace

void zelto::bench::Register() {
    CGISDataSource::RegisterGDAL();
    AddRatio("mask of 1,000 vertices, 12,000 squared / GDAL's rasteriser and plain growth", 1.3,
             {MakeMask}, {RasterizeAndGrow}, 5);
    AddRatio("rows of pixels in 1,000 vertices / the single test per pixel", 0.01,
             {[] { CountByRows(); }},
             {[] { Require(CountByPixels() == CountByRows(), "rows and pixels disagree"); }}, 3);
    AddTime("every pixel of 12,000 squared in 1,000 vertices, by rows", static_cast<double>(PIXELS),
            {RasterizeWholeGrid});
}
