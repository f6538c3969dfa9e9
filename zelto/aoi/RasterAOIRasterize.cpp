#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/aoi/internal/RowMembership.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <algorithm>
#include <limits>
#include <new>
#include <numeric>
#include <span>

namespace {

constexpr const wchar_t* RASTERIZE_TITLE = L"正在处理感兴趣区域...";
constexpr const wchar_t* RASTERIZE_STEP = L"处理中...";

/// Progress of a raster of pixels, stepped pixel by pixel.
class PixelProgress {
  public:
    PixelProgress(CDataProgress* progress, int width, int height) : m_progress(progress) {
        const std::int64_t total = std::int64_t{width} * height;
        if (progress != nullptr)
            progress->BeginProgress(RASTERIZE_TITLE, ToInt(total));
    }

    /// @return false when the host cancelled
    bool Step(int pixels) {
        for (int i = 0; m_progress != nullptr && i < pixels; ++i)
            if (!m_progress->StepProgress(ToInt(++m_done), RASTERIZE_STEP))
                return false;
        return true;
    }

  private:
    static int ToInt(std::int64_t count) {
        return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
    }

    CDataProgress* m_progress;
    std::int64_t m_done = 0;
};

/// The columns from `left` on as positions.
std::vector<double> ColumnPositions(int left, int count) {
    std::vector<double> columns(static_cast<std::size_t>(std::max(count, 0)));
    std::iota(columns.begin(), columns.end(), static_cast<double>(left));
    return columns;
}

/// Walks a grid of pixels that starts at the rectangle's top-left corner, row by row.
/// @param rows the shapes; null holds nothing
/// @param sink called as sink(row, fill), takes the row's bytes by fill(span) and answers
///        whether to go on
/// @return false when the sink failed or the host cancelled
template <typename Sink>
bool RasterizeRows(const zelto::RowMembership* rows, const CRect& rect, int width, int height,
                   CDataProgress* progress, Sink sink) {
    PixelProgress pixels(progress, width, height);
    const std::vector<double> columns = ColumnPositions(rect.left, width);
    const zelto::RowPositions positions(columns);
    zelto::RowMembership::Scratch scratch;
    for (int row = 0; row < height && width > 0; ++row) {
        const auto fill = [&](std::span<unsigned char> inside) {
            if (rows != nullptr)
                rows->Row(-(static_cast<double>(row) + rect.top), positions, inside, scratch);
            else
                std::fill(inside.begin(), inside.end(), 0);
        };
        if (!sink(row, fill) || !pixels.Step(width))
            return false;
    }
    return true;
}

} // namespace

bool CRasterAOI::RasterizeAoiToBuffer(unsigned char* buffer, int width, int height,
                                      CDataProgress* progress) const {
    if (buffer == nullptr)
        return false;
    return zelto::NoThrow(false, [&] {
        return RasterizeRows(m_rows.get(), m_pixelRect, width, height, progress,
                             [&](int row, const auto& fill) {
                                 const auto size = static_cast<std::size_t>(width);
                                 fill({buffer + static_cast<std::size_t>(row) * size, size});
                                 return true;
                             });
    });
}

bool CRasterAOI::RasterizeAoiToFile(const wchar_t* path, int width, int height,
                                    CDataProgress* progress) {
    return zelto::NoThrow(false, [&] { return WriteFile(path, width, height, progress); });
}

bool CRasterAOI::WriteFile(const wchar_t* path, int width, int height, CDataProgress* progress) {
    const CBoundingBox extent = GetExtent();
    if (path == nullptr || m_raster == nullptr || width <= 0 || height <= 0)
        return false;
    DeleteTemporaryRaster();
    double geoTransform[6] = {extent.m_left, extent.GetWidth() / width,   0.0, extent.m_top,
                              0.0,           -extent.GetHeight() / height};
    // The file goes with this object, and only the file.
    CPLStringList options;
    options.SetNameValue("TFW", "NO");
    m_temporaryRaster = std::make_unique<CRasterSource>();
    m_temporaryPath = path;
    if (m_temporaryRaster->CreateRaster(RDF_GTiff, path, width, height, 1, PDT_Byte, geoTransform,
                                        m_raster->GetProjectionWKT().c_str(),
                                        options.List()) != GIS_SUCCESS ||
        m_temporaryRaster->GetGDALDataset() == nullptr)
        return false;
    GDALRasterBand* band = m_temporaryRaster->GetGDALDataset()->GetRasterBand(1);
    const auto size = static_cast<std::size_t>(width);
    const std::unique_ptr<unsigned char[]> inside(new (std::nothrow) unsigned char[size]);
    if (inside == nullptr)
        return false;
    zelto::GdalWatch watch;
    const bool written = RasterizeRows(
        m_rows.get(), m_pixelRect, width, height, progress, [&](int row, const auto& fill) {
            fill({inside.get(), size});
            return band->RasterIO(GF_Write, 0, row, width, 1, inside.get(), width, 1, GDT_Byte, 0,
                                  0, nullptr) == CE_None;
        });
    // What the blocks of the file could not take is found when they leave the cache.
    return watch.Succeeded(written && band->FlushCache(false) == CE_None, CommonFun::U2M(path));
}

void CRasterAOI::DeleteTemporaryRaster() {
    if (m_temporaryRaster == nullptr)
        return;
    m_temporaryRaster->Close();
    m_temporaryRaster.reset();
    CRasterSource::DeleteFileW(m_temporaryPath.c_str());
    m_temporaryPath.clear();
}
