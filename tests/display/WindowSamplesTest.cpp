#include "zelto/display/internal/WindowSamples.h"

#include "zelto/baselib/internal/LastError.h"

#include "tests/display/ShownRaster.h"
#include "tests/support/BlockCacheOf.h"

#include <gdal_priv.h>

#include <filesystem>

using namespace zelto::test;
using zelto::ReadWindow;
using zelto::WindowSamples;

namespace {

constexpr int SCENE_COLUMNS = 300;
constexpr int SCENE_ROWS = 200;
constexpr ReadWindow WHOLE = {0, 0, SCENE_COLUMNS, SCENE_ROWS, 60, 50};

/// Of GDAL's cache of blocks: windows are beyond it.
constexpr GIntBig SMALL_CACHE = 10'000;

/// Three bands of differing values, the samples of a pixel stored together and compressed.
ShownRaster Together(GDALDataType type) {
    std::vector<Pixels> bands;
    for (int b = 0; b < 3; ++b)
        bands.push_back(MakePixels(SCENE_COLUMNS, SCENE_ROWS, [b](int column, int row) {
            return (7 * column + 13 * row + 50 * b) % 251;
        }));
    return {{.width = SCENE_COLUMNS,
             .height = SCENE_ROWS,
             .type = type,
             .options = {"COMPRESS=LZW", "INTERLEAVE=PIXEL"}},
            bands};
}

std::vector<GDALRasterBand*> BandsOf(const CRasterSource& source) {
    std::vector<GDALRasterBand*> bands;
    for (int b = 0; b < source.GetBandCount(); ++b)
        bands.push_back(source.GetRasterBand(b)->GetGDALBand());
    return bands;
}

std::vector<double> ValuesOf(const WindowSamples& samples) {
    return samples.Visit(
        [](const auto& values) { return std::vector<double>(values.begin(), values.end()); });
}

} // namespace

TEST(WindowSamples, OfNoBandThereAreNone) {
    zelto::ClearLastError();
    EXPECT_FALSE(WindowSamples::Read(nullptr, WHOLE).has_value());
    EXPECT_EQ(zelto::LastError(), "a band that is to be read is not open");
}

TEST(WindowSamples, ReadTogetherAreThoseReadOneByOne) {
    const BlockCacheOf cache(SMALL_CACHE);
    for (const GDALDataType type :
         {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_UInt32, GDT_Int32, GDT_Float32, GDT_Float64}) {
        ShownRaster source = Together(type);
        const auto bands = BandsOf(source);
        for (const ReadWindow& window : {WHOLE, ReadWindow{20, 10, 200, 150, 40, 150}}) {
            for (int time = 0; time < 2; ++time) {
                const auto together = WindowSamples::ReadTogether(bands, window);
                ASSERT_EQ(together.size(), 3U) << GDALGetDataTypeName(type);
                for (std::size_t b = 0; b < 3; ++b) {
                    const auto alone = WindowSamples::Read(bands[b], window);
                    ASSERT_TRUE(alone.has_value());
                    EXPECT_EQ(ValuesOf(together[b]), ValuesOf(*alone))
                        << GDALGetDataTypeName(type) << " " << b;
                }
            }
        }
    }
}

TEST(WindowSamples, AreNotReadTogetherWhereThatDoesNotSuit) {
    ShownRaster source = Together(GDT_Byte);
    const auto bands = BandsOf(source);
    EXPECT_TRUE(WindowSamples::ReadTogether(bands, WHOLE).empty()) << "the cache keeps them";
    const BlockCacheOf cache(SMALL_CACHE);
    const auto isReadTogether = [](const std::vector<GDALRasterBand*>& some, ReadWindow window) {
        return !WindowSamples::ReadTogether(some, window).empty();
    };
    ASSERT_TRUE(isReadTogether(bands, WHOLE));
    ShownRaster other = Together(GDT_Byte);
    EXPECT_FALSE(isReadTogether({bands[0], BandsOf(other)[1]}, WHOLE)) << "of two files";
    EXPECT_FALSE(isReadTogether({bands[0], nullptr}, WHOLE));
    EXPECT_FALSE(isReadTogether({nullptr}, WHOLE));
    EXPECT_FALSE(isReadTogether(bands, {0, 0, SCENE_COLUMNS, SCENE_ROWS, 0, 50}));
    EXPECT_FALSE(isReadTogether(bands, {0, 0, SCENE_COLUMNS, SCENE_ROWS, 50, 0}));
    EXPECT_FALSE(isReadTogether(bands, {0, 0, SCENE_COLUMNS, SCENE_ROWS, SCENE_COLUMNS + 1, 50}))
        << "enlarged";
    EXPECT_FALSE(isReadTogether(bands, {0, 0, SCENE_COLUMNS, SCENE_ROWS, 50, SCENE_ROWS + 1}));
    EXPECT_FALSE(isReadTogether({bands[0]}, WHOLE)) << "one band, and few pixels for threads";
    ShownRaster apart({.width = SCENE_COLUMNS,
                       .height = SCENE_ROWS,
                       .options = {"COMPRESS=LZW", "INTERLEAVE=BAND"}},
                      std::vector<Pixels>(3, Pixels(SCENE_COLUMNS * SCENE_ROWS, 5.0)));
    EXPECT_FALSE(isReadTogether(BandsOf(apart), WHOLE)) << "few pixels, stored band by band";
    ShownRaster wide = Together(GDT_CFloat32);
    EXPECT_FALSE(isReadTogether(BandsOf(wide), WHOLE)) << "no type that samples have here";
    ShownRaster plain(
        {.width = SCENE_COLUMNS, .height = SCENE_ROWS, .options = {"INTERLEAVE=PIXEL"}},
        std::vector<Pixels>(3, Pixels(SCENE_COLUMNS * SCENE_ROWS, 5.0)));
    EXPECT_FALSE(isReadTogether(BandsOf(plain), WHOLE)) << "not compressed";
}

TEST(WindowSamples, OfMoreThanTheirMemoryHoldsAreNotReadTogether) {
    const CRasterSource source; // GDAL's drivers are up while it lives
    const TemporaryFolder folder;
    const BlockCacheOf cache(SMALL_CACHE);
    const std::string file = folder.File("sparse.tif");
    const char* const options[] = {"COMPRESS=LZW", "INTERLEAVE=PIXEL", "SPARSE_OK=TRUE", nullptr};
    GDALDatasetUniquePtr(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
                             file.c_str(), 5000, 5000, 3, GDT_Byte, const_cast<char**>(options)))
        .reset();
    const GDALDatasetUniquePtr sparse(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(sparse, nullptr);
    std::vector<GDALRasterBand*> bands;
    for (int b = 1; b <= 3; ++b)
        bands.push_back(sparse->GetRasterBand(b));
    EXPECT_TRUE(WindowSamples::ReadTogether(bands, {0, 0, 5000, 5000, 5000, 5000}).empty());
    EXPECT_EQ(WindowSamples::ReadTogether(bands, {0, 0, 5000, 5000, 50, 50}).size(), 3U);
}

TEST(WindowSamples, AreReadOneByOneWhereAPixelCannotBeRead) {
    const BlockCacheOf cache(SMALL_CACHE);
    ShownRaster source = Together(GDT_Byte);
    const std::filesystem::path file = source.GetFilePath();
    std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
    EXPECT_TRUE(WindowSamples::ReadTogether(BandsOf(source), WHOLE).empty());
}
