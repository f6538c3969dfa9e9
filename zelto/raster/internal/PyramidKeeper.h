#pragma once

#include <gdal_priv.h>

namespace zelto {

/// Reaches the part of a data set that keeps the pyramid beside its file. GDAL has no call that
/// lets an open data set look for it again.
struct PyramidKeeper : GDALDataset {
    static GDALDefaultOverviews& Of(GDALDataset& dataset) {
        return dataset.*(&PyramidKeeper::oOvManager);
    }

    /// Lets an open image look for a pyramid beside it, in a folder of these names; null: in
    /// the folder as it is.
    static void LookAnew(GDALDataset& image, char** names) {
        Of(image).Initialize(&image, image.GetDescription(), names);
        // GDAL looks when it is asked this. It is asked now, because some formats replace the
        // names later, and because the name of a new pyramid is chosen after the look.
        Of(image).IsInitialized();
    }
};

} // namespace zelto
