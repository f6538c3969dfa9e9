#include "cli/GeorefPoints.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/ChangedRaster.h"
#include "host/files/Reference.h"
#include "host/report/Csv.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>

namespace zelto::cli {

namespace {

ControlPoint ParsePoint(const std::string& option, const std::string& text) {
    const std::vector<double> numbers = host::ParseNumbers(option, text, 4);
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

void AddFromFile(std::vector<ControlPoint>& points, const std::string& file) {
    host::ForEachCsvLine(file, [&](const std::string& line, int number) {
        if (line.front() == '#' || (number == 1 && host::IsCsvHeading(line)))
            return;
        try {
            points.push_back(ParsePoint(file, line.substr(0, line.find_last_not_of(" \r") + 1)));
        } catch (const host::UsageError&) {
            throw host::Failure(file,
                                "line " + std::to_string(number) + ": expected column,row,x,y");
        }
    });
}

/// Whether points, each by two of its coordinates, do not all lie on one line.
bool SpanArea(const std::vector<ControlPoint>& points, double ControlPoint::*first,
              double ControlPoint::*second) {
    const ControlPoint& origin = points.front();
    const auto distance = [&](const ControlPoint& point) {
        return std::hypot(point.*first - origin.*first, point.*second - origin.*second);
    };
    const ControlPoint& end =
        *std::max_element(points.begin(), points.end(),
                          [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
    return std::any_of(points.begin(), points.end(), [&](const ControlPoint& point) {
        return (end.*first - origin.*first) * (point.*second - origin.*second) !=
               (point.*first - origin.*first) * (end.*second - origin.*second);
    });
}

/// Whether the points place an image: they span an area in pixels and on the ground.
bool SpanArea(const std::vector<ControlPoint>& points) {
    return SpanArea(points, &ControlPoint::column, &ControlPoint::row) &&
           SpanArea(points, &ControlPoint::x, &ControlPoint::y);
}

/// A world file would place a GeoTIFF elsewhere.
void RemoveWorldFile(GDALDataset& dataset, const host::ChangedRaster& file) {
    std::error_code error;
    if (EQUAL(dataset.GetDriverName(), "GTiff"))
        std::filesystem::remove(std::filesystem::path(file.Path()).replace_extension("tfw"), error);
    if (error)
        throw file.Fail("its world file cannot be removed: " + error.message());
}

} // namespace

std::vector<ControlPoint> ReadControlPoints(const std::vector<std::string>& texts,
                                            const std::string& file) {
    std::vector<ControlPoint> points;
    points.reserve(texts.size());
    for (const std::string& text : texts)
        points.push_back(ParsePoint("--gcp", text));
    if (!file.empty())
        AddFromFile(points, file);
    if (points.size() < 3 || !SpanArea(points))
        throw host::UsageError(
            "--gcp: three points or more that are not on one line place an image");
    return points;
}

void SetControlPoints(CRasterSource& raster, const std::vector<ControlPoint>& points,
                      const std::string& srs, const host::ChangedRaster& file) {
    std::vector<GDAL_GCP> list(points.size());
    GDALInitGCPs(static_cast<int>(list.size()), list.data());
    for (std::size_t i = 0; i < points.size(); ++i) {
        CPLFree(list[i].pszId);
        list[i].pszId = CPLStrdup(std::to_string(i + 1).c_str());
        list[i].dfGCPPixel = points[i].column;
        list[i].dfGCPLine = points[i].row;
        list[i].dfGCPX = points[i].x;
        list[i].dfGCPY = points[i].y;
    }
    const auto reference = host::ParseReference(srs);
    GDALDataset& dataset = *raster.GetGDALDataset();
    GdalWatch watch;
    const CPLErr result = dataset.SetGCPs(static_cast<int>(list.size()), list.data(),
                                          reference ? &*reference : nullptr);
    GDALDeinitGCPs(static_cast<int>(list.size()), list.data());
    if (!watch.Succeeded(result, file.Path()))
        throw file.Fail("the format cannot store control points");
    RemoveWorldFile(dataset, file);
}

} // namespace zelto::cli
