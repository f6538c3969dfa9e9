#include "cli/GeorefPoints.h"
#include "host/base/Failure.h"
#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

#include <cmath>

// The file of control points that `zelto georef` reads.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("points.csv", data, size);
    try {
        const auto points = zelto::cli::ReadControlPoints({}, folder.File("points.csv"));
        zelto::fuzz::Require(points.size() >= 3, "three points or more place an image");
        for (const zelto::cli::ControlPoint& point : points)
            zelto::fuzz::Require(std::isfinite(point.column) && std::isfinite(point.row) &&
                                     std::isfinite(point.x) && std::isfinite(point.y),
                                 "a control point is finite");
    } catch (const zelto::host::UsageError&) {
    } catch (const zelto::host::Failure&) {
    }
    return 0;
}
