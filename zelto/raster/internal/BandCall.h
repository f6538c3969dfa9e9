#pragma once

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/internal/BlockLimit.h"

#include <gdal_priv.h>

#include <string>

namespace zelto {

/// Name of the file that the band is read from; empty for a band without one.
inline std::string FileOf(GDALRasterBand& band) {
    const GDALDataset* const dataset = band.GetDataset();
    return dataset != nullptr ? dataset->GetDescription() : "";
}

/// CanHoldBlocks(), with the reason against it in LastError().
inline bool HoldsBlocks(GDALRasterBand& band) {
    if (CanHoldBlocks(band))
        return true;
    SetLastError(FileOf(band) + ": its blocks are too large to be read");
    return false;
}

/// Makes a call that reads from the band. Its answer decides alone: a warped view emits errors
/// for positions out of its reach while the pixels are right. A failure leaves the reason.
/// @param call takes nothing and answers CPLErr
template <typename Call>
bool Reads(GDALRasterBand& band, Call call) {
    GdalWatch watch;
    if (call() == CE_None)
        return true;
    return watch.Succeeded(false, FileOf(band));
}

/// Makes a call that changes the band or its file: done when it says so and emitted no error. A
/// failure leaves the reason.
/// @param call takes nothing and answers CPLErr
template <typename Call>
bool Writes(GDALRasterBand& band, Call call) {
    GdalWatch watch;
    return watch.Succeeded(call(), FileOf(band));
}

} // namespace zelto
