#include "zelto/raster/internal/RasterDataset.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/internal/FragileFiles.h"
#include "zelto/raster/internal/OpenedFile.h"
#include "zelto/raster/internal/PyramidBeside.h"
#include "zelto/raster/internal/PyramidFiles.h"

#include <gdal_priv.h>

namespace zelto {

GDALDataset* OpenRaster(const std::string& path, unsigned int accessFlag, std::string& reason) {
    if (!SurvivesOpening(path)) {
        reason = "its header promises more than it holds";
        return nullptr;
    }
    if (accessFlag == GDAL_OF_UPDATE && !SurvivesChange(path)) {
        reason = "its tags are damaged";
        return nullptr;
    }
    const GdalWatch watch;
    const auto before = FileState::Of(path);
    GDALDataset* dataset =
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR | accessFlag);
    if (dataset == nullptr) {
        reason = watch.HasError() ? watch.Error() : "it cannot be opened as a raster";
        return nullptr;
    }
    if (!SurvivesReading(*dataset, path)) {
        GDALClose(dataset);
        reason = "its tile cannot be read from the archive";
        return nullptr;
    }
    if (accessFlag == GDAL_OF_READONLY)
        NoteOpened(*dataset, before);
    HideForeignPyramid(*dataset);
    // The driver cannot be kept from the levels that the file itself names.
    if (SharesLevels(path))
        CPLError(CE_Warning, CPLE_AppDefined,
                 "%s: its pyramid is in a file that another image claims; build it anew",
                 path.c_str());
    return dataset;
}

int SubDatasetEntryCount(GDALDataset& dataset) {
    return CSLCount(dataset.GetMetadata("SUBDATASETS"));
}

std::wstring SubDatasetName(GDALDataset& dataset, int number) {
    // Not every driver answers for a single item, so the value is looked up in the list.
    const std::string key = "SUBDATASET_" + std::to_string(number) + "_NAME";
    const char* name = CSLFetchNameValue(dataset.GetMetadata("SUBDATASETS"), key.c_str());
    return name != nullptr ? CommonFun::M2U(name) : std::wstring();
}

std::string_view ImageStructure(GDALDataset& dataset, const char* item) {
    const char* value = dataset.GetMetadataItem(item, "IMAGE_STRUCTURE");
    return value != nullptr ? value : "";
}

} // namespace zelto
