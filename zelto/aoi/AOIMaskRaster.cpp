#include "zelto/aoi/AOIMask.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/internal/MaskRaster.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>
#include <ogr_geometry.h>

#include <numeric>

namespace {

constexpr const wchar_t* TITLE = L"正在处理感兴趣区域...";

/// Writes rows of a mask into a band and counts what is inside.
class MaskWriter {
  public:
    MaskWriter(GDALRasterBand& band, std::string path, CDataProgress* progress)
        : m_band(band), m_path(std::move(path)), m_progress(progress) {
        if (m_progress != nullptr)
            m_progress->BeginProgress(TITLE, band.GetYSize());
    }

    /// @return false when the rows cannot be written and when the host cancelled
    bool Write(int firstRow, int rows, const unsigned char* mask) {
        // GDAL takes what it writes as a pointer to change; it changes nothing.
        auto* bytes = const_cast<unsigned char*>(mask);
        zelto::GdalWatch watch;
        if (!watch.Succeeded(HasRowsAsBlocks() ? WriteBlocks(firstRow, rows, bytes)
                                               : WriteWindow(firstRow, rows, bytes),
                             m_path))
            return false;
        const std::size_t pixels = Width() * static_cast<std::size_t>(rows);
        m_inside = std::accumulate(mask, mask + pixels, m_inside);
        return m_progress == nullptr || m_progress->StepProgress(firstRow + rows, L"");
    }

    __int64 Inside() const { return m_inside; }

  private:
    std::size_t Width() const { return static_cast<std::size_t>(m_band.GetXSize()); }
    bool HasRowsAsBlocks() const {
        int width = 0;
        int height = 0;
        m_band.GetBlockSize(&width, &height);
        return width == m_band.GetXSize() && height == 1 && m_band.GetRasterDataType() == GDT_Byte;
    }
    /// Straight into the file, rather than through GDAL's cache of blocks.
    CPLErr WriteBlocks(int firstRow, int rows, unsigned char* bytes) {
        for (int row = 0; row < rows; ++row)
            if (const CPLErr error = m_band.WriteBlock(
                    0, firstRow + row, bytes + static_cast<std::size_t>(row) * Width());
                error != CE_None)
                return error;
        return CE_None;
    }
    CPLErr WriteWindow(int firstRow, int rows, unsigned char* bytes) {
        const int width = m_band.GetXSize();
        return m_band.RasterIO(GF_Write, 0, firstRow, width, rows, bytes, width, rows, GDT_Byte, 0,
                               0, nullptr);
    }

    GDALRasterBand& m_band;
    std::string m_path;
    CDataProgress* m_progress;
    __int64 m_inside = 0;
};

} // namespace

GISError CAOIMask::WriteRaster(CAOISource* aoi, CRasterSource* target, __int64& inside,
                               CDataProgress* progress) {
    return zelto::Operation(GIS_FAILED, [&] {
        GDALDataset* dataset = target != nullptr ? target->GetGDALDataset() : nullptr;
        if (dataset == nullptr || dataset->GetRasterCount() == 0) {
            zelto::SetLastError("there is no raster to write the mask into");
            return GIS_FAILED;
        }
        CAOIMask mask;
        mask.SetGrid(target->GetExtent(), target->GetWidth(), target->GetHeight());
        const Coverage coverage = mask.PlaceSource(aoi);
        if (coverage == Coverage::Unknown)
            return GIS_NOT_SUPPORTED;
        MaskWriter writer(*dataset->GetRasterBand(1), CommonFun::U2M(target->GetFilePath()),
                          progress);
        const zelto::MaskSink write = [&](int firstRow, int rows, const unsigned char* bytes) {
            return writer.Write(firstRow, rows, bytes);
        };
        const zelto::MaskGrid grid{mask.m_box, mask.m_width, mask.m_height, mask.m_pixelWidth,
                                   mask.m_pixelHeight};
        const bool written = coverage == Coverage::Part
                                 ? zelto::BurnGrownRows(*mask.m_clipped, grid, write)
                                 : zelto::FillRows(coverage == Coverage::All ? 1 : 0, grid, write);
        inside = writer.Inside();
        return written ? GIS_SUCCESS : GIS_FAILED;
    });
}

/// What the shapes of an area cover of the grid; all of it without an area.
CAOIMask::Coverage CAOIMask::PlaceSource(CAOISource* aoi) {
    if (aoi == nullptr)
        return Coverage::All;
    if (OGRGeometry* geometry = aoi->GetOGRGeometries())
        return Place(*geometry);
    return aoi->GetDrawShapeCount() == 0 ? Coverage::Nothing : Coverage::Unknown;
}
