#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"
#include "tests/support/WithoutPrivileges.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::ExposedRasterSource;
using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::RecordingLog;
using zelto::test::RecordingProgress;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

/// Sizes of a band's pyramid as GDAL reads them from a freshly opened file.
std::vector<std::pair<int, int>> Pyramid(const std::string& path, int band = 1) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    std::vector<std::pair<int, int>> sizes;
    GDALRasterBand* image = dataset->GetRasterBand(band);
    for (int i = 0; i < image->GetOverviewCount(); ++i)
        sizes.emplace_back(image->GetOverview(i)->GetXSize(), image->GetOverview(i)->GetYSize());
    return sizes;
}

/// Creates an image, builds its pyramid and answers the levels' sizes.
std::vector<std::pair<int, int>> PyramidOf(RasterDataFormat format, const char* name, int width,
                                           int height) {
    const TemporaryFolder folder;
    CRasterSource source;
    EXPECT_EQ(source.CreateRaster(format, folder.WideFile(name).c_str(), width, height, 1, PDT_Byte,
                                  nullptr, nullptr, nullptr),
              GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(source.Open(folder.WideFile(name).c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    source.Close();
    return Pyramid(folder.File(name));
}

using Sizes = std::vector<std::pair<int, int>>;

/// Alternating columns of 0 and 100.
Pixels Stripes(int width, int height) {
    return MakePixels(width, height, [](int column, int) { return column % 2 * 100.0; });
}

double FirstOverviewPixel(const std::string& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    GDALRasterBand* overview = dataset->GetRasterBand(1)->GetOverview(0);
    double value = -1.0;
    EXPECT_EQ(overview->RasterIO(GF_Read, 0, 0, 1, 1, &value, 1, 1, GDT_Float64, 0, 0, nullptr),
              CE_None);
    return value;
}

} // namespace

TEST(BuildOverviews, LevelsHalveUntilFewEnoughPixelsRemain) {
    EXPECT_EQ(PyramidOf(RDF_GTiff, "a.tif", 64, 64), Sizes{});
    EXPECT_EQ(PyramidOf(RDF_GTiff, "a.tif", 65, 64), (Sizes{{33, 32}}));
    EXPECT_EQ(PyramidOf(RDF_GTiff, "a.tif", 128, 128), (Sizes{{64, 64}}));
    // 16385 / 4 = 4096.25 is still above 4096.
    EXPECT_EQ(PyramidOf(RDF_GTiff, "a.tif", 145, 113), (Sizes{{73, 57}, {37, 29}}));
    EXPECT_EQ(PyramidOf(RDF_GTiff, "a.tif", 500, 400), (Sizes{{250, 200}, {125, 100}, {63, 50}}));
    EXPECT_EQ(PyramidOf(RDF_HFA, "a.img", 500, 400), (Sizes{{250, 200}, {125, 100}, {63, 50}}));
    EXPECT_EQ(PyramidOf(RDF_ENVI, "a", 65, 64), (Sizes{{33, 32}}));
}

TEST(BuildOverviews, PcidskPyramidsEndEarlier) {
    EXPECT_EQ(PyramidOf(RDF_PCIDSK, "a.pix", 256, 256), Sizes{});
    EXPECT_EQ(PyramidOf(RDF_PCIDSK, "a.pix", 257, 256), (Sizes{{129, 128}}));
    EXPECT_EQ(PyramidOf(RDF_PCIDSK, "a.pix", 600, 500), (Sizes{{300, 250}, {150, 125}}));
}

TEST(BuildOverviews, AnImageThatIsTooSmallIsNotedAndCountsAsDone) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 64, .height = 60}, {Stripes(64, 60)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    const RecordingLog log;
    EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
    ASSERT_EQ(log.m_records.size(), 1U);
    EXPECT_EQ(log.m_records[0].level, 3);
    EXPECT_EQ(log.m_records[0].file, L"RasterSource");
    EXPECT_EQ(log.m_records[0].function, L"CRasterSource::BuildOverviews");
    EXPECT_EQ(log.m_records[0].message, L"无须创建金字塔，因影像太小:64, 60");
}

TEST(BuildOverviews, CanBeRepeatedInEveryFormat) {
    const struct {
        RasterDataFormat format;
        const char* name;
    } formats[] = {
        {RDF_GTiff, "a.tif"}, {RDF_HFA, "a.img"}, {RDF_PCIDSK, "a.pix"}, {RDF_ENVI, "a"}};
    for (const auto& format : formats) {
        SCOPED_TRACE(format.name);
        const TemporaryFolder folder;
        CRasterSource source;
        ASSERT_EQ(source.CreateRaster(format.format, folder.WideFile(format.name).c_str(), 300, 300,
                                      1, PDT_Byte, nullptr, nullptr, nullptr),
                  GIS_SUCCESS);
        Pixels pixels(90000, 200.0);
        ASSERT_EQ(source.GetRasterBand(0)->WriteBlock(0, 0, 300, 300, pixels.data(), 300, 300,
                                                      PDT_Float64, 0, 0),
                  GIS_SUCCESS);
        source.Close();
        ASSERT_EQ(source.Open(folder.WideFile(format.name).c_str(), GIS_UPDATE, true), GIS_SUCCESS);
        EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
        EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
        source.Close();
        const Sizes first = Pyramid(folder.File(format.name));
        EXPECT_EQ(first.front(), std::make_pair(150, 150));
        EXPECT_EQ(FirstOverviewPixel(folder.File(format.name)), 200.0);
        ASSERT_EQ(source.Open(folder.WideFile(format.name).c_str(), GIS_READONLY, true),
                  GIS_SUCCESS);
        EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
        source.Close();
        EXPECT_EQ(Pyramid(folder.File(format.name)), first);
    }
}

TEST(BuildOverviews, APyramidInsideTheFileIsReplacedThere) {
    const TemporaryFolder folder;
    CPLSetConfigOption("USE_RRD", "NO");
    WriteRaster(folder.File("a.tif"), {.width = 300, .height = 300, .overviews = {4}},
                {Stripes(300, 300)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(Pyramid(folder.File("a.tif")), (Sizes{{150, 150}, {75, 75}, {38, 38}}));
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
}

TEST(BuildOverviews, OverviewsOfAnOpenSourceStandForTheNewLevels) {
    const TemporaryFolder folder;
    CPLSetConfigOption("USE_RRD", "NO");
    WriteRaster(folder.File("a.tif"), {.width = 300, .height = 300, .overviews = {2, 3}},
                {Stripes(300, 300)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    const CRasterBand& band = *source.GetRasterBand(0);
    ASSERT_EQ(band.GetOverviewCount(), 2);
    CRasterBand& half = *band.GetOverview(0);
    CRasterBand& third = *band.GetOverview(1);
    double value = -1.0;
    ASSERT_EQ(half.GetPixel(&value, 0, 0, PDT_Float64), GIS_SUCCESS);
    EXPECT_EQ(value, 0.0); // the nearest of 0 and 100
    ASSERT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
    ASSERT_EQ(half.GetPixel(&value, 0, 0, PDT_Float64), GIS_SUCCESS);
    EXPECT_EQ(value, 50.0);
    EXPECT_EQ(third.GetWidth(), 100);
    EXPECT_NE(third.GetPixel(&value, 0, 0, PDT_Float64), GIS_SUCCESS); // no such level any more
}

TEST(BuildOverviews, ColourTablesAreNeverAveraged) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("plain.tif"), {.width = 100, .height = 100}, {Stripes(100, 100)});
    WriteRaster(folder.File("table.tif"), {.width = 100, .height = 100}, {Stripes(100, 100)});
    for (const bool withTable : {false, true}) {
        const char* name = withTable ? "table.tif" : "plain.tif";
        CRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile(name).c_str(), GIS_UPDATE, true), GIS_SUCCESS);
        if (withTable) {
            GDALColorTable table;
            const GDALColorEntry red = {255, 0, 0, 255};
            table.SetColorEntry(0, &red);
            ASSERT_EQ(source.GetRasterBand(0)->SetColorTable(&table), GIS_SUCCESS);
        }
        ASSERT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
        source.Close();
        const double value = FirstOverviewPixel(folder.File(name));
        if (withTable)
            EXPECT_TRUE(value == 0.0 || value == 100.0) << value;
        else
            EXPECT_EQ(value, 50.0);
    }
}

TEST(BuildOverviews, ABandListBuildsThoseBandsOnly) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 100, .height = 100},
                {Stripes(100, 100), Stripes(100, 100)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    int bands[] = {2};
    EXPECT_EQ(source.BuildOverviews("NEAREST", 1, bands, nullptr), GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(Pyramid(folder.File("a.tif"), 1), Sizes{});
    EXPECT_EQ(Pyramid(folder.File("a.tif"), 2), (Sizes{{50, 50}}));
}

TEST(BuildOverviews, ReportsProgressAndStopsWhenCancelled) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 600, .height = 600}, {Stripes(600, 600)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    RecordingProgress cancelling(2);
    EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, &cancelling), GIS_FAILED);
    source.Close();
    EXPECT_EQ(Pyramid(folder.File("a.tif")), Sizes{});

    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    RecordingProgress progress;
    EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, &progress), GIS_SUCCESS);
    ASSERT_FALSE(progress.m_steps.empty());
    EXPECT_EQ(progress.m_steps.back().first, 100);
    EXPECT_EQ(progress.m_steps.back().second, L"处理中：");
    EXPECT_TRUE(progress.m_stages.empty());
}

TEST(BuildOverviews, ACancelledPyramidInsideTheFileFailsAndIsRemoved) {
    const TemporaryFolder folder;
    CPLSetConfigOption("USE_RRD", "NO");
    WriteRaster(folder.File("a.tif"), {.width = 600, .height = 600, .overviews = {4}},
                {Stripes(600, 600)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    RecordingProgress cancelling(1);
    EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, &cancelling), GIS_FAILED);
    source.Close();
    EXPECT_EQ(Pyramid(folder.File("a.tif")), Sizes{});
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), Stripes(600, 600));
}

TEST(BuildOverviews, BadArgumentsFail) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 100, .height = 100}, {Stripes(100, 100)});
    CRasterSource source;
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_FAILED);
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews(nullptr, 0, nullptr, nullptr), GIS_FAILED);
    EXPECT_EQ(source.BuildOverviews("", 0, nullptr, nullptr), GIS_FAILED);
    EXPECT_EQ(source.BuildOverviews("no such method", 0, nullptr, nullptr), GIS_FAILED);
    for (int band : {0, -1, 2, 7})
        EXPECT_EQ(source.BuildOverviews("NEAREST", 1, &band, nullptr), GIS_FAILED);
    EXPECT_EQ(source.BuildOverviews("NEAREST", 1, nullptr, nullptr), GIS_FAILED);
    EXPECT_EQ(source.BuildOverviews("NEAREST", -1, nullptr, nullptr), GIS_FAILED);
}

TEST(BuildOverviews, OfAWarpedViewGoIntoItsFile) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"),
                {.width = 300,
                 .height = 300,
                 .geoTransform = std::array<double, 6>{1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0}},
                {Stripes(300, 300)});
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    ASSERT_TRUE(source.HasBase());
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    EXPECT_EQ(source.Base()->GetRasterBand(1)->GetOverviewCount(), 3);
    EXPECT_GT(source.GetGDALDataset()->GetRasterBand(1)->GetOverviewCount(), 0);
    source.Close();
    EXPECT_EQ(Pyramid(folder.File("a.tif")).size(), 3U);
    EXPECT_EQ(zelto::test::OpenDatasetCount(), 0);
}

TEST(OverviewsValid, LargeImagesNeedAPyramid) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("small.tif"), {.width = 256, .height = 256}, {Stripes(256, 256)});
    WriteRaster(folder.File("large.tif"), {.width = 257, .height = 256}, {Stripes(257, 256)});
    CRasterSource source;
    EXPECT_TRUE(source.IsOverviewsValid());
    ASSERT_EQ(source.Open(folder.WideFile("small.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOverviewsValid());
    ASSERT_EQ(source.Open(folder.WideFile("large.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_FALSE(source.IsOverviewsValid());
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    ASSERT_EQ(source.Reopen(GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOverviewsValid());
}

TEST(OverviewsValid, UnknownFormatsAndContainersAlwaysAre) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.data"), {.width = 300, .height = 300}, {Stripes(300, 300)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.data").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    ASSERT_EQ(source.GetRasterDataFormat(), RDF_Unknown);
    EXPECT_TRUE(source.IsOverviewsValid());

    WriteRaster(folder.File("a.tif"), {.width = 300, .height = 300}, {Stripes(300, 300)});
    CDatasetOpenInfo info(folder.WideFile("a.tif").c_str(), GIS_READONLY);
    info.AddSubFileNames(folder.WideFile("a.tif").c_str());
    ASSERT_EQ(source.Open(info), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOverviewsValid());
}

TEST(OverviewsValid, AWarpedViewIsGivenAPyramidOnceItsFileHasOne) {
    const TemporaryFolder folder;
    const std::array<double, 6> rotated = {1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0};
    WriteRaster(folder.File("large.tif"), {.width = 300, .height = 300, .geoTransform = rotated},
                {Stripes(300, 300)});
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("large.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_FALSE(source.IsOverviewsValid());
    EXPECT_EQ(source.GetGDALDataset()->GetRasterBand(1)->GetOverviewCount(), 0);

    // The file is below the limit, its view above.
    WriteRaster(folder.File("edge.tif"), {.width = 250, .height = 250, .geoTransform = rotated},
                {Stripes(250, 250)});
    ASSERT_EQ(source.Open(folder.WideFile("edge.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    ASSERT_GT(source.GetWidth() * source.GetHeight(), 65536);
    EXPECT_TRUE(source.IsOverviewsValid());
    EXPECT_GT(source.GetGDALDataset()->GetRasterBand(1)->GetOverviewCount(), 0);
}

TEST(BuildOverviews, LevelsOfOneColumnAreToldByTheirRows) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 1, .height = 20'000}, {Pixels(20'000, 3.0)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    ASSERT_EQ(source.Reopen(GIS_UPDATE, false), GIS_SUCCESS);
    CRasterBand& band = *source.GetRasterBand(0);
    ASSERT_EQ(band.GetOverviewCount(), 2);
    EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
    EXPECT_EQ(band.GetOverview(0)->GetGDALBand()->GetYSize(), 10'000);
    EXPECT_EQ(band.GetOverview(1)->GetGDALBand()->GetYSize(), 5'000);
}

TEST(BuildOverviews, AnImagineFileThatIsTooSmallCountsAsDone) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.img"), {.width = 60, .height = 60, .driver = "HFA"},
                {Stripes(60, 60)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.img").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOpened());
    EXPECT_EQ(Pyramid(folder.File("a.img")), Sizes{});
}

TEST(BuildOverviews, OfAnImagineFileThatIsGoneFails) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.img"), {.width = 300, .height = 300, .driver = "HFA"},
                {Stripes(300, 300)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.img").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    std::filesystem::remove(folder.File("a.img"));
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), folder.File("a.img") + ": it is not open");
    EXPECT_FALSE(source.IsOpened());
}

TEST(BuildOverviews, TheDataSetAndItsBandsMustBeThere) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 100, .height = 100}, {Stripes(100, 100)});
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    GDALDataset* const dataset = source.GetGDALDataset();
    EXPECT_EQ(source.BuildOverviews(nullptr, "NEAREST", 0, nullptr, nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), folder.File("a.tif") + ": it is not open");
    EXPECT_EQ(source.BuildOverviews(dataset, "no such method", 0, nullptr, nullptr), GIS_FAILED);
    int band = 2;
    EXPECT_EQ(source.BuildOverviews(dataset, "NEAREST", 1, &band, nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              folder.File("a.tif") + ": it has no such bands, or no such method");
    EXPECT_EQ(source.BuildOverviews(dataset, "NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    EXPECT_EQ(Pyramid(folder.File("a.tif")).size(), 1U);
}

TEST(BuildOverviews, OfAnImageWithAFileOfMasksLeaveNothingUnfinished) {
    for (const GISDataAccess access : {GIS_UPDATE, GIS_READONLY}) {
        SCOPED_TRACE(access == GIS_UPDATE ? "inside" : "beside");
        const TemporaryFolder folder;
        for (const char* name : {"a.tif", "a.tif.msk"})
            WriteRaster(folder.File(name), {.width = 300, .height = 300}, {Stripes(300, 300)});
        CRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), access, true), GIS_SUCCESS);
        RecordingProgress cancelling(1);
        EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, &cancelling), GIS_FAILED);
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  folder.File("a.tif") + ": the build of its pyramid was cancelled");
        source.Close();
        EXPECT_EQ(Pyramid(folder.File("a.tif")), Sizes{});
        for (int time = 0; time < 2; ++time) {
            ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), access, true), GIS_SUCCESS);
            EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS)
                << CGISDataSource::GetLastErrorText();
            source.Close();
            EXPECT_EQ(Pyramid(folder.File("a.tif")).size(), 3U);
        }
    }
}

TEST(BuildOverviews, BesideAnImageInAFolderThatCannotBeWrittenFails) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 300, .height = 300}, {Stripes(300, 300)});
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0555));
    {
        const zelto::test::WithoutPrivileges unprivileged;
        CRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
        EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_FAILED);
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  folder.File("a.tif") + ": its folder cannot be written");
    }
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
}

TEST(BuildOverviews, OfAnImagineFileThatTheDiskHasNoRoomForIsNotBegun) {
    const TemporaryFolder folder;
    const zelto::test::SmallDisk disk(folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount";
    WriteRaster(folder.File("disk/a.img"),
                {.width = 2000, .height = 2000, .driver = "HFA", .options = {"COMPRESSED=YES"}},
                {Pixels(std::size_t{2000} * 2000, 7.0)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("disk/a.img").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              folder.File("disk/a.img") + ": there is no room for its pyramid");
    source.Close();
    EXPECT_EQ(Pyramid(folder.File("disk/a.img")), Sizes{});
}

TEST(OverviewsValid, AWarpedViewOfALargeFileWithAPyramidIs) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"),
                {.width = 300,
                 .height = 300,
                 .geoTransform = std::array<double, 6>{1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0},
                 .overviews = {2}},
                {Stripes(300, 300)});
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    ASSERT_TRUE(source.HasBase());
    EXPECT_TRUE(source.IsOverviewsValid());
}

TEST(BuildOverviews, OfAnImagineFileThatCannotBeChangedGoBesideIt) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.img"), {.width = 300, .height = 300, .driver = "HFA"},
                {Stripes(300, 300)});
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0777));
    std::filesystem::permissions(folder.File("a.img"), std::filesystem::perms(0444));
    const std::string bytes = zelto::test::ReadFile(folder.Path() / "a.img");
    CRasterSource source;
    {
        const zelto::test::WithoutPrivileges unprivileged;
        ASSERT_EQ(source.Open(folder.WideFile("a.img").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
        EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS)
            << CGISDataSource::GetLastErrorText();
        source.Close();
    }
    EXPECT_EQ(zelto::test::ReadFile(folder.Path() / "a.img"), bytes);
    EXPECT_EQ(Pyramid(folder.File("a.img")).size(), 3U);
}
