#include "tests/support/RasterFile.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

namespace zelto::test {

std::string WriteRaster(const std::string& path, const RasterSpec& spec,
                        const std::vector<Pixels>& bands) {
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(spec.driver.c_str());
    EXPECT_NE(driver, nullptr) << "no driver " << spec.driver;
    if (driver == nullptr)
        return path;
    CPLStringList options;
    for (const std::string& option : spec.options)
        options.AddString(option.c_str());
    GDALDatasetUniquePtr dataset(driver->Create(path.c_str(), spec.width, spec.height,
                                                static_cast<int>(bands.size()), spec.type,
                                                options.List()));
    EXPECT_NE(dataset, nullptr) << "cannot create " << path;
    if (!dataset)
        return path;
    if (spec.geoTransform) {
        std::array<double, 6> geoTransform = *spec.geoTransform;
        EXPECT_EQ(dataset->SetGeoTransform(geoTransform.data()), CE_None);
    }
    if (!spec.srs.empty()) {
        OGRSpatialReference srs;
        EXPECT_EQ(srs.SetFromUserInput(spec.srs.c_str()), OGRERR_NONE);
        EXPECT_EQ(dataset->SetSpatialRef(&srs), CE_None);
    }
    for (std::size_t i = 0; i < bands.size(); ++i) {
        GDALRasterBand* band = dataset->GetRasterBand(static_cast<int>(i) + 1);
        if (spec.noData) {
            EXPECT_EQ(band->SetNoDataValue(*spec.noData), CE_None);
        }
        EXPECT_EQ(bands[i].size(), static_cast<std::size_t>(spec.width) * spec.height);
        Pixels pixels = bands[i];
        EXPECT_EQ(band->RasterIO(GF_Write, 0, 0, spec.width, spec.height, pixels.data(), spec.width,
                                 spec.height, GDT_Float64, 0, 0, nullptr),
                  CE_None);
    }
    if (!spec.overviews.empty()) {
        std::vector<int> levels = spec.overviews;
        EXPECT_EQ(dataset->BuildOverviews("NEAREST", static_cast<int>(levels.size()), levels.data(),
                                          0, nullptr, nullptr, nullptr),
                  CE_None);
    }
    return path;
}

std::string WriteContainer(const std::string& path, const RasterSpec& spec,
                           const std::vector<Pixels>& bands) {
    const std::string plain = WriteRaster(path + ".tif", spec, bands);
    const GDALDatasetUniquePtr image(GDALDataset::Open(plain.c_str(), GDAL_OF_RASTER));
    GDALDriver* netcdf = GetGDALDriverManager()->GetDriverByName("netCDF");
    const GDALDatasetUniquePtr container(
        netcdf->CreateCopy(path.c_str(), image.get(), FALSE, nullptr, nullptr, nullptr));
    EXPECT_NE(container, nullptr);
    VSIUnlink(plain.c_str());
    return path;
}

Pixels ReadBand(const std::string& path, int bandNumber) {
    GDALAllRegister();
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    EXPECT_NE(dataset, nullptr) << "cannot open " << path;
    if (!dataset)
        return {};
    GDALRasterBand* band = dataset->GetRasterBand(bandNumber);
    Pixels pixels(static_cast<std::size_t>(band->GetXSize()) * band->GetYSize());
    EXPECT_EQ(band->RasterIO(GF_Read, 0, 0, band->GetXSize(), band->GetYSize(), pixels.data(),
                             band->GetXSize(), band->GetYSize(), GDT_Float64, 0, 0, nullptr),
              CE_None);
    return pixels;
}

std::array<double, 6> NorthUp(double left, double top, double pixelSize) {
    return {left, pixelSize, 0.0, top, 0.0, -pixelSize};
}

void AddMask(const std::string& path, std::vector<unsigned char> values, int width, int height) {
    GDALAllRegister();
    const CPLConfigOptionSetter inside("GDAL_TIFF_INTERNAL_MASK", "YES", true);
    const GDALDatasetUniquePtr file(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(file->CreateMaskBand(GMF_PER_DATASET), CE_None);
    ASSERT_EQ(file->GetRasterBand(1)->GetMaskBand()->RasterIO(GF_Write, 0, 0, width, height,
                                                              values.data(), width, height,
                                                              GDT_Byte, 0, 0, nullptr),
              CE_None);
}

} // namespace zelto::test
