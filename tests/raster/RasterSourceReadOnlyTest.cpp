#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"

#include <gdal_priv.h>
#include <gdalwarper.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <string>

namespace fs = std::filesystem;

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::ReadFile;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

namespace {

constexpr int SMALL_SIDE = 96;

/// Every file of a folder, by its name, with its bytes.
std::map<std::string, std::string> Contents(const TemporaryFolder& folder) {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path()))
        if (entry.is_regular_file())
            contents[entry.path().lexically_relative(folder.Path())] = ReadFile(entry.path());
    return contents;
}

std::string Source(const std::string& kind, const std::string& file, const std::string& extra = {},
                   int band = 1) {
    return "<" + kind + "><SourceFilename relativeToVRT='1'>" + file +
           "</SourceFilename><SourceBand>" + std::to_string(band) + "</SourceBand>" + extra + "</" +
           kind + ">";
}

std::string Placed(int left) {
    const std::string size =
        " xSize='" + std::to_string(SMALL_SIDE) + "' ySize='" + std::to_string(SMALL_SIDE) + "'/>";
    return "<SrcRect xOff='0' yOff='0'" + size + "<DstRect xOff='" + std::to_string(left) +
           "' yOff='0'" + size;
}

/// A virtual raster of one band.
void WriteView(const TemporaryFolder& folder, const std::string& name, const std::string& type,
               const std::string& band, int width = SMALL_SIDE,
               const std::string& bandAttributes = {}) {
    WriteFile(folder.Path() / name, "<VRTDataset rasterXSize='" + std::to_string(width) +
                                        "' rasterYSize='" + std::to_string(SMALL_SIDE) +
                                        "'><GeoTransform>0,1,0,96,0,-1</GeoTransform>"
                                        "<VRTRasterBand dataType='" +
                                        type + "' band='1'" + bandAttributes + ">" + band +
                                        "</VRTRasterBand></VRTDataset>");
}

void WriteWarpedView(const TemporaryFolder& folder, const std::string& name,
                     const std::string& file) {
    const GDALDatasetUniquePtr source(GDALDataset::Open(folder.File(file).c_str(), GDAL_OF_RASTER));
    ASSERT_NE(source, nullptr);
    GDALDatasetUniquePtr view(GDALDataset::FromHandle(GDALAutoCreateWarpedVRT(
        source.get(), source->GetProjectionRef(), nullptr, GRA_NearestNeighbour, 0.2, nullptr)));
    ASSERT_NE(view, nullptr);
    view->SetDescription(folder.File(name).c_str());
}

const std::string NO_DATA = "<NoDataValue>0</NoDataValue>";
const std::string SHARPEN = "<Kernel><Size>3</Size><Coefs>0 -1 0 -1 6 -1 0 -1 0</Coefs></Kernel>";

/// Files and views of every kind over them. The kernel leads beyond the range of the file.
void WriteFiles(const TemporaryFolder& folder) {
    const Pixels pixels = MakePixels(
        SMALL_SIDE, SMALL_SIDE, [](int c, int r) { return c < 8 ? 0 : (c * 37 + r * 101) % 900; });
    const Pixels other =
        MakePixels(SMALL_SIDE, SMALL_SIDE, [](int c, int r) { return 5 + (c * r) % 700; });
    zelto::test::WriteRaster(folder.File("file.tif"),
                             {.width = SMALL_SIDE,
                              .height = SMALL_SIDE,
                              .type = GDT_UInt16,
                              .geoTransform = zelto::test::NorthUp(0.0, 96.0, 1.0),
                              .srs = "EPSG:32650",
                              .noData = 0.0},
                             {pixels, other, pixels});
    zelto::test::WriteRaster(
        folder.File("plain.tif"),
        {.width = SMALL_SIDE, .height = SMALL_SIDE, .type = GDT_UInt16, .overviews = {2}}, {other});
    zelto::test::WriteRaster(folder.File("float.tif"),
                             {.width = SMALL_SIDE, .height = SMALL_SIDE, .type = GDT_Float32},
                             {pixels});
    zelto::test::WriteRaster(folder.File("rotated.tif"),
                             {.width = SMALL_SIDE,
                              .height = SMALL_SIDE,
                              .type = GDT_UInt16,
                              .geoTransform = std::array<double, 6>{0, 1, 0.3, 96, 0.2, -1},
                              .srs = "EPSG:32650",
                              .noData = 0.0},
                             {pixels});
    WriteView(folder, "simple.vrt", "UInt16", Source("SimpleSource", "plain.tif"));
    WriteView(folder, "nodata.vrt", "UInt16", NO_DATA + Source("SimpleSource", "file.tif"));
    WriteView(folder, "float.vrt", "Float32", Source("SimpleSource", "float.tif"));
    WriteView(folder, "mosaic.vrt", "UInt16",
              NO_DATA + Source("SimpleSource", "file.tif", Placed(0)) +
                  Source("SimpleSource", "file.tif", Placed(SMALL_SIDE), 2),
              2 * SMALL_SIDE);
    WriteView(folder, "scaled.vrt", "Float32",
              Source("ComplexSource", "file.tif", "<ScaleRatio>0.25</ScaleRatio>"));
    WriteView(folder, "filtered.vrt", "Int16",
              Source("KernelFilteredSource", "plain.tif", SHARPEN));
    WriteView(folder, "filtered_nodata.vrt", "UInt16",
              NO_DATA + Source("KernelFilteredSource", "file.tif", SHARPEN));
    WriteView(folder, "derived.vrt", "Float32",
              "<PixelFunctionType>sqrt</PixelFunctionType>" + Source("SimpleSource", "file.tif"),
              SMALL_SIDE, " subClass='VRTDerivedRasterBand'");
    WriteView(folder, "nested.vrt", "UInt16", NO_DATA + Source("SimpleSource", "nodata.vrt"));
    WriteView(folder, "nested_filtered.vrt", "UInt16",
              NO_DATA + Source("SimpleSource", "filtered_nodata.vrt"));
    WriteWarpedView(folder, "warped.vrt", "rotated.tif");
    WriteView(folder, "nested_warped.vrt", "UInt16",
              NO_DATA + Source("SimpleSource", "warped.vrt"));
}

void RunBandOperations(CRasterBand& band) {
    double values[4] = {};
    std::array<int, 16> counts{};
    band.GetMean();
    band.ComputeMinMax(&values[0], &values[1], false);
    band.ComputeStatics(&values[0], &values[1], &values[2], &values[3], false, nullptr);
    band.ComputeStaticsFromCustom(values[0], values[1], values[2], values[3], nullptr);
    band.GetHistogram(values[0], values[1] + 1.0, 16, counts.data(), false, true, nullptr);
    band.GetHistogram(0.0, 50.0, 16, counts.data(), true, false, nullptr);
    band.EnableHistogramEqualize();
    band.SetCustomHistogram(0.0, 16.0, 16, counts.data());
    band.SetNoDataValue(3.0, false);
    band.GetData(0, 0, band.GetWidth(), band.GetHeight(), 20, 20);
    band.GetPixel(values, 0, 0, PDT_Float64);
    band.FlushCache();
    __int64 count = 0;
    CRasterAlgorithm::ComputeBandApproxStatics(band.GetGDALBand(), count, values[0], values[1],
                                               values[2], values[3], nullptr, nullptr, false,
                                               nullptr);
    for (int i = 0; i < band.GetOverviewCount(); ++i)
        RunBandOperations(*band.GetOverview(i));
}

void RunSourceOperations(CRasterSource& source) {
    for (int i = 0; i < source.GetBandCount(); ++i)
        RunBandOperations(*source.GetRasterBand(i));
    CRegionStatistics statistics(&source);
    statistics.Compute(nullptr);
    statistics.ComputePercentiles(2.0, 98.0, nullptr);
    statistics.ComputeCovariance(nullptr);
    source.AllBandHistogramEqualize();
    source.EnableHistogramEqualize();
    CBoundingBox box = source.GetExtent();
    std::vector<unsigned char> picture(std::size_t{40} * 40 * 4);
    for (const StretchType stretch : {StretchNone, StretchStdDev, StretchHistEqualize}) {
        source.SetStretchType(stretch);
        source.GetShowData(&box, 40, 40, picture.data(), true);
    }
}

void ExpectOperationsToLeaveAllFiles(const TemporaryFolder& folder) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const auto before = Contents(folder);
    for (const auto& [name, bytes] : before) {
        for (const bool light : {false, true}) {
            {
                CRasterSource source;
                source.SetForDisplay(true);
                const std::wstring path = zelto::test::Wide(folder.File(name));
                const GISError opened = light ? source.OpenSimple(path.c_str(), GIS_READONLY, true)
                                              : source.Open(path.c_str(), GIS_READONLY, true);
                if (opened != GIS_SUCCESS)
                    continue;
                RunSourceOperations(source);
            }
            const auto after = Contents(folder);
            for (const auto& [file, content] : after) {
                const auto old = before.find(file);
                if (old == before.end()) {
                    ADD_FAILURE() << name << " made " << file;
                    fs::remove(folder.Path() / file);
                } else if (old->second != content) {
                    ADD_FAILURE() << name << " changed " << file;
                    WriteFile(folder.Path() / file, old->second);
                }
            }
            EXPECT_EQ(after.size(), before.size()) << name;
        }
    }
}

/// Smallest and greatest value of a band in its own type, its no-data value left out.
std::array<double, 2> RangeOfPixels(CRasterBand& band) {
    const auto type = static_cast<GDALDataType>(band.GetDataType());
    const int size = GDALGetDataTypeSizeBytes(type);
    const int count = band.GetWidth() * band.GetHeight();
    std::vector<std::byte> stored(static_cast<std::size_t>(count) * static_cast<std::size_t>(size));
    EXPECT_EQ(band.ReadBlock(0, 0, band.GetWidth(), band.GetHeight(), stored.data(),
                             band.GetWidth(), band.GetHeight(), band.GetDataType(), 0, 0),
              GIS_SUCCESS);
    Pixels pixels(static_cast<std::size_t>(count));
    GDALCopyWords(stored.data(), type, size, pixels.data(), GDT_Float64, sizeof(double), count);
    std::erase_if(pixels, [&](double value) { return band.IsNoData(value); });
    const auto [low, high] = std::minmax_element(pixels.begin(), pixels.end());
    return {*low, *high};
}

/// The names that open as rasters; pyramids may lie beside them.
std::vector<std::string> Rasters(const TemporaryFolder& folder) {
    std::vector<std::string> names = folder.Names();
    std::erase_if(names, [](const std::string& name) {
        return !name.ends_with(".tif") && !name.ends_with(".vrt");
    });
    return names;
}

} // namespace

TEST(ReadOnlySource, NoOperationChangesAFileBehindAVirtualRasterOfAnyKind) {
    CGISDataSource::RegisterGDAL();
    {
        const TemporaryFolder folder;
        WriteFiles(folder);
        ExpectOperationsToLeaveAllFiles(folder);
    }
    CGISDataSource::DestroyGDAL();
}

TEST(ReadOnlySource, NoOperationChangesAFileOfTheRealRasters) {
    ZELTO_REQUIRE_TEST_DATA();
    CGISDataSource::RegisterGDAL();
    {
        const TemporaryFolder folder;
        for (const auto& entry : fs::directory_iterator(zelto::test::TestDataFile("raster/src")))
            if (entry.is_regular_file() && entry.file_size() < 2U << 20U)
                fs::copy(entry.path(), folder.Path() / entry.path().filename());
        ExpectOperationsToLeaveAllFiles(folder);
    }
    CGISDataSource::DestroyGDAL();
}

TEST(ReadOnlySource, TheExactRangeIsThatOfTheVirtualBandsPixels) {
    CGISDataSource::RegisterGDAL();
    {
        const TemporaryFolder folder;
        WriteFiles(folder);
        for (const std::string& name : Rasters(folder)) {
            CRasterSource source;
            ASSERT_EQ(source.Open(folder.WideFile(name).c_str(), GIS_READONLY, true), GIS_SUCCESS)
                << name;
            ASSERT_NE(source.GetRasterBand(0), nullptr);
            CRasterBand& band = *source.GetRasterBand(0);
            const auto expected = RangeOfPixels(band);
            double found[2] = {};
            ASSERT_TRUE(band.ComputeMinMax(&found[0], &found[1], false)) << name;
            EXPECT_EQ(found[0], expected[0]) << name;
            EXPECT_EQ(found[1], expected[1]) << name;
        }
    }
    CGISDataSource::DestroyGDAL();
}

TEST(ReadOnlySource, TheApproximateRangeIsGdals) {
    CGISDataSource::RegisterGDAL();
    {
        const TemporaryFolder folder;
        WriteFiles(folder);
        // Large enough that the pyramid is approximated by blocks in its turn.
        constexpr int LARGE = 1024;
        zelto::test::WriteRaster(
            folder.File("large.tif"),
            {.width = LARGE, .height = LARGE, .type = GDT_UInt16, .overviews = {2, 4}},
            {MakePixels(LARGE, LARGE, [](int c, int r) { return (c * c + r * r) % 60000; })});
        WriteFile(folder.Path() / "large.vrt", "<VRTDataset rasterXSize='1024' rasterYSize='1024'>"
                                               "<VRTRasterBand dataType='UInt16' band='1'>" +
                                                   Source("SimpleSource", "large.tif") +
                                                   "</VRTRasterBand></VRTDataset>");
        for (const std::string& name : Rasters(folder)) {
            double expected[2] = {};
            double found[2] = {};
            {
                CRasterSource source;
                ASSERT_EQ(source.OpenSimple(folder.WideFile(name).c_str(), GIS_READONLY, false),
                          GIS_SUCCESS);
                found[0] = source.GetRasterBand(0)->GetMinimum();
                found[1] = source.GetRasterBand(0)->GetMaximum();
            }
            const TemporaryFolder copy;
            fs::copy(folder.Path(), copy.Path(), fs::copy_options::recursive);
            const GDALDatasetUniquePtr dataset(
                GDALDataset::Open(copy.File(name).c_str(), GDAL_OF_RASTER));
            ASSERT_EQ(dataset->GetRasterBand(1)->ComputeRasterMinMax(TRUE, expected), CE_None);
            if (name.find("filtered") != std::string::npos)
                continue; // there GDAL answers the range of the file behind the filter
            EXPECT_EQ(found[0], expected[0]) << name;
            EXPECT_EQ(found[1], expected[1]) << name;
        }
    }
    CGISDataSource::DestroyGDAL();
}
