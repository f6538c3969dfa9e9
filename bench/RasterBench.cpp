#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "bench/support/Ratio.h"
#include "bench/support/Scene.h"

#include <gdal_priv.h>

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

using zelto::bench::AddRatio;
using zelto::bench::AddTime;
using zelto::bench::FourBands16Bit;
using zelto::bench::ThreeBands8Bit;

namespace {

void Require(bool good, const std::string& what) {
    if (!good)
        throw std::runtime_error(what);
}

GDALDatasetUniquePtr OpenRaw(const std::string& path) {
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    Require(dataset != nullptr, "cannot open " + path);
    return dataset;
}

/// A window of a band, resampled to a buffer.
struct Window {
    int xOff, yOff, xSize, ySize, bufWidth, bufHeight;
};

void ReadRaw(GDALRasterBand& band, const Window& w, GDALDataType type) {
    const std::size_t bytes = static_cast<std::size_t>(w.bufWidth) *
                              static_cast<std::size_t>(w.bufHeight) *
                              static_cast<std::size_t>(GDALGetDataTypeSizeBytes(type));
    const std::unique_ptr<char[]> buffer(new char[bytes]); // not initialised
    Require(band.RasterIO(GF_Read, w.xOff, w.yOff, w.xSize, w.ySize, buffer.get(), w.bufWidth,
                          w.bufHeight, type, 0, 0, nullptr) == CE_None,
            "cannot read a window");
}

/// The reads that opening makes: each band over a grid of 2048 samples, in its own type.
void ReadStatisticsGrids(const std::string& path) {
    const GDALDatasetUniquePtr dataset = OpenRaw(path);
    for (int i = 1; i <= dataset->GetRasterCount(); ++i) {
        GDALRasterBand& band = *dataset->GetRasterBand(i);
        ReadRaw(band, {0, 0, band.GetXSize(), band.GetYSize(), 2048, 2048},
                band.GetRasterDataType());
    }
}

void OpenWithEngine(const std::string& path) {
    CRasterSource source;
    Require(source.Open(std::wstring(path.begin(), path.end()).c_str(), GIS_READONLY, true) ==
                GIS_SUCCESS,
            "the engine cannot open " + path);
}

/// A band of a scene for both sides of a comparison, its blocks dropped before each timing.
struct SharedBand {
    GDALDatasetUniquePtr dataset;
    std::unique_ptr<CRasterBand> band;

    explicit SharedBand(const std::string& path)
        : dataset(OpenRaw(path)),
          band(std::make_unique<CRasterBand>(dataset->GetRasterBand(1), false, true)) {}
    GDALRasterBand& Gdal() const { return *band->GetGDALBand(); }
    void DropBlocks() const { dataset->FlushCache(); }
};

void AddGetData(const std::string& name, const std::string& path, const Window& w) {
    const auto shared = std::make_shared<SharedBand>(path);
    const auto prepare = [shared] {
        shared->band->ReleaseCache();
        shared->DropBlocks();
    };
    AddRatio(name, 1.05,
             {[=] {
                  Require(shared->band->GetData(w.xOff, w.yOff, w.xSize, w.ySize, w.bufWidth,
                                                w.bufHeight),
                          "GetData failed");
                  shared->band->ReleaseCache(); // the raw read frees its buffer as well
              },
              prepare},
             {[=] { ReadRaw(shared->Gdal(), w, GDT_Float64); }, prepare}, 15);
}

constexpr int LOOKUPS = 1'000'000;

/// A million points inside a cached region of 2000 × 2000 pixels.
std::vector<std::pair<double, double>> RandomPoints() {
    std::mt19937_64 random(4711);
    std::uniform_real_distribution<double> position(1000.0, 2999.0);
    std::vector<std::pair<double, double>> points(LOOKUPS);
    for (auto& [x, y] : points) {
        x = position(random);
        y = position(random);
    }
    return points;
}

template <typename Lookup>
void AddLookup(const std::string& name, Lookup lookup) {
    const auto shared = std::make_shared<SharedBand>(ThreeBands8Bit());
    Require(shared->band->GetData(1000, 1000, 2000, 2000, 1000, 1000), "GetData failed");
    const auto points = std::make_shared<std::vector<std::pair<double, double>>>(RandomPoints());
    AddTime(name, LOOKUPS, {[=] {
                int found = 0;
                double value = 0.0;
                for (const auto& [x, y] : *points)
                    found += lookup(*shared->band, x, y, &value) ? 1 : 0;
                Require(found == LOOKUPS, "a lookup failed");
            }});
}

} // namespace

void zelto::bench::Register() {
    CGISDataSource::RegisterGDAL();
    AddRatio("raster/open 12000x12000x4 tiled", 1.10, {[] { OpenWithEngine(FourBands16Bit()); }},
             {[] { ReadStatisticsGrids(FourBands16Bit()); }}, 9);
    AddGetData("raster/GetData 1:1 uncompressed", ThreeBands8Bit(),
               {2000, 2000, 2000, 2000, 2000, 2000});
    AddGetData("raster/GetData 1:4 uncompressed", ThreeBands8Bit(), {0, 0, 8000, 8000, 2000, 2000});
    AddGetData("raster/GetData 1:1 deflate", FourBands16Bit(),
               {2048, 2048, 2048, 2048, 2048, 2048});
    AddLookup("raster/GetNearestValueAt", [](CRasterBand& band, double x, double y, double* value) {
        return band.GetNearestValueAt(x, y, value);
    });
    AddLookup("raster/GetBilinearValueAt",
              [](CRasterBand& band, double x, double y, double* value) {
                  return band.GetBilinearValueAt(x, y, value);
              });
}
