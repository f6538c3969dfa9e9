#include "zelto/raster/internal/PyramidBeside.h"

#include "zelto/baselib/internal/DiskSync.h"
#include "zelto/baselib/internal/FilesAside.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/internal/PyramidFiles.h"
#include "zelto/raster/internal/PyramidKeeper.h"
#include "zelto/raster/internal/PyramidRun.h"

#include <gdal_proxy.h>
#include <vrtdataset.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <system_error>

namespace zelto {

namespace {

namespace fs = std::filesystem;

/// The pixels of an image's band; the pyramid is not the image's.
class BorrowedBand final : public GDALProxyRasterBand {
  public:
    BorrowedBand(GDALDataset* owner, int number, GDALRasterBand& band) : m_band(band) {
        poDS = owner;
        nBand = number;
        nRasterXSize = band.GetXSize();
        nRasterYSize = band.GetYSize();
        eDataType = band.GetRasterDataType();
        band.GetBlockSize(&nBlockXSize, &nBlockYSize);
    }
    int GetOverviewCount() override { return PyramidKeeper::Of(*poDS).GetOverviewCount(nBand); }
    GDALRasterBand* GetOverview(int index) override {
        return PyramidKeeper::Of(*poDS).GetOverview(nBand, index);
    }

  protected:
    GDALRasterBand* RefUnderlyingRasterBand() const override { return &m_band; }
    void UnrefUnderlyingRasterBand(GDALRasterBand* /*band*/) const override {}

  private:
    GDALRasterBand& m_band;
};

/// An open image under another path, so that its pyramid is built there.
class ImageElsewhere final : public GDALProxyDataset {
  public:
    ImageElsewhere(GDALDataset& image, const fs::path& path) : m_image(image) {
        nRasterXSize = image.GetRasterXSize();
        nRasterYSize = image.GetRasterYSize();
        SetDescription(path.c_str());
        for (int number = 1; number <= image.GetRasterCount(); ++number)
            SetBand(number, new BorrowedBand(this, number, *image.GetRasterBand(number)));
        RescanPyramidBeside(*this);
    }

  protected:
    GDALDataset* RefUnderlyingDataset() const override { return &m_image; }
    void UnrefUnderlyingDataset(GDALDataset* /*dataset*/) const override {}
    CPLErr IBuildOverviews(const char* resampling, int levelCount, const int* levels, int bandCount,
                           const int* bands, GDALProgressFunc progress, void* progressData,
                           CSLConstList options) override {
        return oOvManager.BuildOverviews(nullptr, resampling, levelCount, levels, bandCount, bands,
                                         progress, progressData, options);
    }

  private:
    GDALDataset& m_image;
};

/// Builds the pyramid of the image in a folder, closes and checks it.
bool BuildIn(const fs::path& folder, GDALDataset& image, const PyramidOrder& order) {
    const fs::path path = folder / fs::path(image.GetDescription()).filename();
    const std::string name = image.GetDescription();
    GdalWatch watch;
    auto elsewhere = std::make_unique<ImageElsewhere>(image, path);
    if (!RunPyramidBuild(*elsewhere, order, name))
        return false;
    elsewhere.reset();
    if (!watch.Succeeded(true, name))
        return false;
    ImageElsewhere finished(image, path);
    return IsPyramidWhole(finished, order, name) && HasEveryBlock(finished, name);
}

/// The files of a folder, the index of a pyramid last: it makes the others count.
std::vector<fs::path> FilesIn(const fs::path& folder, std::error_code& error) {
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        files.push_back(entry->path());
    std::stable_partition(files.begin(), files.end(),
                          [](const fs::path& file) { return file.extension() != ".aux"; });
    return files;
}

/// Moves a file to its place once what is in it has reached the disk: the name of a file must not
/// outlive a power failure that its blocks do not.
std::error_code MoveSynced(const fs::path& file, const fs::path& target) {
    if (!SyncFile(file))
        return {errno, std::generic_category()};
    std::error_code error;
    fs::rename(file, target, error);
    return error;
}

/// Moves the new pyramid beside the image, in place of the old one.
bool Publish(const fs::path& folder, GDALDataset& image) {
    const fs::path path = image.GetDescription();
    std::error_code error;
    const std::vector<fs::path> made = FilesIn(folder, error);
    std::vector<fs::path> replaced = PyramidFilesBeside(path);
    for (const fs::path& file : made)
        replaced.push_back(path.parent_path() / file.filename());
    FilesSetAside old(replaced);
    bool done = !error && old.Succeeded();
    std::vector<fs::path> placed;
    for (const fs::path& file : made) {
        if (!done)
            break;
        placed.push_back(path.parent_path() / file.filename());
        error = MoveSynced(file, placed.back());
        done = !error;
    }
    if (done && !SyncFolder(path.parent_path())) {
        error = {errno, std::generic_category()};
        done = false;
    }
    if (done) {
        old.Drop();
    } else {
        std::error_code ignored;
        for (const fs::path& file : placed)
            fs::remove(file, ignored);
        SetLastError(path.string() + ": its pyramid cannot be put beside it" +
                     (error ? ": " + error.message() : ""));
    }
    return done;
}

/// Whether the image's format leaves it to GDAL to look for a pyramid beside the file.
bool LooksBeside(GDALDataset& image) {
    std::error_code ignored;
    return PyramidKeeper::Of(image).IsInitialized() &&
           fs::is_regular_file(image.GetDescription(), ignored);
}

} // namespace

void RescanPyramidBeside(GDALDataset& image) {
    const fs::path path = image.GetDescription();
    // GDAL tells whose an index is only where the current folder is the image's.
    CPLStringList names;
    if (HasForeignIndex(path))
        names = FolderWithoutIndex(path);
    PyramidKeeper::LookAnew(image, names.List());
}

void HideForeignPyramid(GDALDataset& image) {
    GDALRasterBand* band = image.GetRasterBand(1);
    // A virtual raster shows the levels of the files behind it.
    const bool isVirtual = dynamic_cast<VRTDataset*>(&image) != nullptr;
    if (band == nullptr || isVirtual || !HasForeignIndex(image.GetDescription()))
        return;
    // The GeoTIFF driver sets up what it knows of other files when it is first asked about the
    // place, and again when it is asked for a pyramid.
    double geoTransform[6] = {};
    image.GetGeoTransform(geoTransform);
    band->GetOverviewCount();
    if (LooksBeside(image))
        RescanPyramidBeside(image);
}

int CountLevelsBeside(GDALDataset& image) {
    GDALDefaultOverviews& keeper = PyramidKeeper::Of(image);
    return keeper.IsInitialized() ? keeper.GetOverviewCount(1) : 0;
}

bool HasMasksBeside(GDALDataset& image) {
    std::error_code ignored;
    return fs::exists(std::string(image.GetDescription()) + ".msk", ignored);
}

bool CanHavePyramidBeside(GDALDataset& image) {
    return LooksBeside(image) && !HasMasksBeside(image);
}

bool BuildPyramidBeside(GDALDataset& image, const PyramidOrder& order) {
    const std::string path = image.GetDescription();
    const HiddenFolder folder(fs::path(path).parent_path());
    if (!folder.IsMade()) {
        SetLastError(path + ": its folder cannot be written");
        return false;
    }
    {
        // Names without a doubt where another image's files have the usual ones.
        std::optional<CPLConfigOptionSetter> ownName;
        if (IsStemTaken(path))
            ownName.emplace("USE_RRD", "NO", false);
        if (!BuildIn(folder.Path(), image, order))
            return false;
    }
    const bool published = Publish(folder.Path(), image);
    RescanPyramidBeside(image);
    return published;
}

} // namespace zelto
