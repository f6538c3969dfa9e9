#include "zelto/datasource/GISDataSource.h"

#include "tests/raster/TestBand.h"

#include <array>
#include <cstdint>

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::TestBand;
using zelto::test::Twelve;

namespace {} // namespace

TEST(RasterBandBlocks, ReadsARegionInTheAskedType) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    std::array<double, 4> read{};
    EXPECT_EQ(band->ReadBlock(1, 1, 2, 2, read.data(), 2, 2, PDT_Float64, 0, 0), GIS_SUCCESS);
    EXPECT_EQ(read, (std::array<double, 4>{5, 6, 9, 10}));
}

TEST(RasterBandBlocks, TypeZeroMeansTheBandsOwn) {
    TestBand band({.width = 4, .height = 3, .type = GDT_UInt16}, Twelve());
    std::array<std::uint16_t, 12> read{};
    EXPECT_EQ(band->ReadBlock(0, 0, 4, 3, read.data(), 4, 3, PDT_Unknown, 0, 0), GIS_SUCCESS);
    EXPECT_EQ(read[11], 11);
    EXPECT_EQ(read[5], 5);
}

TEST(RasterBandBlocks, HonoursPixelAndLineSpacing) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    std::array<std::uint8_t, 20> read{};
    EXPECT_EQ(band->ReadBlock(0, 0, 2, 2, read.data(), 2, 2, PDT_Byte, 3, 10), GIS_SUCCESS);
    EXPECT_EQ(read[3], 1);
    EXPECT_EQ(read[10], 4);
    EXPECT_EQ(read[13], 5);
    EXPECT_EQ(read[4], 0);
}

TEST(RasterBandBlocks, ResamplesWhenTheBufferDiffers) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    std::array<std::uint8_t, 2> read{};
    EXPECT_EQ(band->ReadBlock(0, 0, 4, 1, read.data(), 2, 1, PDT_Byte, 0, 0), GIS_SUCCESS);
    EXPECT_EQ(read, (std::array<std::uint8_t, 2>{1, 3})); // GDAL takes pixel floor((i + 0.5) × 2)
}

TEST(RasterBandBlocks, WrittenBlocksReachTheFile) {
    TestBand band({.width = 4, .height = 3}, Twelve(), GDAL_OF_UPDATE);
    std::array<double, 2> written = {200.0, 300.7};
    EXPECT_EQ(band->WriteBlock(1, 2, 2, 1, written.data(), 2, 1, PDT_Float64, 0, 0), GIS_SUCCESS);
    band.Close();
    Pixels expected = Twelve();
    expected[9] = 200.0;
    expected[10] = 255.0; // GDAL clamps to the band's type
    EXPECT_EQ(ReadBand(band.Path(), 1), expected);
}

TEST(RasterBandBlocks, WritingToAReadOnlyFileFails) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    std::uint8_t value = 1;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_EQ(band->WriteBlock(0, 0, 1, 1, &value, 1, 1, PDT_Byte, 0, 0), GIS_FAILED);
    CPLPopErrorHandler();
}

TEST(RasterBandBlocks, RegionsOutsideTheBandFail) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    std::array<std::uint8_t, 4> read{};
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_EQ(band->ReadBlock(3, 0, 2, 2, read.data(), 2, 2, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(band->ReadBlock(-1, 0, 2, 2, read.data(), 2, 2, PDT_Byte, 0, 0), GIS_FAILED);
    CPLPopErrorHandler();
}

TEST(RasterBandBlocks, BadArgumentsFail) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    std::array<std::uint8_t, 4> read{};
    EXPECT_EQ(band->ReadBlock(0, 0, 2, 2, nullptr, 2, 2, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(band->ReadBlock(0, 0, 0, 2, read.data(), 2, 2, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(band->ReadBlock(0, 0, 2, -2, read.data(), 2, 2, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(band->ReadBlock(0, 0, 2, 2, read.data(), 0, 2, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(band->ReadBlock(0, 0, 2, 2, read.data(), 2, -1, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(band->ReadBlock(0, 0, 2, 2, read.data(), 2, 2, static_cast<PixelDataType>(99), 0, 0),
              GIS_FAILED);
    EXPECT_EQ(band->ReadBlock(0, 0, 2, 2, read.data(), 2, 2, static_cast<PixelDataType>(-1), 0, 0),
              GIS_FAILED);
}

TEST(RasterBandBlocks, ReadingLeavesNoBlockInGdalsCache) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    std::uint8_t value = 0;
    ASSERT_EQ(band->ReadBlock(0, 0, 1, 1, &value, 1, 1, PDT_Byte, 0, 0), GIS_SUCCESS);
    EXPECT_EQ(band.Gdal()->TryGetLockedBlockRef(0, 0), nullptr);
}

TEST(RasterBandPixel, ReadsOnePixelInItsOwnOrAnotherType) {
    TestBand band({.width = 4, .height = 3, .type = GDT_Int16}, Twelve());
    std::int16_t own = 0;
    double asDouble = 0.0;
    EXPECT_EQ(band->GetPixel(&own, 3, 2, PDT_Unknown), GIS_SUCCESS);
    EXPECT_EQ(own, 11);
    EXPECT_EQ(band->GetPixel(&asDouble, 0, 1, PDT_Float64), GIS_SUCCESS);
    EXPECT_EQ(asDouble, 4.0);
}

TEST(RasterBandPixel, PositionsOutsideFailWithoutTouchingTheValue) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    CPLErrorReset();
    for (const auto& [column, row] : {std::pair{-1, 0}, {4, 0}, {0, -1}, {0, 3}}) {
        double value = -7.0;
        EXPECT_EQ(band->GetPixel(&value, column, row, PDT_Float64), GIS_FAILED);
        EXPECT_EQ(value, -7.0);
    }
    EXPECT_EQ(CPLGetLastErrorType(), CE_None) << "GDAL was asked";
    EXPECT_EQ(band->GetPixel(nullptr, 0, 0, PDT_Float64), GIS_FAILED);
}

TEST(RasterBandBlocks, AnUnknownTypeIsTheBandsOwn) {
    TestBand band({.width = 4, .height = 3, .type = GDT_UInt16}, Twelve());
    std::array<std::uint16_t, 4> read{};
    EXPECT_EQ(band->ReadBlock(0, 1, 4, 1, read.data(), 4, 1, PDT_Unknown, 0, 0), GIS_SUCCESS);
    EXPECT_EQ(read, (std::array<std::uint16_t, 4>{4, 5, 6, 7}));
}

TEST(RasterBandBlocks, ABlockThatIsNoneIsNotWrittenAndLeavesAReason) {
    TestBand band({.width = 4, .height = 3}, Twelve(), GDAL_OF_UPDATE);
    std::uint8_t value = 99;
    const auto type = static_cast<PixelDataType>(GDT_TypeCount);
    EXPECT_EQ(band->WriteBlock(0, 0, 1, 1, nullptr, 1, 1, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "no such block");
    EXPECT_EQ(band->WriteBlock(0, 0, 1, 1, &value, 1, 0, PDT_Byte, 0, 0), GIS_FAILED);
    EXPECT_EQ(band->WriteBlock(0, 0, 1, 1, &value, 1, 1, type, 0, 0), GIS_FAILED);
    band.Close();
    EXPECT_EQ(ReadBand(band.Path(), 1), Twelve());
}
