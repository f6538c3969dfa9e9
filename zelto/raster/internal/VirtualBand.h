#pragma once

#include <gdal_priv.h>
#include <vrtdataset.h>

namespace zelto {

/// Whether GDAL assembles the band from other rasters while it is read. Samples may then have
/// fractions whatever the band's type says, when they are read as doubles, and may depend on the
/// window they are read with.
inline bool IsVirtual(GDALRasterBand* band) {
    return dynamic_cast<VRTRasterBand*>(band) != nullptr;
}

} // namespace zelto
