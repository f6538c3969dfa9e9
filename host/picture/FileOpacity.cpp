#include "host/picture/FileOpacity.h"

#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gdal_utils.h>

#include <atomic>
#include <cmath>
#include <memory>
#include <vector>

namespace zelto::host {

namespace {

struct FreeTranslateOptions {
    void operator()(GDALTranslateOptions* options) const { GDALTranslateOptionsFree(options); }
};
using TranslateOptions = std::unique_ptr<GDALTranslateOptions, FreeTranslateOptions>;

/// Whether pixels are told to be missing other than by their values; of a view that does not fill
/// its rectangle, also where none are.
bool HasOpacity(GDALDataset& file, bool isView) {
    GDALRasterBand* const band = file.GetRasterBand(1);
    if (band == nullptr)
        return false;
    const int flags = band->GetMaskFlags();
    const bool byValue = (flags & GMF_NODATA) != 0;
    const bool byMask = (flags & (GMF_PER_DATASET | GMF_ALPHA)) != 0 && !byValue;
    return byMask || (isView && (flags & GMF_ALL_VALID) != 0);
}

/// Gives a raster the levels of a file's pyramid without their pixels, so that a view of it is
/// drawn from the level that one of the file is drawn from: their edges differ by a pixel of a
/// level.
bool GiveLevelsOf(GDALDataset& file, GDALDataset& raster) {
    std::vector<int> factors;
    GDALRasterBand* const band = file.GetRasterBand(1);
    for (int i = 0; i < band->GetOverviewCount(); ++i) {
        const double width = band->GetOverview(i)->GetXSize();
        const int factor = static_cast<int>(std::lround(file.GetRasterXSize() / width));
        if (factor > 1)
            factors.push_back(factor);
    }
    if (factors.empty())
        return true;
    const CPLConfigOptionSetter withoutPixels("VRT_VIRTUAL_OVERVIEWS", "YES", false);
    return raster.BuildOverviews("NEAREST", static_cast<int>(factors.size()), factors.data(), 0,
                                 nullptr, nullptr, nullptr) == CE_None;
}

/// A name of memory that no other has.
std::string NameInMemory() {
    static std::atomic<int> count = 0;
    return "/vsimem/zelto-opacity-" + std::to_string(++count) + ".vrt";
}

} // namespace

FileOpacity::FileOpacity(const CRasterSource& source) {
    GDALDataset* const shown = source.GetGDALDataset();
    if (shown == nullptr)
        return;
    const bool mayBeView = EQUAL(shown->GetDriverName(), "VRT");
    if (!mayBeView && !HasOpacity(*shown, false))
        return;
    const std::string path = Narrow(source.GetFilePath());
    const GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    if (!file || !HasOpacity(*file, mayBeView && !EQUAL(file->GetDriverName(), "VRT")))
        return;
    CPLStringList words;
    for (const char* word : {"-of", "VRT", "-b", "mask,1", "-colorinterp_1", "gray"})
        words.AddString(word);
    const TranslateOptions options(GDALTranslateOptionsNew(words.List(), nullptr));
    const std::string name = NameInMemory();
    ForgetReasons();
    const GDALDatasetUniquePtr made(GDALDataset::FromHandle(
        GDALTranslate(name.c_str(), GDALDataset::ToHandle(file.get()), options.get(), nullptr)));
    if (!made || !GiveLevelsOf(*file, *made))
        throw Failure(path, LastReason("its mask cannot be read"));
    m_path = name;
}

FileOpacity::~FileOpacity() {
    if (!m_path.empty())
        VSIUnlink(m_path.c_str());
}

} // namespace zelto::host
