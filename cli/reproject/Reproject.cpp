#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/reproject/Commands.h"
#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Reference.h"
#include "host/report/Json.h"
#include "host/report/Table.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <iostream>

namespace zelto::cli {

EdgeSteps ParseSteps(const std::string& text, const CBoundingBox& box) {
    if (text.empty())
        return {box.GetWidth() / 20, box.GetHeight() / 20};
    const auto numbers = host::ParseNumbers("--step", text);
    if (numbers.size() > 2)
        throw host::UsageError("--step: expected one number or two");
    return {numbers.front(), numbers.back()};
}

void OpenOnOwnGrid(CRasterSource& raster, const std::string& path) {
    // A source for display keeps rotated grids as they are.
    raster.SetForDisplay(true);
    host::ForgetReasons();
    const GISError error = raster.OpenSimple(host::Wide(path).c_str(), GIS_READONLY, true);
    if (error != GIS_SUCCESS)
        throw host::Failure(path, host::ReasonForFailure(path, error));
}

std::unique_ptr<CReproject> BindOrFail(CGISDataSource& source, const std::string& sourceName,
                                       const std::string& targetSrs) {
    host::RequireReference(targetSrs);
    if (source.GetSpatialReferenceWKT().empty())
        throw host::Failure(sourceName, "has no spatial reference");
    std::unique_ptr<CReproject> reproject(
        CReproject::Create(&source, targetSrs.c_str(), nullptr, nullptr));
    if (!reproject)
        throw host::Failure(sourceName, "its coordinates cannot be transformed to " + targetSrs);
    return reproject;
}

namespace {

/// A reference system alone, as a source of ground coordinates.
class SystemSource : public CGISDataSource {
  public:
    explicit SystemSource(const std::string& srs) { m_wkt = srs; }
    GISError Open(CDatasetOpenInfo) override { return GIS_NOT_SUPPORTED; }
    GISError Open(const wchar_t*, GISDataAccess, bool) override { return GIS_NOT_SUPPORTED; }
    void Close() override {}
    bool IsOpened() override { return true; }
};

struct ReprojectOptions {
    std::string image;
    std::string from;
    std::string to;
    std::string box;
    std::string step;
    bool json = false;
};

bool IsFinite(const CBoundingBox& box) {
    return std::isfinite(box.GetLeft()) && std::isfinite(box.GetTop()) &&
           std::isfinite(box.GetRight()) && std::isfinite(box.GetBottom());
}

std::string BoxText(const CBoundingBox& box) {
    return host::FormatNumber(box.GetLeft()) + "," + host::FormatNumber(box.GetTop()) + "," +
           host::FormatNumber(box.GetRight()) + "," + host::FormatNumber(box.GetBottom());
}

void Box(const ReprojectOptions& options) {
    host::RequireReference(options.from);
    SystemSource source(options.from);
    const auto reproject = BindOrFail(source, options.from, options.to);
    CBoundingBox from = host::ParseBox("--box", options.box);
    const EdgeSteps steps = ParseSteps(options.step, from);
    CBoundingBox to;
    if (!reproject->Src2DestBox(from, to, steps.x, steps.y))
        throw host::Failure(options.box,
                            "the box is empty or inverted, not larger than the steps, or "
                            "has no place in the target system");
    if (!IsFinite(to))
        throw host::Failure(options.box, "a part of the box has no place in the target system");
    if (options.json)
        host::PrintJson(host::JsonBox(to));
    else
        std::cout << BoxText(to) << '\n';
}

void Window(const ReprojectOptions& options) {
    CRasterSource raster;
    OpenOnOwnGrid(raster, options.image);
    const auto reproject = BindOrFail(raster, options.image, options.to);
    const CBoundingBox box = host::ParseBox("--box", options.box);
    const EdgeSteps steps = ParseSteps(options.step, box);
    CRect window;
    if (!reproject->FindSourceWindow(box, window, steps.x, steps.y))
        throw host::Failure(options.image, "the box lies beside it or has no place in its system");
    const int column = window.left;
    const int row = window.top;
    const int width = window.right - window.left;
    const int height = window.bottom - window.top;
    if (options.json) {
        host::PrintJson({{"column", column}, {"row", row}, {"width", width}, {"height", height}});
        return;
    }
    host::Table table({"column", "row", "width", "height"});
    table.AddRow({std::to_string(column), std::to_string(row), std::to_string(width),
                  std::to_string(height)});
    table.Print();
}

void AddBoxOptions(CLI::App& command, ReprojectOptions& options) {
    command.add_option("--box", options.box, "left,top,right,bottom")->required();
    command.add_option("--step", options.step,
                       "distance of the points along the edges, x,y in the box's units; 0: the "
                       "corners only (default: a twentieth of each side)");
    command.add_flag("--json", options.json, "print JSON");
}

} // namespace

void AddReprojectBox(CLI::App& reproject) {
    auto options = std::make_shared<ReprojectOptions>();
    auto* box = reproject.add_subcommand("box", "the box around a box in another system");
    box->add_option("--from", options->from, "system of the box")->required();
    box->add_option("--to", options->to, "target system")->required();
    AddBoxOptions(*box, *options);
    box->callback([options] { Box(*options); });
}

void AddReprojectWindow(CLI::App& reproject) {
    auto options = std::make_shared<ReprojectOptions>();
    auto* window = reproject.add_subcommand(
        "window", "the part of an image that a box in another system needs");
    window->add_option("IMAGE", options->image)->required();
    window->add_option("--srs", options->to, "system of the box")->required();
    AddBoxOptions(*window, *options);
    window->callback([options] { Window(*options); });
}

void AddReproject(CLI::App& program) {
    auto* reproject = program.add_subcommand(
        "reproject", "take points, boxes and image windows to other systems");
    reproject->require_subcommand(1);
    reproject->footer("x is east or longitude and y north or latitude in every system.");
    AddReprojectPoints(*reproject);
    AddReprojectBox(*reproject);
    AddReprojectWindow(*reproject);
    AddReprojectGrid(*reproject);
}

} // namespace zelto::cli
