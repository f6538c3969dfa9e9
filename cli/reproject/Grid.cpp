#include "zelto/coordinate/GeoGrid.h"
#include "zelto/raster/RasterSource.h"

#include "cli/reproject/Commands.h"
#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/report/Json.h"
#include "host/report/Table.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <vector>

namespace zelto::cli {

namespace {

struct GridOptions {
    std::string image;
    std::string srs;
    std::string box;
    unsigned int order = 3;
    int points = 20;
    bool json = false;
};

/// Deviations of the grid's positions from the exact ones, in pixels.
struct Residuals {
    std::size_t count = 0;
    double sumColumn = 0.0;
    double sumRow = 0.0;
    double maxColumn = 0.0;
    double maxRow = 0.0;

    void Add(double column, double row) {
        ++count;
        sumColumn += column * column;
        sumRow += row * row;
        maxColumn = std::max(maxColumn, std::abs(column));
        maxRow = std::max(maxRow, std::abs(row));
    }
    double RmsColumn() const { return std::sqrt(sumColumn / static_cast<double>(count)); }
    double RmsRow() const { return std::sqrt(sumRow / static_cast<double>(count)); }
};

struct Fit {
    CBoundingBox box;
    double stepX = 0.0;
    double stepY = 0.0;
};

/// The steps whose points fill the box: half a step less than the points have between them, so
/// that rounding takes none away.
Fit PlanFit(const GridOptions& options, CReproject& reproject, CRasterSource& raster) {
    Fit fit;
    if (options.box.empty()) {
        CBoundingBox extent = raster.GetExtent();
        if (!reproject.Src2DestBox(extent, fit.box, extent.GetWidth() / 20,
                                   extent.GetHeight() / 20))
            throw host::Failure(options.image, "it has no place in the target system");
    } else {
        fit.box = host::ParseBox("--box", options.box);
        if (!(fit.box.GetLeft() < fit.box.GetRight() && fit.box.GetBottom() < fit.box.GetTop()))
            throw host::UsageError("--box: expected left < right and bottom < top");
    }
    fit.stepX = fit.box.GetWidth() / (options.points - 0.5);
    fit.stepY = fit.box.GetHeight() / (options.points - 0.5);
    return fit;
}

/// Compares grid and transformation between the grid's points, twice as densely.
Residuals MeasureFit(const Fit& fit, const GridOptions& options, CReproject& exact,
                     CReproject& fitted) {
    Residuals residuals;
    const int side = 2 * (options.points - 1);
    for (int j = 0; j < side; ++j) {
        for (int i = 0; i < side; ++i) {
            const double dx = (i + 0.5) * fit.stepX / 2;
            const double dy = (j + 0.5) * fit.stepY / 2;
            double x = fit.box.GetLeft() + dx;
            double y = fit.box.GetTop() - dy;
            // A bilinear grid counts from its own corner.
            double gridX = options.order == 0 ? dx : x;
            double gridY = options.order == 0 ? dy : y;
            double column = 0.0;
            double row = 0.0;
            double exactColumn = 0.0;
            double exactRow = 0.0;
            if (fitted.GetSrcPos(&gridX, &gridY, &column, &row, 1) &&
                exact.GetSrcPos(&x, &y, &exactColumn, &exactRow, 1))
                residuals.Add(column - exactColumn, row - exactRow);
        }
    }
    return residuals;
}

constexpr const char* TERMS[] = {"1", "u", "v", "u^2", "uv", "v^2", "u^3", "u^2 v", "u v^2", "v^3"};

/// Four digits are enough of a residual.
std::string Rounded(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 4);
    return {text, end.ptr};
}

std::string Centred(const std::string& name, double centre) {
    return centre == 0.0 ? name : name + " - " + host::FormatNumber(centre);
}

void PrintTables(const GridOptions& options, const Residuals& residuals, const CGeoGrid& grid) {
    host::Table table({"residual (pixels)", "column", "row"});
    table.AddRow({"rms", Rounded(residuals.RmsColumn()), Rounded(residuals.RmsRow())});
    table.AddRow({"largest", Rounded(residuals.maxColumn), Rounded(residuals.maxRow)});
    table.Print();
    const double* coefficients = grid.GetCoefficients();
    if (coefficients == nullptr)
        return;
    std::cout << "\nu = " << Centred("x", grid.GetInputCentre().x)
              << ", v = " << Centred("y", grid.GetInputCentre().y) << '\n';
    if (grid.GetOutputCentre() != CPoint2D())
        std::cout << "added to the sums: " << host::FormatNumber(grid.GetOutputCentre().x) << ", "
                  << host::FormatNumber(grid.GetOutputCentre().y) << '\n';
    host::Table terms({"term", "column", "row"});
    const unsigned int count = CGeoGrid::EnoughNum(options.order);
    for (unsigned int k = 0; k < count; ++k)
        terms.AddRow({TERMS[k], host::FormatNumber(coefficients[k]),
                      host::FormatNumber(coefficients[count + k])});
    terms.Print();
}

void PrintFitAsJson(const GridOptions& options, const Fit& fit, const Residuals& residuals,
                    const CGeoGrid& grid) {
    host::Json json = {
        {"order", options.order},
        {"points", {grid.GetColumnCount(), grid.GetRowCount()}},
        {"box", host::JsonBox(fit.box)},
        {"rms", {host::JsonNumber(residuals.RmsColumn()), host::JsonNumber(residuals.RmsRow())}},
        {"largest", {host::JsonNumber(residuals.maxColumn), host::JsonNumber(residuals.maxRow)}}};
    if (const double* coefficients = grid.GetCoefficients()) {
        const unsigned int count = CGeoGrid::EnoughNum(options.order);
        json["inputCentre"] = {grid.GetInputCentre().x, grid.GetInputCentre().y};
        json["outputCentre"] = {grid.GetOutputCentre().x, grid.GetOutputCentre().y};
        json["column"] = std::vector<double>(coefficients, coefficients + count);
        json["row"] = std::vector<double>(coefficients + count, coefficients + 2 * count);
    }
    host::PrintJson(json);
}

void RunGrid(const GridOptions& options) {
    CRasterSource raster;
    OpenOnOwnGrid(raster, options.image);
    const auto exact = BindOrFail(raster, options.image, options.srs);
    const auto fitted = BindOrFail(raster, options.image, options.srs);
    Fit fit = PlanFit(options, *exact, raster);
    if (!fitted->CreateGrid(fit.box, fit.stepX, fit.stepY, options.order))
        throw host::Failure(options.image,
                            "no grid can be fitted to the box: it is empty, or a part of "
                            "it has no place in the image's system");
    const Residuals residuals = MeasureFit(fit, options, *exact, *fitted);
    if (residuals.count == 0)
        throw host::Failure(options.image, "no point of the box has a position in it");
    if (options.json)
        PrintFitAsJson(options, fit, residuals, *fitted->GetGrid());
    else
        PrintTables(options, residuals, *fitted->GetGrid());
}

} // namespace

void AddReprojectGrid(CLI::App& reproject) {
    auto options = std::make_shared<GridOptions>();
    auto* grid = reproject.add_subcommand(
        "grid", "fit a grid from another system to image positions and measure it");
    grid->add_option("IMAGE", options->image)->required();
    grid->add_option("--srs", options->srs, "system of the box")->required();
    grid->add_option("--box", options->box, "left,top,right,bottom (default: all of the image)");
    grid->add_option("--order", options->order, "of the polynomial; 0: bilinear (default: 3)")
        ->check(CLI::Range(0U, 3U));
    grid->add_option("--points", options->points, "points along each side (default: 20)")
        ->check(CLI::Range(4, 2000));
    grid->add_flag("--json", options->json, "print JSON");
    grid->callback([options] { RunGrid(*options); });
}

} // namespace zelto::cli
