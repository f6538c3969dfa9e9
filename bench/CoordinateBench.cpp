#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/coordinate/Reproject.h"
#include "zelto/raster/RasterSource.h"

#include "bench/support/Ratio.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr const char* SOURCE_SRS = "EPSG:32650";
constexpr const char* TARGET_SRS = "EPSG:4326";
constexpr const char* IMAGE = "/vsimem/coordinate-bench.tif";
constexpr int POINTS = 10'000'000;
constexpr int PAIRS = 5;

struct DestroyTransformation {
    void operator()(OGRCoordinateTransformation* transformation) const {
        OGRCoordinateTransformation::DestroyCT(transformation);
    }
    void operator()(CCoordinateTransformation* transformation) const {
        CCoordinateTransformation::DestroyCoordinateTransformation(transformation);
    }
};

/// Stops the program: a benchmark of wrong results is worth nothing.
void Require(bool condition, const std::string& what) {
    if (condition)
        return;
    std::cerr << "coordinate bench: " << what << '\n';
    std::exit(1);
}

/// A degree square of 30 m pixels and ten million points in it, target coordinates.
struct Scene {
    CRasterSource raster;
    std::unique_ptr<CReproject> direct;
    std::unique_ptr<CReproject> gridded[4];
    std::vector<double> longitudes;
    std::vector<double> latitudes;
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> columns;
    std::vector<double> rows;

    Scene() {
        MakeImage();
        Require(raster.OpenSimple(L"/vsimem/coordinate-bench.tif", GIS_READONLY, true) == 0,
                "the image does not open");
        direct = Bind();
        CBoundingBox box(116.5, 40.2, 117.5, 39.2);
        for (unsigned int order = 1; order <= 3; ++order) {
            gridded[order] = Bind();
            Require(gridded[order]->CreateGrid(box, 1 / 19.5, 1 / 19.5, order), "no grid fits");
        }
        std::mt19937 random(20);
        std::uniform_real_distribution<double> east(116.5, 117.5);
        std::uniform_real_distribution<double> north(39.2, 40.2);
        for (int i = 0; i < POINTS; ++i) {
            longitudes.push_back(east(random));
            latitudes.push_back(north(random));
        }
        columns.resize(POINTS);
        rows.resize(POINTS);
        Refill();
    }

    void Refill() {
        x = longitudes;
        y = latitudes;
    }

    std::unique_ptr<CReproject> Bind() {
        std::unique_ptr<CReproject> bound(
            CReproject::Create(&raster, TARGET_SRS, nullptr, nullptr));
        Require(bound != nullptr, "the image has no place in the target system");
        return bound;
    }

    static void MakeImage() {
        OGRSpatialReference srs;
        srs.SetFromUserInput(SOURCE_SRS);
        GDALDatasetUniquePtr image(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
            IMAGE, 3000, 3700, 1, GDT_Byte, nullptr));
        double geoTransform[] = {455000, 30, 0, 4452000, 0, -30};
        image->SetGeoTransform(geoTransform);
        image->SetSpatialRef(&srs);
    }
};

/// GDAL lives as long as the scene's raster.
Scene& TheScene() {
    static Scene scene;
    return scene;
}

void CheckGrid(unsigned int order, double tolerance) {
    Scene& scene = TheScene();
    for (int i = 0; i < 1000; ++i) {
        double x = scene.longitudes[i];
        double y = scene.latitudes[i];
        double column = 0.0;
        double row = 0.0;
        double exactColumn = 0.0;
        double exactRow = 0.0;
        Require(scene.gridded[order]->GetSrcPos(&x, &y, &column, &row, 1) &&
                    scene.direct->GetSrcPos(&x, &y, &exactColumn, &exactRow, 1),
                "a point has no position");
        Require(std::hypot(column - exactColumn, row - exactRow) < tolerance,
                "a position is wrong");
    }
}

void AddGrid(unsigned int order, double tolerance) {
    const auto locate = [](CReproject& reproject) {
        Scene& scene = TheScene();
        Require(reproject.GetSrcPos(scene.x.data(), scene.y.data(), scene.columns.data(),
                                    scene.rows.data(), POINTS),
                "no positions");
    };
    const auto refill = [] { TheScene().Refill(); };
    zelto::bench::AddRatio("positions of 10 million points, grid of order " +
                               std::to_string(order) + " / transformation",
                           0.05,
                           {[=] { locate(*TheScene().gridded[order]); },
                            [=] {
                                CheckGrid(order, tolerance);
                                refill();
                            }},
                           {[=] { locate(*TheScene().direct); }, refill}, PAIRS);
}

void AddTransformation() {
    const std::shared_ptr<CCoordinateTransformation> ours(
        CCoordinateTransformation::CreateCoordinateTransformation(TARGET_SRS, SOURCE_SRS, nullptr),
        DestroyTransformation());
    OGRSpatialReference from;
    OGRSpatialReference to;
    from.SetFromUserInput(TARGET_SRS);
    to.SetFromUserInput(SOURCE_SRS);
    from.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    to.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::shared_ptr<OGRCoordinateTransformation> theirs(
        OGRCreateCoordinateTransformation(&from, &to), DestroyTransformation());
    const auto refill = [] { TheScene().Refill(); };
    zelto::bench::AddRatio(
        "transformation of 10 million points / the library's own call", 1.1,
        {[=] {
             Scene& scene = TheScene();
             Require(ours->Transform(POINTS, scene.x.data(), scene.y.data(), nullptr, nullptr),
                     "no transformation");
         },
         refill},
        {[=] {
             Scene& scene = TheScene();
             Require(theirs->Transform(POINTS, scene.x.data(), scene.y.data()),
                     "no transformation");
         },
         refill},
        PAIRS);
}

} // namespace

void zelto::bench::Register() {
    CGISDataSource::RegisterGDAL();
    AddGrid(1, 30.0);
    AddGrid(2, 0.5);
    AddGrid(3, 0.01);
    AddTransformation();
}
