#include "cli/render/View.h"

#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Region.h"

#include <algorithm>
#include <cmath>

namespace zelto::cli {

namespace {

constexpr int DEFAULT_SIDE = 1024;
constexpr int LARGEST_SIDE = 65500;

/// 0 for a side that was left out.
struct Size {
    int width = 0;
    int height = 0;
};

int ParseSide(const std::string& text, const std::string& whole) {
    if (text.empty())
        return 0;
    const std::vector<double> sides = host::ParseNumbers("--size", text);
    const double side = sides.front();
    if (sides.size() != 1 || !(side >= 1 && side <= LARGEST_SIDE) || side != std::floor(side))
        throw host::UsageError("--size: '" + whole + "' is not WxH with sides of 1 to " +
                               std::to_string(LARGEST_SIDE) + " pixels");
    return static_cast<int>(side);
}

Size ParseSize(const std::string& text) {
    const std::size_t times = text.find('x');
    const std::string height = times == std::string::npos ? "" : text.substr(times + 1);
    const Size size = {ParseSide(text.substr(0, times), text), ParseSide(height, text)};
    if (!text.empty() && size.width == 0 && size.height == 0)
        throw host::UsageError("--size: give at least one side, as 1024x768, 1024x or x768");
    return size;
}

/// The side that keeps the shape of a box, at least one pixel.
int MatchingSide(int given, double givenLength, double length) {
    const double side = given * length / givenLength;
    if (!(side <= LARGEST_SIDE))
        throw host::UsageError("--size: the box is too long and narrow for that size");
    return std::max(static_cast<int>(std::lround(side)), 1);
}

/// Completes a size to the shape of a box.
Size CompleteSize(Size size, const CBoundingBox& box, int defaultSide) {
    const double width = box.GetWidth();
    const double height = box.GetHeight();
    if (!(width > 0) || !(height > 0) || !std::isfinite(width) || !std::isfinite(height))
        throw host::UsageError("the box has no area");
    if (size.width == 0 && size.height == 0)
        (width >= height ? size.width : size.height) = defaultSide;
    if (size.width == 0)
        size.width = MatchingSide(size.height, height, width);
    if (size.height == 0)
        size.height = MatchingSide(size.width, width, height);
    return size;
}

View CenterView(const CRasterSource& source, const ViewOptions& options, Size size) {
    const std::vector<double> center = host::ParseNumbers("--center", options.center, 2);
    const double scale = options.scale > 0 ? options.scale : std::fabs(source.GetXResolution());
    size.width = size.width > 0 ? size.width : (size.height > 0 ? size.height : DEFAULT_SIDE);
    size.height = size.height > 0 ? size.height : size.width;
    const double dx = scale * size.width / 2;
    const double dy = scale * size.height / 2;
    return {
        {center[0] - dx, center[1] + dy, center[0] + dx, center[1] - dy}, size.width, size.height};
}

} // namespace

View ChooseView(const CRasterSource& source, const ViewOptions& options) {
    const Size size = ParseSize(options.size);
    if (!options.center.empty()) {
        if (!options.box.empty())
            throw host::UsageError("--box and --center contradict each other");
        return CenterView(source, options, size);
    }
    if (options.scale != 0.0)
        throw host::UsageError("--scale goes with --center");
    const CBoundingBox box =
        options.box.empty() ? source.GetExtent() : host::ParseBox("--box", options.box);
    const bool hasArea = box.GetLeft() < box.GetRight() && box.GetBottom() < box.GetTop();
    if (!hasArea && options.box.empty())
        throw host::Failure(host::Narrow(source.GetFilePath()), "its place has no area");
    if (!hasArea)
        throw host::UsageError("--box: left must be less than right and bottom less than top");
    const int longest = std::max(source.GetWidth(), source.GetHeight());
    const int side = options.box.empty() ? std::min(longest, DEFAULT_SIDE) : DEFAULT_SIDE;
    const Size complete = CompleteSize(size, box, side);
    return {box, complete.width, complete.height};
}

View ChooseCrop(const CRasterSource& source, const std::string& aoi, const ViewOptions& options) {
    host::RegionOptions region;
    region.aoi = aoi;
    const CBoundingBox area = host::MakeRegion(region, source)->GetExtent();
    const CBoundingBox image = source.GetExtent();
    const double width = std::fabs(source.GetXResolution());
    const double height = std::fabs(source.GetYResolution());
    // A hair beyond a pixel's edge is rounding, not another pixel.
    constexpr double HAIR = 1e-6;
    const auto before = [](double pixels) { return std::floor(pixels + HAIR); };
    const auto after = [](double pixels) { return std::ceil(pixels - HAIR); };
    const double first = std::max(before((area.GetLeft() - image.GetLeft()) / width), 0.0);
    const double last = std::min(after((area.GetRight() - image.GetLeft()) / width),
                                 static_cast<double>(source.GetWidth()));
    const double top = std::max(before((image.GetTop() - area.GetTop()) / height), 0.0);
    const double bottom = std::min(after((image.GetTop() - area.GetBottom()) / height),
                                   static_cast<double>(source.GetHeight()));
    if (!(first < last && top < bottom))
        throw host::Failure(aoi, "it lies beside the image");
    const CBoundingBox box(image.GetLeft() + first * width, image.GetTop() - top * height,
                           image.GetLeft() + last * width, image.GetTop() - bottom * height);
    const int longest = static_cast<int>(std::max(last - first, bottom - top));
    const Size complete =
        CompleteSize(ParseSize(options.size), box, std::min(longest, DEFAULT_SIDE));
    return {box, complete.width, complete.height};
}

} // namespace zelto::cli
