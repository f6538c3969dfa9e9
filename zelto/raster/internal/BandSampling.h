#pragma once

#include <gdal_priv.h>

#include <cstddef>

namespace zelto {

/// What the samples of a band amount to; all 0 where none counts.
struct BandSummary {
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    double standardDeviation = 0.0;
};

/// The samples that stand for a whole band, at most 2048 along its longer side.
struct StatisticsGrid {
    int columns;
    int rows;

    StatisticsGrid(int width, int height);
    std::size_t Count() const {
        return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    }
};

/// Statistics of at most 2048 samples along the longer side of a band.
/// @param noData,excluded values to leave out, may be null
/// @param found without a counted sample it keeps what it holds
/// @return false when the band cannot be read
bool SampleBand(GDALRasterBand& band, const double* noData, const double* excluded,
                BandSummary& found);

} // namespace zelto
