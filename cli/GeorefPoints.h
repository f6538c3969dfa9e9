#pragma once

#include <string>
#include <vector>

class CRasterSource;

namespace zelto::host {
class ChangedRaster;
}

namespace zelto::cli {

/// A pixel whose place on the ground is known.
struct ControlPoint {
    double column = 0.0;
    double row = 0.0;
    double x = 0.0;
    double y = 0.0;
};

/// Points as "column,row,x,y", then those of a CSV file with lines of the same. Throws UsageError
/// or Failure for what is no point, and UsageError where they do not place an image: for fewer
/// than three, and for all on one line.
/// @param file may be empty
std::vector<ControlPoint> ReadControlPoints(const std::vector<std::string>& texts,
                                            const std::string& file);

/// Lets these points, and nothing else, place an image. Throws Failure.
/// @param srs reference system of x and y; may be empty
void SetControlPoints(CRasterSource& raster, const std::vector<ControlPoint>& points,
                      const std::string& srs, const host::ChangedRaster& file);

} // namespace zelto::cli
