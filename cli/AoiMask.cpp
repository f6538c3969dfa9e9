#include "zelto/aoi/AOIMask.h"

#include "zelto/raster/RasterSource.h"

#include "cli/AoiFile.h"
#include "cli/support/Failure.h"
#include "cli/support/Json.h"
#include "cli/support/Message.h"
#include "cli/support/NewRaster.h"
#include "cli/support/Open.h"
#include "cli/support/Printable.h"
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

/// Damaged headers tell of grids that no disk holds; hours would pass before that shows.
void RequireFeasible(const CRasterSource& image, const std::string& path) {
    constexpr std::int64_t MOST_PIXELS = 1'000'000'000'000;
    if (image.GetHeight() > MOST_PIXELS / image.GetWidth())
        throw Failure(path, "has too many pixels for a mask: " + std::to_string(image.GetWidth()) +
                                " x " + std::to_string(image.GetHeight()));
}

/// A mask on the image's grid.
NewRaster MakeMask(const std::string& path, const CRasterSource& image) {
    double geoTransform[6];
    image.GetGeoTransform(geoTransform, false);
    NewRasterLayout layout;
    layout.format = RDF_GTiff;
    layout.width = image.GetWidth();
    layout.height = image.GetHeight();
    layout.geoTransform = geoTransform;
    layout.wkt = image.GetProjectionWKT();
    layout.options = {"TFW=NO", "COMPRESS=DEFLATE"};
    return {path, layout};
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
            throw Interruption();
    }
    return inside;
}

/// Tells of shapes that could not be burnt beside the others.
void TellWhatIsMissing(const CAOIMask& mask, const CAOISource& aoi, const std::string& path) {
    const std::string reason = CGISDataSource::GetLastErrorText();
    if (!mask.HasMask() && aoi.GetDrawShapeCount() > 0)
        throw Failure(path, reason);
    if (!reason.empty())
        Tell(path + ": " + reason);
}

} // namespace

void WriteAoiMask(const AoiMaskOptions& options) {
    CRasterSource image;
    OpenGridOrFail(image, options.image);
    RequireFeasible(image, options.image);
    CAOISource aoi;
    // Where one of them has no reference system both are taken to be in the same one.
    OpenAoiOrFail(aoi, options.aoi);
    if (!aoi.GetSpatialReferenceWKT().empty() && !image.GetProjectionWKT().empty())
        OpenAoiOrFail(aoi, options.aoi, image.GetProjectionWKT());
    UseModerateRings(aoi);
    CGISDataSource::ClearLastErrorText();
    const CAOIMask mask(&aoi, image.GetExtent(), image.GetWidth(), image.GetHeight());
    TellWhatIsMissing(mask, aoi, options.aoi);
    NewRaster out = MakeMask(options.out, image);
    const std::int64_t inside = WriteOrFail(mask, out.Raster(), options.out);
    out.Commit();
    const std::int64_t pixels = std::int64_t{image.GetWidth()} * image.GetHeight();
    if (options.json)
        PrintJson({{"file", options.out}, {"inside", inside}, {"pixels", pixels}});
    else
        std::cout << Printable(options.out) << ": " << inside << " of " << pixels
                  << " pixels inside\n";
}

} // namespace zelto::cli
