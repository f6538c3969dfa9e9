#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdalwarper.h>
#include <gtest/gtest.h>

using namespace zelto::test;

TEST(RasterBand, StatisticsLeaveTheFileOfAWarpedViewAsItIs) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"),
                {.width = 20,
                 .height = 10,
                 .geoTransform = NorthUp(500000, 4000000, 30),
                 .srs = "EPSG:32650"},
                {MakePixels(20, 10, [](int c, int r) { return c + r; })});
    {
        const GDALDatasetUniquePtr image(GDALDataset::Open(folder.File("a.tif").c_str()));
        OGRSpatialReference geographic;
        ASSERT_EQ(geographic.SetFromUserInput("EPSG:4326"), OGRERR_NONE);
        char* wkt = nullptr;
        ASSERT_EQ(geographic.exportToWkt(&wkt), OGRERR_NONE);
        const GDALDatasetUniquePtr view(GDALDataset::FromHandle(GDALAutoCreateWarpedVRT(
            image.get(), nullptr, wkt, GRA_NearestNeighbour, 0.2, nullptr)));
        CPLFree(wkt);
        ASSERT_NE(view, nullptr);
        view->SetDescription(folder.File("warped.vrt").c_str());
    }
    const std::string before = ReadFile(folder.Path() / "warped.vrt");
    {
        CRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("warped.vrt").c_str(), GIS_READONLY, false),
                  GIS_SUCCESS);
        CRasterBand& band = *source.GetRasterBand(0);
        double min = 0.0, max = 0.0, mean = 0.0, deviation = 0.0;
        EXPECT_TRUE(band.ComputeStatics(&min, &max, &mean, &deviation, false, nullptr));
        EXPECT_GT(max, 20.0);
        int counts[4] = {};
        EXPECT_TRUE(band.GetHistogram(-0.5, 39.5, 4, counts, false, false, nullptr));
    }
    EXPECT_EQ(ReadFile(folder.Path() / "warped.vrt"), before);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.tif", "warped.vrt"}));
}
