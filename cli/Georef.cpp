#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/GeorefPoints.h"
#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/ChangedRaster.h"
#include "host/files/Open.h"

#include <CLI/CLI.hpp>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <unistd.h>

namespace zelto::cli {

namespace {

using GeoTransform = std::array<double, 6>;

struct GeorefOptions {
    std::string path;
    std::string box;
    std::string geoTransform;
    std::string srs;
    std::vector<std::string> points;
    std::string pointFile;
    bool clearPoints = false;

    bool HasPoints() const { return !points.empty() || !pointFile.empty(); }
};

/// The box divided into the image's pixels.
GeoTransform FromBox(const std::string& text, const CRasterSource& raster) {
    const std::vector<double> sides = host::ParseNumbers("--box", text, 4);
    if (!(sides[0] < sides[2] && sides[3] < sides[1]))
        throw host::UsageError("--box: left must be below right and bottom below top");
    return {sides[0], (sides[2] - sides[0]) / raster.GetWidth(), 0.0, sides[1],
            0.0,      (sides[3] - sides[1]) / raster.GetHeight()};
}

GeoTransform FromTerms(const std::string& text) {
    const std::vector<double> terms = host::ParseNumbers("--geotransform", text, 6);
    if (terms[1] * terms[5] == terms[2] * terms[4])
        throw host::UsageError("--geotransform: its pixels have no area");
    GeoTransform geoTransform;
    std::copy(terms.begin(), terms.end(), geoTransform.begin());
    return geoTransform;
}

std::optional<GeoTransform> ChoosePlace(const GeorefOptions& options, const CRasterSource& raster) {
    if (!options.box.empty())
        return FromBox(options.box, raster);
    if (!options.geoTransform.empty())
        return FromTerms(options.geoTransform);
    return std::nullopt;
}

/// The system of the image, or of the control points that place it.
std::string ReferenceOf(const CRasterSource& raster) {
    std::string wkt = raster.GetProjectionWKT();
    if (wkt.empty())
        wkt = raster.GetGDALDataset()->GetGCPProjection();
    return wkt;
}

/// Writes the system; the engine keeps a system that the file cannot hold, a user wants to know.
void SetReference(CRasterSource& raster, const std::string& srs, const host::ChangedRaster& file) {
    host::ForgetReasons();
    raster.SetProjection(srs.c_str());
    if (CPLGetLastErrorType() == CE_Failure)
        throw file.Fail("the format cannot store a reference system");
}

void ClearPoints(CRasterSource& raster, const GeorefOptions& options,
                 const host::ChangedRaster& file) {
    // Some formats keep one system for both, which goes with the points.
    const std::string srs = ReferenceOf(raster);
    host::ForgetReasons();
    if (raster.ClearGCP(true) != GIS_SUCCESS)
        throw file.Fail("its control points cannot be removed");
    if (options.srs.empty() && !srs.empty())
        SetReference(raster, srs, file);
}

/// The world file that GDAL wrote beside a GeoTIFF when it was made, but does not keep up.
void UpdateWorldFile(CRasterSource& raster, const host::ChangedRaster& file,
                     GeoTransform& geoTransform) {
    const std::string& path = file.Path();
    std::error_code ignored;
    if (EQUAL(raster.GetGDALDataset()->GetDriverName(), "GTiff") &&
        std::filesystem::exists(std::filesystem::path(path).replace_extension("tfw"), ignored) &&
        !CGISDataSource::WriteGeotransformToWorldFile(path.c_str(), geoTransform.data()))
        throw file.Fail("its world file cannot be written");
}

void Place(CRasterSource& raster, GeoTransform& geoTransform, const host::ChangedRaster& file) {
    host::ForgetReasons();
    if (raster.GetGCPCount(true) > 0)
        throw file.Fail("control points place it; --clear-points removes them");
    if (raster.SetGeoTransform(geoTransform.data(), true) != GIS_SUCCESS)
        throw file.Fail("the format cannot store a place");
    UpdateWorldFile(raster, file, geoTransform);
}

/// The TIFF library breaks down when it writes a header anew that tells of more blocks than the
/// file can list.
void RequireSoundHeader(const CRasterSource& raster, const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || !EQUAL(raster.GetGDALDataset()->GetDriverName(), "GTiff"))
        return;
    const CRasterBand& band = *raster.GetRasterBand(0);
    const std::uint64_t columns = (band.GetWidth() - 1) / band.GetBlockXSize() + 1;
    const std::uint64_t rows = (band.GetHeight() - 1) / band.GetBlockYSize() + 1;
    if (columns > size / rows)
        throw host::Failure(path, "its header tells of more pixels than it can hold");
}

/// Throws Failure where the raster cannot be opened, or is protected: the engine opens that for
/// reading. It is opened for a change as a copy only.
void RequireChangeable(const std::string& path) {
    CRasterSource raster;
    host::OpenOrFail(raster, path);
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored) &&
        faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
        throw host::Failure(path, std::strerror(errno));
    RequireSoundHeader(raster, path);
}

void Georef(const GeorefOptions& options) {
    if (options.box.empty() && options.geoTransform.empty() && options.srs.empty() &&
        !options.clearPoints && !options.HasPoints())
        throw host::UsageError("give --box, --geotransform, --gcp, --srs or --clear-points");
    std::vector<ControlPoint> points;
    if (options.HasPoints())
        points = ReadControlPoints(options.points, options.pointFile);
    if (!options.srs.empty() && !CCoordinateAlgorithm::IsValidCoordinate(options.srs.c_str()))
        throw host::Failure(options.srs, "not a reference system");
    RequireChangeable(options.path);
    host::ChangedRaster file(options.path);
    CRasterSource raster;
    host::OpenOrFail(raster, file.Path(), GIS_UPDATE);
    std::optional<GeoTransform> place = ChoosePlace(options, raster);
    if (options.clearPoints)
        ClearPoints(raster, options, file);
    if (place)
        Place(raster, *place, file);
    if (!points.empty())
        SetControlPoints(raster, points, options.srs.empty() ? ReferenceOf(raster) : options.srs,
                         file);
    else if (!options.srs.empty())
        SetReference(raster, options.srs, file);
    host::ForgetReasons();
    raster.Close();
    if (CPLGetLastErrorType() == CE_Failure)
        throw file.Fail("cannot be written");
    file.Commit();
}

} // namespace

void AddGeoref(CLI::App& program) {
    auto* georef = program.add_subcommand("georef", "say where an image lies");
    auto options = std::make_shared<GeorefOptions>();
    georef->add_option("FILE", options->path, "raster file")->required();
    auto* box = georef->add_option("--box", options->box,
                                   "left,top,right,bottom of the whole image, north up");
    auto* terms =
        georef
            ->add_option("--geotransform", options->geoTransform,
                         "x,width,row rotation,y,column rotation,height: GDAL's six terms")
            ->excludes(box);
    auto* point = georef
                      ->add_option("--gcp", options->points,
                                   "column,row,x,y of a ground control point; repeat for three or "
                                   "more, which take the place of all others")
                      ->expected(1)
                      ->take_all();
    auto* pointFile = georef->add_option("--gcp-file", options->pointFile,
                                         "CSV file with a column,row,x,y per line");
    for (CLI::Option* each : {point, pointFile})
        each->excludes(box)->excludes(terms);
    georef->add_option("--srs", options->srs, "reference system of these coordinates");
    georef->add_flag("--clear-points", options->clearPoints, "remove the ground control points")
        ->excludes(point)
        ->excludes(pointFile);
    georef->footer(
        "The pixels are not touched. The file is changed in a copy that takes its place.");
    georef->callback([options] { Georef(*options); });
}

} // namespace zelto::cli
