#include "zelto/aoi/AOIMask.h"
#include "zelto/raster/RasterSource.h"

#include "cli/aoi/Commands.h"
#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Message.h"
#include "host/base/Progress.h"
#include "host/base/Text.h"
#include "host/files/AoiFile.h"
#include "host/files/NewRaster.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/report/Json.h"

#include <gdal_priv.h>

namespace zelto::cli {

namespace {

/// Opens the image for its grid alone. The mask is burnt on a north-up grid, through a view of
/// the image where it is not one.
void OpenGridOrFail(CRasterSource& image, const std::string& path) {
    host::ForgetReasons();
    const GISError error = image.OpenSimple(host::Wide(path).c_str(), GIS_READONLY, true);
    if (error != GIS_SUCCESS)
        throw host::Failure(path, host::ReasonForFailure(path, error));
}

/// Damaged headers tell of grids that no disk holds; hours would pass before that shows.
void RequireFeasible(const CRasterSource& image, const std::string& path) {
    constexpr std::int64_t MOST_PIXELS = 1'000'000'000'000;
    if (image.GetHeight() > MOST_PIXELS / image.GetWidth())
        throw host::Failure(path,
                            "has too many pixels for a mask: " + std::to_string(image.GetWidth()) +
                                " x " + std::to_string(image.GetHeight()));
}

/// A mask on the image's grid.
host::NewRaster MakeMask(const std::string& path, const CRasterSource& image) {
    double geoTransform[6];
    image.GetGeoTransform(geoTransform, false);
    host::NewRasterLayout layout;
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
    host::TerminalProgress progress;
    std::int64_t inside = 0;
    CGISDataSource::ClearLastErrorText();
    const GISError error = CAOIMask::WriteRaster(&aoi, &out, inside, &progress);
    host::EndIfInterrupted();
    if (error == GIS_NOT_SUPPORTED)
        throw host::Failure(options.aoi, host::LastReason("cannot be cut to the image"));
    if (error != GIS_SUCCESS)
        throw host::Failure(options.out, host::LastReason("cannot be written"));
    if (const std::string reason = CGISDataSource::GetLastErrorText(); !reason.empty())
        host::Remark(options.aoi + ": " + reason);
    return inside;
}

} // namespace

void WriteAoiMask(const AoiMaskOptions& options) {
    host::RequireFreePath(options.out, options.overwrite, {options.aoi, options.image});
    CRasterSource image;
    OpenGridOrFail(image, options.image);
    RequireFeasible(image, options.image);
    CAOISource aoi;
    // Where one of them has no reference system both are taken to be in the same one.
    host::OpenAoiOrFail(aoi, options.aoi);
    if (!aoi.GetSpatialReferenceWKT().empty() && !image.GetProjectionWKT().empty())
        host::OpenAoiOrFail(aoi, options.aoi, image.GetProjectionWKT());
    host::UseModerateRings(aoi);
    host::NewRaster out = MakeMask(options.out, image);
    const std::int64_t inside = WriteOrFail(aoi, out.Raster(), options);
    out.Commit();
    const std::int64_t pixels = std::int64_t{image.GetWidth()} * image.GetHeight();
    if (options.json)
        host::PrintJson({{"path", options.out}, {"inside", inside}, {"pixels", pixels}});
    else
        host::Confirm(options.out + ": " + std::to_string(inside) + " of " +
                      std::to_string(pixels) + " pixels inside");
}

} // namespace zelto::cli
