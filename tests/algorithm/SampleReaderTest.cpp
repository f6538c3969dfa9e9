#include "zelto/algorithm/internal/SampleReader.h"

#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionMoments.h"
#include "zelto/baselib/internal/LastError.h"

#include "tests/algorithm/RegionFixture.h"
#include "tests/support/BlockCacheOf.h"

#include <cstdint>
#include <limits>
#include <numeric>

using namespace zelto;
using namespace zelto::test;

namespace {

class SampleReader : public RegionTest {};

/// A band of one block whose size is beyond all memory, as damaged headers tell of.
class BandOfOneBlock : public GDALRasterBand {
  public:
    BandOfOneBlock() {
        eDataType = GDT_Byte;
        nRasterXSize = nBlockXSize = 1 << 20;
        nRasterYSize = nBlockYSize = 1 << 20;
    }

  protected:
    CPLErr IReadBlock(int, int, void*) override { return CE_Failure; }
};

/// The rows of each strip.
std::vector<int> StripsOf(const std::vector<CRasterBand*>& bands, const PixelWindow& window,
                          const SampleGrid& grid, int maximumRows) {
    std::vector<int> strips;
    EXPECT_TRUE(VisitBandStrips(
        bands, window, grid, maximumRows, [&](std::span<const double*>, int firstRow, int rows) {
            EXPECT_EQ(firstRow, std::accumulate(strips.begin(), strips.end(), 0));
            strips.push_back(rows);
            return true;
        }));
    return strips;
}

} // namespace

TEST_F(SampleReader, MemoryIsGivenForAsManySamplesAsCanBeAddressed) {
    EXPECT_NE(AllocateSamples<double>(1), nullptr);
    EXPECT_EQ(AllocateSamples<double>(0), nullptr);
    EXPECT_EQ(AllocateSamples<double>(-1), nullptr);
    EXPECT_EQ(AllocateSamples<double>(std::numeric_limits<std::int64_t>::max()), nullptr);
}

TEST_F(SampleReader, BandsThatAreNotThereOrWhoseBlocksAreTooLargeAreRefusedAndTold) {
    double sample = -999;
    EXPECT_FALSE(ReadSamples(nullptr, {0, 0, 1, 1}, 1, 1, &sample));
    EXPECT_EQ(LastError(), "no band is given");
    BandOfOneBlock band;
    EXPECT_FALSE(ReadSamples(&band, {0, 0, 1, 1}, 1, 1, &sample));
    EXPECT_NE(LastError().find("its blocks are too large to be read"), std::string::npos);
    EXPECT_EQ(sample, -999);
}

TEST_F(SampleReader, WindowsAndGridsWithoutPixelsAreRefusedAndTold) {
    const auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    GDALRasterBand* const band = source->GetRasterBand(0)->GetGDALBand();
    float samples[4] = {-999, -999, -999, -999};
    const auto read = [&](int width, int height, int columns, int rows) {
        ClearLastError();
        return ReadSamples(band, {0, 0, width, height}, columns, rows, samples);
    };
    for (int without = 0; without < 4; ++without) {
        int sizes[4] = {2, 2, 2, 2};
        sizes[without] = 0;
        EXPECT_FALSE(read(sizes[0], sizes[1], sizes[2], sizes[3])) << without;
        EXPECT_EQ(LastError(), NO_PIXELS);
        EXPECT_EQ(samples[0], -999);
    }
    EXPECT_TRUE(read(2, 2, 2, 2));
    EXPECT_EQ(samples[3], 4);
}

TEST_F(SampleReader, StripsOfGridsWithoutSamplesAreNotVisitedAndTold) {
    const auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    const auto bands = BandsOf(*source);
    for (const SampleGrid& grid : {SampleGrid{2, 0, 5, 0}, SampleGrid{2, 5, 0, 0}}) {
        ClearLastError();
        EXPECT_FALSE(VisitBandStrips(bands, {0, 0, 2, 2}, grid, 5, [](auto, int, int) {
            ADD_FAILURE() << "there is nothing to visit";
            return true;
        }));
        EXPECT_EQ(LastError(), NO_PIXELS);
    }
}

TEST_F(SampleReader, RowsThatAreTooLongForTheBandsTogetherAreNotReadAndTold) {
    const auto source = Open(UnitSpec(2, 1), {{1, 2}, {3, 4}});
    // 2^26 samples in all bands.
    constexpr int LONGEST = 1 << 25;
    const SampleGrid grid = {2, LONGEST + 1, 1, LONGEST + 1};
    EXPECT_FALSE(VisitBandStrips(BandsOf(*source), {0, 0, 2, 1}, grid, 1, [](auto, int, int) {
        ADD_FAILURE() << "there is nothing to visit";
        return true;
    }));
    EXPECT_EQ(LastError(), ROWS_TOO_LONG);
}

TEST_F(SampleReader, BandsThatAreAssembledAreReadInOneStrip) {
    m_path = m_folder.File("assembled.vrt");
    WriteFile(m_path, "<VRTDataset rasterXSize='1024' rasterYSize='256'>"
                      "<GeoTransform>0,1,0,256,0,-1</GeoTransform>"
                      "<VRTRasterBand dataType='Byte' band='1'/></VRTDataset>");
    const auto source = Reopen();
    EXPECT_EQ(StripsOf(BandsOf(*source), {0, 0, 1024, 256}, {1.0, 1024, 256, 1024 * 256}, 256),
              std::vector<int>{256});
}

TEST_F(SampleReader, BlocksThatTheCacheDoesNotKeepAreReadInOneStrip) {
    RasterSpec spec = UnitSpec(1024, 256);
    spec.options = {"TILED=YES"};
    const auto source =
        Open(spec, {MakePixels(1024, 256, [](int c, int r) { return (c + r) % 9; })});
    const auto bands = BandsOf(*source);
    const PixelWindow window = {0, 0, 1024, 256};
    const SampleGrid grid = {1.0, 1024, 256, 1024 * 256};
    // 65,536 samples a strip.
    EXPECT_EQ(StripsOf(bands, window, grid, 256), std::vector<int>(4, 64));
    const zelto::test::BlockCacheOf little(1 << 20);
    EXPECT_EQ(StripsOf(bands, window, grid, 256), std::vector<int>(4, 64));
    const zelto::test::BlockCacheOf less(1 << 10);
    EXPECT_EQ(StripsOf(bands, window, grid, 256), std::vector<int>{256});
}

TEST_F(SampleReader, GridsWithoutSamplesHaveTheMomentsOfNothing) {
    const auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}, {1, 2, 3, 4}});
    for (const SampleGrid& grid : {SampleGrid{2, 0, 5, 0}, SampleGrid{2, 5, 0, 0}}) {
        const auto moments =
            AccumulateMoments(BandsOf(*source), {0, 0, 2, 2}, grid, *AllRows(grid.width));
        ASSERT_TRUE(moments);
        ASSERT_EQ(moments->size(), 2U);
        EXPECT_EQ(moments->back().count, 0);
    }
    double minimum = -999;
    EXPECT_EQ(WriteMoments({}, {&minimum, nullptr, nullptr}), 0);
    EXPECT_EQ(minimum, -999);
}
