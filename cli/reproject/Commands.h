#pragma once

#include "zelto/coordinate/Reproject.h"

#include <memory>
#include <string>

class CRasterSource;

namespace CLI {
class App;
}

namespace zelto::cli {

// The subcommands of `zelto reproject`, one function each.

void AddReprojectPoints(CLI::App& reproject);
void AddReprojectBox(CLI::App& reproject);
void AddReprojectWindow(CLI::App& reproject);
void AddReprojectGrid(CLI::App& reproject);

/// Distance of the points along the edges of a box.
struct EdgeSteps {
    double x = 0.0;
    double y = 0.0;
};

/// What "--step" says: "x,y", one number for both, or, when empty, a twentieth of each side.
EdgeSteps ParseSteps(const std::string& text, const CBoundingBox& box);

/// Opens a raster on its own grid, without a north-up view and without statistics, or throws
/// Failure.
void OpenOnOwnGrid(CRasterSource& raster, const std::string& path);

/// Binds a source to a target system or throws Failure naming what stands against it.
std::unique_ptr<CReproject> BindOrFail(CGISDataSource& source, const std::string& sourceName,
                                       const std::string& targetSrs);

} // namespace zelto::cli
