#pragma once

#include "zelto/datasource/DataProgress.h"
#include "zelto/geometry/BoundingBox.h"

#include "host/report/ClassFacts.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto::host {

/// Statistics of a band's valid pixels; the deviation is that of the population.
struct BandStatistics {
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    double standardDeviation = 0.0;
};

/// What is told of the pixels' values. Without either no pixel is read.
struct ValueFacts {
    bool exact = false;   ///< statistics of every pixel
    bool sampled = false; ///< what a display takes from its sample; statistics, if not exact
};

struct BandFacts {
    std::string dataType;
    int blockWidth = 0;
    int blockHeight = 0;
    std::optional<double> noData;
    int colors = 0;                             ///< entries of the colour table
    std::vector<std::pair<int, int>> overviews; ///< width, height
    /// None without a valid, readable pixel, and where values were not asked for; as the next two.
    std::optional<BandStatistics> statistics;
    /// Lower and upper bound of every min-max stretch.
    std::optional<std::pair<double, double>> displayLimits;
    /// Lower and upper bound of the standard-deviation stretch.
    std::optional<std::pair<double, double>> displayRange;
};

struct SubdatasetFacts {
    std::string name; ///< opens as a raster of its own
    std::string description;
};

/// A ground control point.
struct ControlPointFacts {
    double column = 0.0; ///< pixels from the upper left corner, as `row`
    double row = 0.0;
    double x = 0.0; ///< in the control points' reference system, as `y`
    double y = 0.0;
};

/// What there is to say about a raster file. Texts are empty where the file says nothing.
struct RasterFacts {
    std::string path;
    std::string format;     ///< GDAL's short name of the driver
    std::string formatName; ///< its long name
    int width = 0;
    int height = 0;
    std::string dataType;                 ///< of the first band; empty without bands
    std::array<double, 6> geoTransform{}; ///< GDAL's terms, from pixels to the ground
    CBoundingBox extent;                  ///< on the ground
    std::vector<ControlPointFacts> controlPoints;
    std::string controlPointName; ///< of the control points' reference system
    std::string controlPointWkt;
    std::string coordinateName;
    std::string datum;
    std::string units;
    std::string wkt;
    ValueFacts values; ///< what the bands' statistics are of
    std::vector<SubdatasetFacts> subdatasets;
    std::vector<ClassFacts> classes;
    std::vector<BandFacts> bands;
};

/// Opens a raster and describes it as the file has it, never through a warped view. Throws
/// Failure when it cannot be opened, or when exact statistics are asked for and a band cannot
/// be read. Where values are not asked for no pixel is read, but of a virtual raster one, to
/// tell whether there is anything behind it.
RasterFacts DescribeRaster(const std::string& path, ValueFacts values, CDataProgress& progress);

} // namespace zelto::host
