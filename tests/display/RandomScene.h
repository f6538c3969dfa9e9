#pragma once

#include "zelto/geometry/BoundingBox.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>

#include <memory>
#include <random>
#include <string>

namespace zelto::test {

/// A raster with random properties and a random display state, opened for display: pixel type,
/// band count, size, no-data value, NaN and infinities, grid north-up, south-up, mirrored or
/// rotated; stretch with all that it needs, shown bands, ramp, classes, colour table,
/// transparency.
class RandomScene {
  public:
    explicit RandomScene(unsigned seed);

    CRasterSource& Source() { return *m_source; }
    /// A box inside, across an edge, around, far outside, inside one pixel, inverted, …
    CBoundingBox RandomBox();
    /// Between 1 × 1 and about the given size.
    int RandomSize(int largest);
    int Between(int least, int most);
    bool Chance(int percent);
    double Real(double least, double most);
    /// What was chosen, for messages.
    const std::string& Description() const { return m_description; }

  private:
    void CreateFile();
    void Open();
    void ChooseBands();
    void ChooseStretch();
    void PrepareBand(CRasterBand& band, int stretch);
    void ChooseColors();
    std::array<double, 6> RandomGrid();
    double RandomValue();

    std::mt19937 m_random;
    TemporaryFolder m_folder;
    std::string m_path;
    std::string m_description;
    GDALDataType m_type = GDT_Byte;
    int m_width = 1;
    int m_height = 1;
    bool m_hasNoData = false;
    double m_noData = 0.0;
    std::unique_ptr<CRasterSource> m_source;
};

} // namespace zelto::test
