#pragma once

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <string>

namespace zelto {

/// Number of features that can be read from a file's first layer. GDAL's shapefile driver does not
/// tell of every write that fails: what was written counts when it can be read.
inline GIntBig CountReadableFeatures(const std::string& path) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    GIntBig count = 0;
    if (file != nullptr && file->GetLayerCount() > 0)
        for ([[maybe_unused]] const auto& feature : *file->GetLayer(0))
            ++count;
    return count;
}

} // namespace zelto
