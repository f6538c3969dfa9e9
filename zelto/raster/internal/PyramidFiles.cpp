#include "zelto/raster/internal/PyramidFiles.h"

#include "zelto/baselib/internal/FilePaths.h"
#include "zelto/raster/internal/PyramidKeeper.h"

#include <cpl_vsi.h>

#include <algorithm>

namespace zelto {

namespace {

namespace fs = std::filesystem;

fs::path WithExtension(fs::path image, const char* extension) {
    return image.replace_extension(extension);
}

fs::path WithSuffix(const fs::path& image, const char* suffix) {
    return image.string() + suffix;
}

GDALDatasetUniquePtr OpenImagine(const fs::path& path) {
    if (!Exists(path))
        return nullptr;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const char* const drivers[] = {"HFA", nullptr};
    return GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER, drivers));
}

enum class IndexOwner { NONE, IMAGE, ANOTHER };

/// Whose pyramid the index "stem.aux" is. One that names a file which is gone, or of another
/// stem, came to its place by renaming the image.
IndexOwner OwnerOfIndex(const fs::path& image) {
    const GDALDatasetUniquePtr index = OpenImagine(WithExtension(image, ".aux"));
    const char* name = index ? index->GetMetadataItem("HFA_DEPENDENT_FILE", "HFA") : nullptr;
    if (name == nullptr)
        return IndexOwner::NONE;
    const fs::path owner = image.parent_path() / fs::path(name).filename();
    const bool hasStem = owner.stem() == image.stem();
    const bool isAnother = hasStem && Exists(owner) && !IsSameFile(owner, image);
    return isAnother ? IndexOwner::ANOTHER : IndexOwner::IMAGE;
}

/// The ERDAS Imagine file of the same stem, which would use "stem.rrd" without an index; empty
/// when there is none, or when it is the image.
fs::path ImagineFileOfStem(const fs::path& image) {
    for (const char* extension : {".img", ".IMG"}) {
        const fs::path file = WithExtension(image, extension);
        if (Exists(file) && !IsSameFile(file, image))
            return file;
    }
    return {};
}

/// Whether an ERDAS Imagine file itself names a file as that of its levels.
bool NamesLevels(GDALDataset& dataset, const fs::path& levels) {
    CPLStringList nothingBeside;
    nothingBeside.AddString(fs::path(dataset.GetDescription()).filename().c_str());
    PyramidKeeper::LookAnew(dataset, nothingBeside.List());
    const CPLStringList files(dataset.GetFileList());
    return std::any_of(files.List(), files.List() + files.size(),
                       [&](const char* used) { return IsSameFile(used, levels); });
}

/// Whether the levels that the image's own index means have been replaced by those of an ERDAS
/// Imagine file, or the other way round.
bool ClaimedByImagineFile(const fs::path& image) {
    const fs::path levels = WithExtension(image, ".rrd");
    const fs::path other = ImagineFileOfStem(image);
    if (other.empty() || !Exists(levels))
        return false;
    const GDALDatasetUniquePtr dataset = OpenImagine(other);
    return dataset && NamesLevels(*dataset, levels);
}

bool IsImagine(const fs::path& image) {
    const char* const drivers[] = {"HFA", nullptr};
    return GDALIdentifyDriverEx(image.c_str(), GDAL_OF_RASTER, drivers, nullptr) != nullptr;
}

} // namespace

bool HasForeignIndex(const fs::path& image) {
    const IndexOwner owner = OwnerOfIndex(image);
    if (owner == IndexOwner::IMAGE)
        return !IsImagine(image) && ClaimedByImagineFile(image);
    return owner == IndexOwner::ANOTHER;
}

bool IsStemTaken(const fs::path& image) {
    const bool ownIndex = OwnerOfIndex(image) == IndexOwner::IMAGE;
    if (!ownIndex && (Exists(WithExtension(image, ".aux")) || Exists(WithExtension(image, ".rrd"))))
        return true;
    return !ImagineFileOfStem(image).empty();
}

bool SharesLevels(const fs::path& image) {
    const fs::path levels = WithExtension(image, ".rrd");
    if (!Exists(levels) || OwnerOfIndex(image) != IndexOwner::ANOTHER)
        return false;
    const GDALDatasetUniquePtr dataset = OpenImagine(image);
    return dataset && NamesLevels(*dataset, levels);
}

std::vector<fs::path> PyramidFilesBeside(const fs::path& image) {
    std::vector<fs::path> files = {WithSuffix(image, ".ovr")};
    // Without an extension these are the names that the stem gives.
    if (image.has_extension())
        for (const char* suffix : {".aux", ".rrd", ".rde"})
            files.push_back(WithSuffix(image, suffix));
    // An index without levels holds other things that are worth keeping.
    if (OwnerOfIndex(image) == IndexOwner::IMAGE && !HasForeignIndex(image) &&
        Exists(WithExtension(image, ".rrd")) && !IsImagine(image))
        for (const char* extension : {".aux", ".rrd", ".rde"})
            files.push_back(WithExtension(image, extension));
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const fs::path& file) { return !Exists(file); }),
                files.end());
    return files;
}

std::vector<fs::path> ForeignPyramidFiles(const fs::path& image) {
    std::vector<fs::path> files;
    if (HasForeignIndex(image))
        for (const char* extension : {".aux", ".rrd", ".rde"})
            files.push_back(WithExtension(image, extension));
    return files;
}

CPLStringList FolderWithoutIndex(const fs::path& image) {
    const fs::path index = WithExtension(image, ".aux");
    CPLStringList names(VSIReadDir(index.has_parent_path() ? index.parent_path().c_str() : "."));
    const int number = names.FindString(index.filename().c_str());
    if (number >= 0)
        names.Assign(CSLRemoveStrings(names.StealList(), number, 1, nullptr));
    return names;
}

} // namespace zelto
