#include "host/files/Region.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/AoiFile.h"
#include "host/files/Open.h"

#include <algorithm>

namespace zelto::host {

namespace {

std::unique_ptr<CDrawShape> MakeCornered(std::unique_ptr<CDrawRectangle> shape,
                                         const CBoundingBox& box, const std::string& option) {
    if (!(box.m_left < box.m_right && box.m_bottom < box.m_top))
        throw UsageError(option + ": left must be less than right and bottom less than top");
    shape->AddVertex(box.TopLeft());
    shape->AddVertex(box.BottomRight());
    return shape;
}

std::unique_ptr<CDrawShape> MakePolygon(const std::vector<double>& numbers,
                                        const std::string& option) {
    if (numbers.size() < 6 || numbers.size() % 2 != 0)
        throw UsageError(option + ": a polygon takes three or more pairs of x and y");
    auto polygon = std::make_unique<CDrawPolygon>();
    for (std::size_t i = 0; i < numbers.size(); i += 2)
        polygon->AddVertex({numbers[i], numbers[i + 1]});
    polygon->m_complete = true;
    return polygon;
}

/// The numbers of a text whatever parts them, as one comma-separated list.
std::string WithCommas(const std::string& text) {
    std::string list;
    bool parted = false;
    for (const char c : text) {
        if (c == ' ' || c == ',' || c == ';' || c == '\t' || c == '\n') {
            parted = !list.empty();
            continue;
        }
        list += parted ? "," : "";
        list += c;
        parted = false;
    }
    return list;
}

} // namespace

void OpenForRegion(CRasterSource& raster, const std::string& path, const RegionOptions& options) {
    const bool placed = !options.IsWholeImage();
    // A source for display keeps the rotation of its grid.
    raster.SetForDisplay(placed);
    ForgetReasons();
    const GISError error = raster.OpenSimple(Wide(path).c_str(), GIS_READONLY, placed);
    if (error != GIS_SUCCESS)
        throw Failure(path, ReasonForFailure(path, error));
}

std::unique_ptr<CDrawShape> ParseShape(const std::string& option, const std::string& text) {
    const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
    const std::size_t end = std::min(text.find_first_of(" :", start), text.size());
    const std::string kind = text.substr(start, end - start);
    const bool hasCorners = kind == "rectangle" || kind == "rect" || kind == "ellipse";
    if (!hasCorners && kind != "polygon")
        throw UsageError(option + ": '" + kind + "' is none of polygon, rectangle, ellipse");
    const std::string list = WithCommas(text.substr(std::min(end + 1, text.size())));
    if (kind == "polygon")
        return MakePolygon(ParseNumbers(option, list), option);
    const CBoundingBox box = ParseBox(option, list);
    if (kind == "ellipse")
        return MakeCornered(std::make_unique<CDrawEllipse>(), box, option);
    return MakeCornered(std::make_unique<CDrawRectangle>(), box, option);
}

std::unique_ptr<CAOISource> MakeRegion(const RegionOptions& options, const CRasterSource& raster) {
    if (options.IsWholeImage())
        return nullptr;
    auto region = std::make_unique<CAOISource>();
    if (!options.aoi.empty()) {
        OpenAoiOrFail(*region, options.aoi);
        const std::string srs = raster.GetProjectionWKT();
        // Without a reference system of its own an area is taken to be in the raster's.
        if (!srs.empty() && !region->GetSpatialReferenceWKT().empty())
            OpenAoiOrFail(*region, options.aoi, srs);
        return region;
    }
    auto shape = options.box.empty() ? ParseShape("--shape", options.shape)
                                     : MakeCornered(std::make_unique<CDrawRectangle>(),
                                                    ParseBox("--box", options.box), "--box");
    if (region->AddDrawShape(shape.get()))
        static_cast<void>(shape.release());
    return region;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the area owns the shape

} // namespace zelto::host
