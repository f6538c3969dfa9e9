#include "zelto/aoi/internal/MaskRaster.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"

#include <gdal_alg.h>
#include <gdal_priv.h>
#include <ogr_geometry.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace zelto {

namespace {

constexpr int STRIP_BYTES = 16777216;
constexpr const char* BURNING = "the area cannot be burnt";

/// A one-band in-memory data set over the caller's bytes; null when GDAL has no such driver.
GDALDatasetUniquePtr OpenOver(unsigned char* pixels, int width, int height) {
    GdalWatch watch;
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("MEM");
    if (driver == nullptr) {
        SetLastError("GDAL has no driver for rasters in memory");
        return nullptr;
    }
    GDALDatasetUniquePtr dataset(driver->Create("", width, height, 0, GDT_Byte, nullptr));
    char pointer[64] = {};
    CPLPrintPointer(pointer, pixels, sizeof(pointer) - 1);
    CPLStringList options;
    options.SetNameValue("DATAPOINTER", pointer);
    const bool added = dataset != nullptr && dataset->AddBand(GDT_Byte, options.List()) == CE_None;
    return watch.Succeeded(added, BURNING) ? std::move(dataset) : nullptr;
}

bool BurnStrip(OGRGeometry& geometry, const MaskGrid& grid, int firstRow, int rows,
               unsigned char* pixels) {
    const auto dataset = OpenOver(pixels, grid.width, rows);
    if (dataset == nullptr)
        return false;
    double geoTransform[6] = {
        grid.box.m_left,  grid.pixelWidth, 0.0, grid.box.m_top - firstRow * grid.pixelHeight, 0.0,
        -grid.pixelHeight};
    GdalWatch watch;
    if (!watch.Succeeded(dataset->SetGeoTransform(geoTransform), BURNING))
        return false;
    int band = 1;
    OGRGeometryH handle = OGRGeometry::ToHandle(&geometry);
    double burn = 1.0;
    const CPLErr result =
        GDALRasterizeGeometries(GDALDataset::ToHandle(dataset.get()), 1, &band, 1, &handle, nullptr,
                                nullptr, &burn, nullptr, nullptr, nullptr);
    dataset->FlushCache();
    return watch.Succeeded(result, BURNING);
}

/// Burnt rows of a grid, from one of them on.
struct BurntRows {
    const unsigned char* pixels;
    int first;
};

/// Writes rows begin … end − 1 of a grid grown by one pixel. The outermost rows and columns are
/// copied as they are.
/// @param burnt with the rows above and below these, as far as the grid has them
void GrowRows(BurntRows burnt, int begin, int end, const MaskGrid& grid, unsigned char* grown) {
    const auto stride = static_cast<std::size_t>(grid.width);
#pragma omp parallel for schedule(static)
    for (int row = begin; row < end; ++row) {
        const unsigned char* middle =
            burnt.pixels + static_cast<std::size_t>(row - burnt.first) * stride;
        unsigned char* out = grown + static_cast<std::size_t>(row - begin) * stride;
        std::copy_n(middle, stride, out);
        if (row == 0 || row == grid.height - 1)
            continue;
        const unsigned char* above = middle - stride;
        const unsigned char* below = middle + stride;
        for (std::size_t c = 1; c + 1 < stride; ++c)
            out[c] = above[c - 1] | above[c] | above[c + 1] | middle[c - 1] | middle[c] |
                     middle[c + 1] | below[c - 1] | below[c] | below[c + 1];
    }
}

std::unique_ptr<unsigned char[]> AllocateRows(std::size_t rows, std::size_t stride) {
    return std::unique_ptr<unsigned char[]>(new unsigned char[rows * stride]);
}

} // namespace

int MaskStripRows(int width, int height) {
    return std::clamp(STRIP_BYTES / width, 1, height);
}

bool BurnGeometry(OGRGeometry& geometry, const MaskGrid& grid, unsigned char* pixels) {
    const int stripRows = MaskStripRows(grid.width, grid.height);
    for (int row = 0; row < grid.height; row += std::min(stripRows, grid.height - row)) {
        const int rows = std::min(stripRows, grid.height - row);
        unsigned char* strip = pixels + static_cast<std::size_t>(row) * grid.width;
        if (!BurnStrip(geometry, grid, row, rows, strip))
            return false;
    }
    return true;
}

void GrowByOnePixel(const unsigned char* burnt, unsigned char* grown, int width, int height) {
    GrowRows({burnt, 0}, 0, height, {{}, width, height}, grown);
}

bool BurnGrownRows(OGRGeometry& geometry, const MaskGrid& grid, const MaskSink& sink) {
    // A row grows from its neighbours above and below: two rows stay from strip to strip.
    constexpr int KEPT = 2;
    const int stripRows = MaskStripRows(grid.width, grid.height);
    const auto stride = static_cast<std::size_t>(grid.width);
    const auto burnt = AllocateRows(static_cast<std::size_t>(stripRows) + KEPT, stride);
    const auto grown = AllocateRows(static_cast<std::size_t>(stripRows) + KEPT, stride);
    int first = 0; // the row that `burnt` begins with
    int next = 0;  // the first row that was not handed out
    for (int row = 0; row < grid.height;) {
        const int rows = std::min(stripRows, grid.height - row);
        unsigned char* strip = burnt.get() + static_cast<std::size_t>(row - first) * stride;
        std::fill_n(strip, static_cast<std::size_t>(rows) * stride, 0);
        if (!BurnStrip(geometry, grid, row, rows, strip))
            return false;
        row += rows;
        const int end = row < grid.height ? row - 1 : row; // the last waits for the one below it
        GrowRows({burnt.get(), first}, next, end, grid, grown.get());
        if (end > next && !sink(next, end - next, grown.get()))
            return false;
        next = end;
        const int keptFrom = std::max(first, row - KEPT);
        std::memmove(burnt.get(), burnt.get() + static_cast<std::size_t>(keptFrom - first) * stride,
                     static_cast<std::size_t>(row - keptFrom) * stride);
        first = keptFrom;
    }
    return true;
}

bool FillRows(unsigned char value, const MaskGrid& grid, const MaskSink& sink) {
    const int stripRows = MaskStripRows(grid.width, grid.height);
    const auto stride = static_cast<std::size_t>(grid.width);
    const auto rows = AllocateRows(static_cast<std::size_t>(stripRows), stride);
    std::fill_n(rows.get(), static_cast<std::size_t>(stripRows) * stride, value);
    for (int row = 0; row < grid.height; row += std::min(stripRows, grid.height - row))
        if (!sink(row, std::min(stripRows, grid.height - row), rows.get()))
            return false;
    return true;
}

} // namespace zelto
