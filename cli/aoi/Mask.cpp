#include "zelto/aoi/AOIMask.h"
#include "zelto/raster/RasterSource.h"

#include "cli/support/AoiFile.h"
#include "cli/support/Failure.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Json.h"
#include "cli/support/Message.h"
#include "cli/support/NewRaster.h"
#include "cli/support/Open.h"
#include "cli/support/Output.h"
#include "cli/support/Progress.h"
#include "cli/support/Text.h"

#include <gdal_priv.h>

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

/// Tells of shapes that could not be burnt beside the others.
/// @return the number of pixels inside
std::int64_t WriteOrFail(CAOISource& aoi, CRasterSource& out, const AoiMaskOptions& options) {
    TerminalProgress progress;
    std::int64_t inside = 0;
    CGISDataSource::ClearLastErrorText();
    const GISError error = CAOIMask::WriteRaster(&aoi, &out, inside, &progress);
    EndIfInterrupted();
    if (error == GIS_NOT_SUPPORTED)
        throw Failure(options.aoi, LastReason("cannot be cut to the image"));
    if (error != GIS_SUCCESS)
        throw Failure(options.out, LastReason("cannot be written"));
    if (const std::string reason = CGISDataSource::GetLastErrorText(); !reason.empty())
        Remark(options.aoi + ": " + reason);
    return inside;
}

} // namespace

void WriteAoiMask(const AoiMaskOptions& options) {
    RequireFreePath(options.out, options.overwrite, {options.aoi, options.image});
    CRasterSource image;
    OpenGridOrFail(image, options.image);
    RequireFeasible(image, options.image);
    CAOISource aoi;
    // Where one of them has no reference system both are taken to be in the same one.
    OpenAoiOrFail(aoi, options.aoi);
    if (!aoi.GetSpatialReferenceWKT().empty() && !image.GetProjectionWKT().empty())
        OpenAoiOrFail(aoi, options.aoi, image.GetProjectionWKT());
    UseModerateRings(aoi);
    NewRaster out = MakeMask(options.out, image);
    const std::int64_t inside = WriteOrFail(aoi, out.Raster(), options);
    out.Commit();
    const std::int64_t pixels = std::int64_t{image.GetWidth()} * image.GetHeight();
    if (options.json)
        PrintJson({{"path", options.out}, {"inside", inside}, {"pixels", pixels}});
    else
        Confirm(options.out + ": " + std::to_string(inside) + " of " + std::to_string(pixels) +
                " pixels inside");
}

} // namespace zelto::cli
