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
#include <numeric>
#include <span>
#include <vector>

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

/// The rows of a grid of pixels that starts at a rectangle's top-left corner.
class GridRows {
  public:
    /// @param rows the shapes; null holds nothing
    GridRows(const zelto::RowMembership* rows, const CRect& rect, int width)
        : m_rows(rows),
          m_top(rect.top),
          m_columns(ColumnPositions(rect.left, width)),
          m_positions(m_columns) {}

    /// Marks what is inside of a row, into a byte for each pixel.
    void Fill(int row, unsigned char* target) {
        const std::span<unsigned char> inside(target, m_columns.size());
        if (m_rows != nullptr)
            m_rows->Row(-(static_cast<double>(row) + m_top), m_positions, inside, m_scratch);
        else
            std::fill(inside.begin(), inside.end(), 0);
    }

  private:
    const zelto::RowMembership* m_rows;
    int m_top;
    std::vector<double> m_columns;
    zelto::RowPositions m_positions; ///< refers to the columns
    zelto::RowMembership::Scratch m_scratch;
};

} // namespace

bool CRasterAOI::RasterizeAoiToBuffer(unsigned char* buffer, int width, int height,
                                      CDataProgress* progress) const {
    if (buffer == nullptr)
        return false;
    return zelto::NoThrow(false, [&] {
        PixelProgress pixels(progress, width, height);
        GridRows rows(m_rows.get(), m_pixelRect, width);
        for (int row = 0; row < height && width > 0; ++row) {
            rows.Fill(row,
                      buffer + static_cast<std::size_t>(row) * static_cast<std::size_t>(width));
            if (!pixels.Step(width))
                return false;
        }
        return true;
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
                                        options.List()) != GIS_SUCCESS)
        return false;
    GDALRasterBand* band = m_temporaryRaster->GetGDALDataset()->GetRasterBand(1);
    std::vector<unsigned char> inside(static_cast<std::size_t>(width));
    zelto::GdalWatch watch;
    PixelProgress pixels(progress, width, height);
    GridRows rows(m_rows.get(), m_pixelRect, width);
    bool written = true;
    for (int row = 0; row < height && written; ++row) {
        rows.Fill(row, inside.data());
        written = band->RasterIO(GF_Write, 0, row, width, 1, inside.data(), width, 1, GDT_Byte, 0,
                                 0, nullptr) == CE_None &&
                  pixels.Step(width);
    }
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
