#include "host/files/PolygonBuild.h"

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/vector/VectorLayer.h"

#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/files/NewVector.h"
#include "host/files/Open.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zelto::host {

namespace {

CRasterBand& BandNumbered(const CRasterSource& raster, int number, const char* option) {
    CRasterBand* const band = raster.GetRasterBand(number - 1);
    if (band == nullptr)
        throw UsageError(std::string(option) + ": bands are numbered from 1 to " +
                         std::to_string(raster.GetBandCount()));
    return *band;
}

OGRLayer& MakeLayer(NewVector& file, const CRasterSource& raster, PixelDataType type,
                    const std::string& field) {
    OGRLayer& layer = file.MakeLayer(raster.GetProjectionWKT(), wkbPolygon);
    OGRFieldDefn definition(field.c_str(), type == PDT_UInt32 ? OFTInteger64 : OFTInteger);
    if (layer.CreateField(&definition) != OGRERR_NONE)
        throw Failure(file.Path(), LastReason("cannot have a field '" + field + "'"));
    return layer;
}

/// The pixels that have data, as GDAL tells them; null where all have.
std::unique_ptr<CRasterBand> DataMask(const CRasterBand& band) {
    if (!band.IsHaveNoData())
        return nullptr;
    return std::make_unique<CRasterBand>(false, band.GetGDALBand()->GetMaskBand());
}

/// Whether all of a band can be read. A large one is not tried: it counts as unreadable.
bool IsReadable(CRasterBand& band) {
    constexpr std::int64_t LARGE = std::int64_t{1} << 28;
    GDALRasterBand& pixels = *band.GetGDALBand();
    const int width = pixels.GetXSize();
    if (std::int64_t{width} * pixels.GetYSize() > LARGE)
        return false;
    std::vector<unsigned char> row(static_cast<std::size_t>(width));
    for (int y = 0; y < pixels.GetYSize(); ++y)
        if (pixels.RasterIO(GF_Read, 0, y, width, 1, row.data(), width, 1, GDT_Byte, 0, 0,
                            nullptr) != CE_None)
            return false;
    return true;
}

} // namespace

std::int64_t BuildPolygons(CRasterSource& raster, const std::string& path, const std::string& out,
                           const PolygonOptions& options, CDataProgress& progress) {
    CRasterBand& band = BandNumbered(raster, options.band, "--band");
    std::unique_ptr<CRasterBand> dataMask;
    CRasterBand* mask = nullptr;
    if (options.mask != 0) {
        mask = &BandNumbered(raster, options.mask, "--mask");
    } else if (!options.keepNoData) {
        dataMask = DataMask(band);
        mask = dataMask.get();
    }
    NewVector file(out);
    OGRLayer& ogrLayer = MakeLayer(file, raster, band.GetDataType(), options.field);
    CVectorLayer layer(&ogrLayer);
    char eight[] = "8CONNECTED=8";
    char* gdalOptions[] = {options.eight ? eight : nullptr, nullptr};
    // Databases would otherwise secure every polygon on the disk by itself.
    const bool inTransaction = ogrLayer.StartTransaction() == OGRERR_NONE;
    ForgetReasons();
    if (CRasterAlgorithm::RasterPolygonize(&band, mask, &layer, 0, gdalOptions, &progress, L"") !=
        GIS_SUCCESS) {
        const std::string reason = LastReason("cannot be polygonized");
        if (Interrupted())
            throw Failure(path, "interrupted");
        // GDAL does not tell which side failed.
        const bool isImage = !IsReadable(band) || (mask != nullptr && !IsReadable(*mask));
        throw Failure(isImage ? path : out, reason);
    }
    if (inTransaction && ogrLayer.CommitTransaction() != OGRERR_NONE)
        throw Failure(out, LastReason("cannot be written"));
    return file.Finish();
}

} // namespace zelto::host
