#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <array>

namespace {

/// What a Wallis stretch aims at in one channel.
struct WallisTarget {
    double lowerClamp;
    double upperClamp;
    double mean;
    double standardDeviation;
};

using WallisColorModel = std::array<WallisTarget, 3>; // red, green, blue

constexpr std::array<WallisColorModel, 3> wallisColorModels = {{
    {{{67, 255, 129.372, 27.8402}, {71, 255, 159.449, 23.7367}, {68, 255, 122.46, 18.5736}}},
    {{{5, 250, 134.775, 55.4334}, {5, 250, 137.542, 51.3291}, {7, 250, 132.134, 52.6864}}},
    {{{0, 252, 87.8847, 68.2869}, {0, 255, 101.007, 58.9089}, {0, 255, 109.724, 55.0128}}},
}};

const WallisColorModel& ColorModel(int model) {
    return wallisColorModels[static_cast<std::size_t>(model < 0 || model > 2 ? 1 : model)];
}

} // namespace

bool CRasterSource::ReadWallisColorModel(int model) {
    const zelto::OperationScope scope;
    if (m_stretchType != StretchWallis)
        return zelto::FailWith(false, m_filePath, "its stretch is not the Wallis one");
    const WallisColorModel& targets = ColorModel(model);
    const int channels = std::min(m_showBandCount, static_cast<int>(targets.size()));
    for (int k = 0; k < channels; ++k) {
        CRasterBand* band = GetShownBand(k);
        if (band == nullptr)
            continue;
        const WallisTarget& target = targets[static_cast<std::size_t>(k)];
        band->SetStretchData(StretchWallis, m_showMeans[k], m_showStandardDeviations[k],
                             target.lowerClamp, target.upperClamp, target.mean,
                             target.standardDeviation);
        band->ReleaseCache();
    }
    return true;
}
