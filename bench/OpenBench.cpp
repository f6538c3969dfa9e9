#include "zelto/raster/RasterSource.h"

#include "bench/support/Ratio.h"
#include "bench/support/Scene.h"

#include <gdal_priv.h>

#include <stdexcept>

namespace zelto::bench {

namespace {

constexpr int OPENINGS = 10;

void OpenForDisplay(const std::wstring& path) {
    CRasterSource source;
    source.SetForDisplay(true);
    if (source.Open(path.c_str(), GIS_READONLY, true) != GIS_SUCCESS)
        throw std::runtime_error("the scene does not open");
}

/// What an opening takes from GDAL.
void OpenPlainly(const std::string& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    double geoTransform[6];
    if (!dataset || dataset->GetGeoTransform(geoTransform) != CE_None ||
        dataset->GetSpatialRef() == nullptr)
        throw std::runtime_error("the scene does not open");
    const char* wkt = dataset->GetProjectionRef();
    if (wkt == nullptr || dataset->GetGCPCount() > 0 ||
        dataset->GetMetadata("SUBDATASETS") != nullptr)
        throw std::runtime_error("the scene is another");
    for (auto* band : dataset->GetBands()) {
        int hasNoData = 0;
        int width = 0, height = 0;
        band->GetNoDataValue(&hasNoData);
        band->GetBlockSize(&width, &height);
        for (int i = 0; i < band->GetOverviewCount(); ++i)
            width += band->GetOverview(i)->GetXSize();
        if (band->GetColorTable() != nullptr || hasNoData != 0 || width == 0)
            throw std::runtime_error("the scene is another");
    }
}

} // namespace

void Register() {
    CGISDataSource::RegisterGDAL();
    for (const auto& [pyramid, name] :
         {std::pair{Pyramid::None, "without"}, std::pair{Pyramid::Built, "with"}}) {
        const std::string path = PixelInterleaved(12000, pyramid);
        const std::wstring wide(path.begin(), path.end());
        AddRatio("open for display, " + std::string(name) + " pyramid, 10 times / GDALOpen", 1.5,
                 {[=] {
                     for (int i = 0; i < OPENINGS; ++i)
                         OpenForDisplay(wide);
                 }},
                 {[=] {
                     for (int i = 0; i < OPENINGS; ++i)
                         OpenPlainly(path);
                 }});
    }
}

} // namespace zelto::bench
