#include "tests/raster/TestBand.h"

#include <array>

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::ReadFile;
using zelto::test::TestBand;

namespace {

const Pixels SLOPE = MakePixels(64, 64, [](int c, int r) { return c + r; });

/// Everything that GDAL would write down.
void ComputeAll(CRasterBand& band) {
    double min = 0.0;
    double max = 0.0;
    double mean = 0.0;
    double deviation = 0.0;
    std::array<int, 16> counts{};
    EXPECT_TRUE(band.ComputeStatics(&min, &max, &mean, &deviation, false, nullptr));
    EXPECT_TRUE(band.ComputeMinMax(&min, &max, false));
    EXPECT_TRUE(band.GetHistogram(min, max, 16, counts.data(), false, true, nullptr));
    EXPECT_TRUE(band.EnableHistogramEqualize());
}

} // namespace

TEST(ReadOnlySource, StatisticsLeaveNoFileBehind) {
    TestBand band({.width = 64, .height = 64, .overviews = {2}}, SLOPE);
    const std::string before = ReadFile(band.Path());
    ComputeAll(*band);
    ComputeAll(*band->GetOverview(0));
    band.Close();
    EXPECT_EQ(band.Folder().Names(), (std::vector<std::string>{"band.tif"}));
    EXPECT_EQ(ReadFile(band.Path()), before);
}

TEST(ReadOnlySource, AVirtualRasterAndItsSourceStayAsTheyAre) {
    TestBand band({.width = 64, .height = 64}, SLOPE);
    band.Close();
    const std::string path = band.Folder().File("view.vrt");
    {
        GDALDatasetUniquePtr source(GDALDataset::Open(band.Path().c_str(), GDAL_OF_RASTER));
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("VRT");
        GDALDatasetUniquePtr view(
            driver->CreateCopy(path.c_str(), source.get(), FALSE, nullptr, nullptr, nullptr));
        ASSERT_NE(view, nullptr);
    }
    const std::string before = ReadFile(path);
    const auto names = band.Folder().Names();
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    {
        CRasterBand view(dataset->GetRasterBand(1), true, false);
        ComputeAll(view);
    }
    dataset.reset();
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_EQ(band.Folder().Names(), names);
}

TEST(ReadOnlySource, AnExistingSideFileIsNotTouched) {
    TestBand band({.width = 64, .height = 64}, SLOPE);
    // Let GDAL write one with its own statistics.
    double ignored[4];
    ASSERT_EQ(band.Gdal()->ComputeStatistics(FALSE, &ignored[0], &ignored[1], &ignored[2],
                                             &ignored[3], nullptr, nullptr),
              CE_None);
    band.Open(GDAL_OF_READONLY);
    const std::string sideFile = band.Folder().File("band.tif.aux.xml");
    const std::string before = ReadFile(sideFile);
    ASSERT_NE(before.find("STATISTICS_MEAN"), std::string::npos);
    ComputeAll(*band);
    band.Close();
    EXPECT_EQ(ReadFile(sideFile), before);
}

TEST(ReadOnlySource, ExactResultsAreGdalsOwn) {
    for (const GDALDataType type :
         {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_UInt32, GDT_Int32, GDT_Float32, GDT_Float64}) {
        TestBand band(
            {.width = 64, .height = 64, .type = type, .noData = 30.0, .overviews = {2, 4}}, SLOPE);
        double found[4] = {};
        std::array<int, 50> counts{};
        ASSERT_TRUE(
            band->ComputeStatics(&found[0], &found[1], &found[2], &found[3], false, nullptr));
        ASSERT_TRUE(band->GetHistogram(-0.5, 126.5, 50, counts.data(), false, false, nullptr));
        double expected[4] = {};
        std::array<GUIntBig, 50> expectedCounts{};
        ASSERT_EQ(band.Gdal()->ComputeStatistics(FALSE, &expected[0], &expected[1], &expected[2],
                                                 &expected[3], nullptr, nullptr),
                  CE_None);
        ASSERT_EQ(band.Gdal()->GetHistogram(-0.5, 126.5, 50, expectedCounts.data(), FALSE, FALSE,
                                            nullptr, nullptr),
                  CE_None);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(found[i], expected[i]) << GDALGetDataTypeName(type) << " " << i;
        for (std::size_t i = 0; i < counts.size(); ++i)
            EXPECT_EQ(static_cast<GUIntBig>(counts[i]), expectedCounts[i]);
    }
}

TEST(ReadOnlySource, AMaskIsTreatedAsGdalTreatsIt) {
    for (const GDALDataType type : {GDT_Byte, GDT_Float32}) {
        TestBand band({.width = 2, .height = 2, .type = type}, {1, 2, 3, 200});
        band.Close();
        CPLSetThreadLocalConfigOption("GDAL_TIFF_INTERNAL_MASK", "YES");
        {
            GDALDatasetUniquePtr dataset(
                GDALDataset::Open(band.Path().c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
            ASSERT_EQ(dataset->CreateMaskBand(GMF_PER_DATASET), CE_None);
            std::array<std::uint8_t, 4> mask = {255, 255, 255, 0};
            ASSERT_EQ(dataset->GetRasterBand(1)->GetMaskBand()->RasterIO(
                          GF_Write, 0, 0, 2, 2, mask.data(), 2, 2, GDT_Byte, 0, 0, nullptr),
                      CE_None);
        }
        CPLSetThreadLocalConfigOption("GDAL_TIFF_INTERNAL_MASK", nullptr);
        band.Open(GDAL_OF_READONLY);
        double found[4] = {};
        double expected[4] = {};
        std::array<int, 4> counts{};
        std::array<GUIntBig, 4> expectedCounts{};
        EXPECT_TRUE(
            band->ComputeStatics(&found[0], &found[1], &found[2], &found[3], false, nullptr));
        EXPECT_TRUE(band->GetHistogram(0.5, 256.5, 4, counts.data(), false, false, nullptr));
        ASSERT_EQ(band.Gdal()->ComputeStatistics(FALSE, &expected[0], &expected[1], &expected[2],
                                                 &expected[3], nullptr, nullptr),
                  CE_None);
        ASSERT_EQ(band.Gdal()->GetHistogram(0.5, 256.5, 4, expectedCounts.data(), FALSE, FALSE,
                                            nullptr, nullptr),
                  CE_None);
        EXPECT_EQ(found[1], expected[1]);
        EXPECT_EQ(found[2], expected[2]);
        EXPECT_EQ(counts[3], static_cast<int>(expectedCounts[3]));
    }
}

TEST(SourceOpenForUpdate, KeepsItsStatistics) {
    TestBand band({.width = 64, .height = 64}, SLOPE, GDAL_OF_UPDATE);
    ComputeAll(*band);
    band.Open(GDAL_OF_READONLY);
    EXPECT_NE(band.Gdal()->GetMetadataItem("STATISTICS_MEAN"), nullptr);
}
