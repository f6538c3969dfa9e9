#include "bench/support/Scene.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <random>
#include <stdexcept>
#include <sys/resource.h>
#include <vector>

namespace zelto::bench {

namespace {

struct SceneLayout {
    std::string name;
    int size;
    int bands;
    GDALDataType type;
    double amplitude;
    std::vector<const char*> options;
    std::vector<int> overviews;
};

std::filesystem::path Folder() {
    const char* configured = std::getenv("ZELTO_BENCH_DATA");
    std::filesystem::path folder = configured != nullptr
                                       ? std::filesystem::path(configured)
                                       : std::filesystem::temp_directory_path() / "bench-data";
    std::filesystem::create_directories(folder);
    return folder;
}

/// One row of terrain: a few waves and a little noise.
void FillRow(std::vector<std::uint16_t>& row, int y, int band, double amplitude,
             std::minstd_rand& random) {
    for (std::size_t x = 0; x < row.size(); ++x) {
        const double wave = std::sin(x * 0.0031 + band) * std::cos(y * 0.0027 - band) +
                            0.3 * std::sin((x + y) * 0.021);
        const double noise = static_cast<double>(random() % 1000) / 1000.0;
        row[x] = static_cast<std::uint16_t>(amplitude * (0.45 + 0.3 * wave + 0.05 * noise));
    }
}

void Check(CPLErr error, const std::string& path) {
    if (error != CE_None)
        throw std::runtime_error("cannot write " + path + ": " + CPLGetLastErrorMsg());
}

void WriteBands(GDALDataset& dataset, const SceneLayout& layout, const std::string& path) {
    constexpr int ROWS = 256; // a row of tiles, so that no tile is compressed twice
    const auto width = static_cast<std::size_t>(layout.size);
    std::vector<std::uint16_t> row(width);
    std::vector<std::uint16_t> block(width * ROWS * static_cast<std::size_t>(layout.bands));
    std::minstd_rand random(4711);
    for (int y = 0; y < layout.size; y += ROWS) {
        const int rows = std::min(ROWS, layout.size - y);
        for (int r = 0; r < rows; ++r) {
            for (int b = 0; b < layout.bands; ++b) {
                FillRow(row, y + r, b, layout.amplitude, random);
                std::copy(row.begin(), row.end(),
                          block.begin() + static_cast<std::ptrdiff_t>(
                                              (static_cast<std::size_t>(b) * ROWS + r) * width));
            }
        }
        Check(dataset.RasterIO(GF_Write, 0, y, layout.size, rows, block.data(), layout.size, rows,
                               GDT_UInt16, layout.bands, nullptr, 0, 0,
                               static_cast<GSpacing>(width * ROWS * 2), nullptr),
              path);
    }
}

/// Whether the scene is there, with its overviews.
bool IsMade(const std::filesystem::path& file, const SceneLayout& layout) {
    if (!std::filesystem::exists(file))
        return false;
    const GDALDatasetUniquePtr scene(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
    return scene &&
           scene->GetRasterBand(1)->GetOverviewCount() == static_cast<int>(layout.overviews.size());
}

std::string Make(const SceneLayout& layout) {
    const std::filesystem::path file = Folder() / layout.name;
    GDALAllRegister();
    if (IsMade(file, layout))
        return file.string();
    const std::string unfinished = file.string() + ".part.tif";
    CPLStringList options;
    for (const char* option : layout.options)
        options.AddString(option);
    GDALDatasetUniquePtr dataset(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        unfinished.c_str(), layout.size, layout.size, layout.bands, layout.type, options.List()));
    if (!dataset)
        throw std::runtime_error("cannot create " + unfinished);
    double geoTransform[6] = {300000.0, 10.0, 0.0, 4500000.0, 0.0, -10.0};
    Check(dataset->SetGeoTransform(geoTransform), unfinished);
    OGRSpatialReference srs;
    srs.importFromEPSG(32650);
    Check(dataset->SetSpatialRef(&srs), unfinished);
    WriteBands(*dataset, layout, unfinished);
    dataset->FlushCache();
    if (!layout.overviews.empty()) {
        // Inside the file, whatever the engine has set up: the file gets another name.
        const CPLConfigOptionSetter inside("USE_RRD", "NO", false);
        std::vector<int> levels = layout.overviews;
        Check(dataset->BuildOverviews("NEAREST", static_cast<int>(levels.size()), levels.data(), 0,
                                      nullptr, nullptr, nullptr),
              unfinished);
    }
    dataset.reset();
    std::filesystem::rename(unfinished, file);
    return file.string();
}

} // namespace

std::string FourBands16Bit() {
    return Make(
        {"four-bands-16-bit.tif",
         12000,
         4,
         GDT_UInt16,
         10000.0,
         {"TILED=YES", "COMPRESS=DEFLATE", "ZLEVEL=1", "NUM_THREADS=ALL_CPUS", "INTERLEAVE=BAND"},
         {2, 4, 8, 16, 32, 64}});
}

std::string ThreeBands8Bit() {
    return Make({"three-bands-8-bit.tif", 10000, 3, GDT_Byte, 255.0, {"INTERLEAVE=PIXEL"}, {}});
}

std::string BenchFile(const std::string& name) {
    return (Folder() / name).string();
}

std::string PixelInterleaved(int size, Pyramid pyramid) {
    const bool has = pyramid == Pyramid::Built;
    return Make({"pixel-interleaved-" + std::to_string(size) + (has ? "-pyramid.tif" : ".tif"),
                 size,
                 4,
                 GDT_UInt16,
                 10000.0,
                 {"TILED=YES", "COMPRESS=DEFLATE", "ZLEVEL=1", "NUM_THREADS=ALL_CPUS",
                  "INTERLEAVE=PIXEL", "BIGTIFF=IF_SAFER"},
                 has ? std::vector{2, 4, 8, 16, 32, 64} : std::vector<int>{}});
}

double PeakMemoryMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void ResetPeakMemory() {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;
}

} // namespace zelto::bench
