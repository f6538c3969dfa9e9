#include "host/files/Strips.h"

#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Progress.h"
#include "host/files/Open.h"

#include <gdal_priv.h>

#include <algorithm>
#include <vector>

namespace zelto::host {

namespace {

constexpr std::size_t STRIP_BYTES = std::size_t{16} << 20;

/// Rows of a strip that starts at `row`.
int StripHeight(const RowRange& rows, int row) {
    const auto most =
        static_cast<int>(std::clamp<std::size_t>(STRIP_BYTES / rows.bytesPerRow, 1, 1U << 30));
    const int left = rows.first + rows.count - row;
    if (rows.blockHeight > most)
        return std::min(most, left);
    const int end = (row + most) / rows.blockHeight * rows.blockHeight;
    return std::min(end - row, left);
}

} // namespace

void ForEachStrip(const RowRange& rows, const wchar_t* title, const std::string& path,
                  const std::function<void(int first, int count)>& work) {
    TerminalProgress progress;
    ForEachStrip(rows, title, path, progress, work);
}

void ForEachStrip(const RowRange& rows, const wchar_t* title, const std::string& path,
                  CDataProgress& progress, const std::function<void(int first, int count)>& work) {
    progress.BeginProgress(title, 100);
    for (int done = 0; done < rows.count;) {
        if (!progress.StepProgress(static_cast<int>(100LL * done / rows.count), L""))
            throw Failure(path, "interrupted");
        const int row = rows.first + done;
        const int height = StripHeight(rows, row);
        work(row, height);
        done += height;
    }
    progress.StepProgress(100, L"");
}

void WriteRows(CRasterSource& raster, int first, int count, void* samples, PixelDataType type,
               const std::string& path) {
    ForgetReasons();
    if (raster.GetGDALDataset()->RasterIO(GF_Write, 0, first, raster.GetWidth(), count, samples,
                                          raster.GetWidth(), count, static_cast<GDALDataType>(type),
                                          raster.GetBandCount(), nullptr, 0, 0, 0,
                                          nullptr) != CE_None)
        throw Failure(path, LastReason("cannot be written"));
}

void FillRaster(CRasterSource& raster, double value, const std::string& path) {
    RowRange rows;
    rows.count = raster.GetHeight();
    const auto samplesPerRow = static_cast<std::size_t>(raster.GetWidth()) *
                               static_cast<std::size_t>(raster.GetBandCount());
    rows.bytesPerRow = samplesPerRow * sizeof(double);
    std::vector<double> samples;
    ForEachStrip(rows, L"filling", path, [&](int first, int count) {
        samples.assign(samplesPerRow * static_cast<std::size_t>(count), value);
        WriteRows(raster, first, count, samples.data(), PDT_Float64, path);
    });
}

} // namespace zelto::host
