#include "zelto/aoi/AOIMask.h"

#include "zelto/raster/RasterSource.h"

#include "cli/AoiFile.h"
#include "cli/support/Failure.h"
#include "cli/support/Json.h"
#include "cli/support/Open.h"
#include "cli/support/Progress.h"
#include "cli/support/Text.h"

#include <gdal_priv.h>

#include <iostream>
#include <vector>

namespace zelto::cli {

namespace {

/// Opens the image for its grid alone. The mask is burnt on a north-up grid, through a view of
/// the image where it is not one.
void OpenGridOrFail(CRasterSource& image, const std::string& path) {
    ForgetReasons();
    const GISError error = image.OpenSimple(Wide(path).c_str(), GIS_READONLY, true);
    if (error != GIS_SUCCESS)
        throw Failure(path, ReasonForFailure(path, error));
}

void CreateOrFail(CRasterSource& out, const std::string& path, const CRasterSource& image) {
    double geoTransform[6];
    image.GetGeoTransform(geoTransform, false);
    CPLStringList creation;
    creation.SetNameValue("TFW", "NO");
    creation.SetNameValue("COMPRESS", "DEFLATE");
    ForgetReasons();
    if (out.CreateRaster(RDF_GTiff, Wide(path).c_str(), image.GetWidth(), image.GetHeight(), 1,
                         PDT_Byte, geoTransform, image.GetProjectionWKT().c_str(),
                         creation.List()) != GIS_SUCCESS)
        throw Failure(path, LastReason("cannot be created"));
}

/// Writes the mask row by row.
/// @return the number of pixels inside
std::int64_t WriteOrFail(const CAOIMask& mask, CRasterSource& out, const std::string& path) {
    TerminalProgress progress;
    progress.BeginProgress(L"mask", out.GetHeight());
    GDALRasterBand* band = out.GetGDALDataset()->GetRasterBand(1);
    std::vector<unsigned char> line(static_cast<std::size_t>(out.GetWidth()));
    std::int64_t inside = 0;
    for (int row = 0; row < out.GetHeight(); ++row) {
        for (int column = 0; column < out.GetWidth(); ++column) {
            const bool in = mask.IsPointIn(column, row);
            line[static_cast<std::size_t>(column)] = in ? 1 : 0;
            inside += in ? 1 : 0;
        }
        if (band->RasterIO(GF_Write, 0, row, out.GetWidth(), 1, line.data(), out.GetWidth(), 1,
                           GDT_Byte, 0, 0, nullptr) != CE_None)
            throw Failure(path, LastReason("cannot be written"));
        if (!progress.StepProgress(row + 1, nullptr))
            throw Failure(path, "interrupted");
    }
    return inside;
}

/// Tells of shapes that could not be burnt beside the others.
void TellWhatIsMissing(const CAOIMask& mask, const CAOISource& aoi, const std::string& path) {
    const std::string reason = CGISDataSource::GetLastErrorText();
    if (!mask.HasMask() && aoi.GetDrawShapeCount() > 0)
        throw Failure(path, reason);
    if (!reason.empty())
        std::cerr << "zelto: " << path << ": " << reason << '\n';
}

} // namespace

void WriteAoiMask(const AoiMaskOptions& options) {
    CRasterSource image;
    OpenGridOrFail(image, options.image);
    CAOISource aoi;
    // Where one of them has no reference system both are taken to be in the same one.
    OpenAoiOrFail(aoi, options.aoi);
    if (!aoi.GetSpatialReferenceWKT().empty() && !image.GetProjectionWKT().empty())
        OpenAoiOrFail(aoi, options.aoi, image.GetProjectionWKT());
    UseModerateRings(aoi);
    CGISDataSource::ClearLastErrorText();
    const CAOIMask mask(&aoi, image.GetExtent(), image.GetWidth(), image.GetHeight());
    TellWhatIsMissing(mask, aoi, options.aoi);
    CRasterSource out;
    CreateOrFail(out, options.out, image);
    const std::int64_t inside = WriteOrFail(mask, out, options.out);
    out.Close();
    const std::int64_t pixels = std::int64_t{image.GetWidth()} * image.GetHeight();
    if (options.json)
        PrintJson({{"file", options.out}, {"inside", inside}, {"pixels", pixels}});
    else
        std::cout << options.out << ": " << inside << " of " << pixels << " pixels inside\n";
}

} // namespace zelto::cli
