#include "cli/AoiFile.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/NewFileSet.h"

#include "cli/support/Failure.h"
#include "cli/support/Open.h"
#include "cli/support/RasterFiles.h"
#include "cli/support/Reference.h"
#include "cli/support/Text.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <ogr_spatialref.h>

#include <algorithm>

namespace zelto::cli {

namespace {

VectorDataFormat FormatOf(const std::string& path) {
    const std::wstring extension = CommonFun::GetExtensionName(Wide(path));
    if (extension == L"aif")
        return VDF_AOI;
    return extension == L"shp" ? VDF_SHAPEFILE : VectorDataFormat(0);
}

} // namespace

std::string SrsAsWkt(const std::string& srs, const char* format) {
    const auto reference = ParseReference(srs);
    if (!reference)
        return {};
    const char* const options[] = {format, nullptr};
    char* text = nullptr;
    const bool written = reference->exportToWkt(&text, options) == OGRERR_NONE;
    std::string result = written && text != nullptr ? text : "";
    CPLFree(text);
    return result;
}

void OpenAoiOrFail(CAOISource& aoi, const std::string& path, const std::string& srs) {
    ForgetReasons();
    const char* target = srs.empty() ? nullptr : srs.c_str();
    const GISError error = aoi.OpenAndWarped(Wide(path).c_str(), GIS_READONLY, target);
    if (error == GIS_NOT_SUPPORTED)
        throw Failure(path, "is no file of areas of interest");
    if (error == GIS_OPEN_FAILED)
        throw Failure(path, aoi.GetSpatialReferenceWKT().empty()
                                ? "has no reference system to transform from"
                                : "cannot be transformed to " + srs);
    if (error != GIS_SUCCESS)
        throw Failure(path, ReasonForFailure(path, error));
    // A file that ends early opens with what it holds, which is not what the user asked for.
    const std::string missing = LastReason("");
    if (!missing.empty())
        throw Failure(path, missing);
}

void UseModerateRings(CAOISource& aoi) {
    constexpr double STEPS_PER_QUARTER = 5000;
    double longest = 0.0;
    for (int i = 0; i < aoi.GetDrawShapeCount(); ++i)
        if (const auto* ellipse = dynamic_cast<CDrawEllipse*>(aoi.GetDrawShape(i)))
            longest = std::max(longest, ellipse->m_width / 2);
    aoi.SetResolution(longest / STEPS_PER_QUARTER);
}

void RequireAoiFormat(const std::string& path) {
    if (FormatOf(path) == VectorDataFormat(0))
        throw UsageError(path + ": areas of interest are written as .aif or .shp");
}

void SaveAoiOrFail(CAOISource& aoi, const std::string& path) {
    UseModerateRings(aoi);
    ForgetReasons();
    const VectorDataFormat format = FormatOf(path);
    CNewFileSet files(Wide(path));
    if (!files.IsOpen())
        throw Failure(CGISDataSource::GetLastErrorText());
    const std::wstring made = files.GetTemporaryPath();
    if (aoi.SaveAs(made.c_str(), format) != GIS_SUCCESS)
        throw Failure(path, LastReason("cannot be written"));
    const std::string prj = SrsAsWkt(aoi.GetSpatialReferenceWKT(), "FORMAT=WKT1_ESRI");
    if (format == VDF_SHAPEFILE && !prj.empty()) {
        const std::wstring stem = CommonFun::GetFilePahWithoutExtension(made);
        CGISDataSource::WriteWkt(Narrow(stem + L".prj").c_str(), prj.c_str());
    }
    const bool isSet = format == VDF_SHAPEFILE;
    if (!files.Commit(isSet ? SideFilesOf(path) : std::vector<std::wstring>()))
        throw Failure(CGISDataSource::GetLastErrorText());
}

std::string KindName(const CDrawShape& shape) {
    switch (shape.m_shapeKind) {
    case SHAPE_RECTANGLE:
        return "rectangle";
    case SHAPE_ELLIPSE:
        return "ellipse";
    case SHAPE_POLYGON:
        return "polygon";
    default:
        return "other";
    }
}

} // namespace zelto::cli
