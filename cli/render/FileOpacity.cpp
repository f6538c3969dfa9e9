#include "cli/render/FileOpacity.h"

#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gdal_utils.h>

#include <array>
#include <atomic>
#include <memory>

namespace zelto::cli {

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

/// A name of memory that no other has.
std::string NameInMemory() {
    static std::atomic<int> count = 0;
    return "/vsimem/zelto-opacity-" + std::to_string(++count) + ".vrt";
}

} // namespace

void ShowBandsByColor(CRasterSource& source) {
    std::array<int, 3> bands = {-1, -1, -1};
    GDALDataset* const dataset = source.GetGDALDataset();
    const int count = dataset != nullptr ? dataset->GetRasterCount() : 0;
    for (int i = count - 1; i >= 0; --i) {
        const int color = dataset->GetRasterBand(i + 1)->GetColorInterpretation() - GCI_RedBand;
        if (color >= 0 && color < 3)
            bands[static_cast<std::size_t>(color)] = i;
    }
    if (bands[0] >= 0 && bands[1] >= 0 && bands[2] >= 0 && count == source.GetBandCount())
        source.SetShowBandNum(3, bands.data());
}

FileOpacity::FileOpacity(const CRasterSource& source) {
    const std::string path = host::Narrow(source.GetFilePath());
    const GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    GDALDataset* const shown = source.GetGDALDataset();
    const bool isView = file != nullptr && shown != nullptr &&
                        EQUAL(shown->GetDriverName(), "VRT") &&
                        !EQUAL(file->GetDriverName(), "VRT");
    if (!file || !HasOpacity(*file, isView))
        return;
    CPLStringList words;
    for (const char* word : {"-of", "VRT", "-b", "mask,1", "-colorinterp_1", "gray"})
        words.AddString(word);
    const TranslateOptions options(GDALTranslateOptionsNew(words.List(), nullptr));
    const std::string name = NameInMemory();
    host::ForgetReasons();
    const GDALDatasetUniquePtr made(GDALDataset::FromHandle(
        GDALTranslate(name.c_str(), GDALDataset::ToHandle(file.get()), options.get(), nullptr)));
    if (!made)
        throw host::Failure(path, host::LastReason("its mask cannot be read"));
    m_path = name;
}

FileOpacity::~FileOpacity() {
    if (!m_path.empty())
        VSIUnlink(m_path.c_str());
}

} // namespace zelto::cli
