#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/RasterAOI.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"

#include <filesystem>

using namespace zelto::test;

namespace {

/// Large rasters whose file is sparse: only the pixels set one by one are stored.
class StatisticsBlocks : public RegionTest {
  protected:
    struct Pixel {
        int column, row;
        double value;
    };

    std::unique_ptr<CRasterSource> OpenSparse(int width, int height, int bands,
                                              const std::vector<Pixel>& pixels,
                                              std::optional<double> noData = {}) {
        m_path = m_folder.File("sparse.tif");
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        CPLStringList options;
        options.SetNameValue("SPARSE_OK", "TRUE");
        options.SetNameValue("BLOCKYSIZE", "1");
        GDALDatasetUniquePtr dataset(
            driver->Create(m_path.c_str(), width, height, bands, GDT_UInt16, options.List()));
        double geoTransform[] = {0, 1, 0, static_cast<double>(height), 0, -1};
        dataset->SetGeoTransform(geoTransform);
        for (int b = 1; b <= bands; ++b) {
            GDALRasterBand* band = dataset->GetRasterBand(b);
            if (noData)
                band->SetNoDataValue(*noData);
            for (Pixel pixel : pixels) {
                pixel.value += b - 1;
                EXPECT_EQ(band->RasterIO(GF_Write, pixel.column, pixel.row, 1, 1, &pixel.value, 1,
                                         1, GDT_Float64, 0, 0, nullptr),
                          CE_None);
            }
        }
        dataset.reset();
        return Reopen();
    }

    bool Compute(CRasterSource& source, CAOISource& area, bool approx = false) {
        const auto bands = static_cast<std::size_t>(source.GetBandCount());
        m_min.assign(bands, -999);
        m_max.assign(bands, -999);
        m_mean.assign(bands, -999);
        CRasterAOI aoi(&source, &area);
        return CRasterAlgorithm::ComputeStaticsFromAOI(&source, &aoi, m_count, m_min.data(),
                                                       m_max.data(), m_mean.data(), nullptr, approx,
                                                       nullptr);
    }

    __int64 m_count = -999;
    std::vector<double> m_min, m_max, m_mean;
};

} // namespace

// 5,000 columns: blocks of 16,777,216 div 5,000 = 3,355 rows.

TEST_F(StatisticsBlocks, EveryPixelOfABlockTakesTheFirstSampleOfTheRowOfTheBlocksNumber) {
    // Windows start in the raster's corner although the area starts at (500, 300).
    auto source = OpenSparse(6000, 4500, 2, {{0, 0, 100}, {0, 3356, 40}, {500, 300, 9}});
    auto area = Area(Rectangle(500, 4200, 5500, 200)); // 5,000 × 4,000
    EXPECT_TRUE(Compute(*source, *area));
    EXPECT_EQ(m_count, 20'000'000);
    EXPECT_EQ(m_min, (std::vector<double>{40, 41}));
    EXPECT_EQ(m_max, (std::vector<double>{100, 101}));
    // 3,355 of 4,000 rows take the first block's value.
    EXPECT_DOUBLE_EQ(m_mean[0], (3355 * 100.0 + 645 * 40.0) / 4000);
    EXPECT_DOUBLE_EQ(m_mean[1], (3355 * 101.0 + 645 * 41.0) / 4000);
}

TEST_F(StatisticsBlocks, AShortLastBlockTakesWhatTheBlockBeforeLeftInItsPlace) {
    // The second block has one row, number 0; its place is row 1, which the first block filled.
    auto source = OpenSparse(5000, 3356, 1, {{0, 0, 100}, {0, 1, 30}, {0, 3355, 7}});
    auto area = Area(Rectangle(0, 3356, 5000, 0));
    EXPECT_TRUE(Compute(*source, *area));
    EXPECT_EQ(m_count, 5000 * 3356);
    EXPECT_EQ(m_min[0], 30);
    EXPECT_EQ(m_max[0], 100);
    EXPECT_DOUBLE_EQ(m_mean[0], (3355 * 100.0 + 30) / 3356);
}

TEST_F(StatisticsBlocks, TheCovarianceAnswersWhenItIsAskedAndReadsEveryPixelInItsPlace) {
    auto source = OpenSparse(5000, 3356, 1, {{0, 0, 100}, {0, 1, 30}, {0, 3355, 7}});
    auto area = Area(Rectangle(0, 3356, 5000, 0));
    CRasterAOI aoi(source.get(), area.get());
    double mean = -999, covariance = -999;
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI(
        source.get(), &aoi, m_count, nullptr, nullptr, &mean, &covariance, false, nullptr));
    const double m = (3355 * 100.0 + 30) / 3356;
    EXPECT_DOUBLE_EQ(mean, m);
    // Around the mean of the blocks, but of the pixels: all 0 but for the three.
    const double n = 5000.0 * 3356;
    const double squares =
        (n - 3) * m * m + (100 - m) * (100 - m) + (30 - m) * (30 - m) + (7 - m) * (7 - m);
    EXPECT_NEAR(covariance, squares / n, 1e-8 * squares / n);
}

TEST_F(StatisticsBlocks, BeyondTheBufferABlockAcceptsNothing) {
    // Rows of 10,000,000 samples: one per block, so that block 1 would start where it ends.
    auto source = OpenSparse(10'000'000, 2, 1, {{0, 0, 5}, {0, 1, 6}});
    auto area = Area(Rectangle(0, 2, 10'000'000, 0));
    EXPECT_TRUE(Compute(*source, *area));
    EXPECT_EQ(m_count, 10'000'000);
    EXPECT_EQ(m_max[0], 5);
    EXPECT_EQ(m_mean[0], 5);
}

TEST_F(StatisticsBlocks, OnlyPixelsOfTheShapesCount) {
    auto source = OpenSparse(6000, 4500, 1, {{0, 0, 100}, {0, 3356, 40}});
    // A triangle: the half of the rectangle below its diagonal.
    auto area = Area(Polygon({{500, 4200}, {500, 200}, {5500, 200}}));
    CRasterAOI aoi(source.get(), area.get());
    aoi.Initialize();
    long long first = 0, all = 0;
    for (int row = 300; row < 4300; ++row) {
        for (int column = 500; column < 5500; column += 1) {
            if (!aoi.IsInAOI(column, row))
                continue;
            ++all;
            first += row - 300 < 3355 ? 1 : 0;
        }
    }
    EXPECT_TRUE(Compute(*source, *area));
    EXPECT_EQ(m_count, all);
    EXPECT_DOUBLE_EQ(m_mean[0],
                     (static_cast<double>(first) * 100 + static_cast<double>(all - first) * 40) /
                         static_cast<double>(all));
}

TEST_F(StatisticsBlocks, ABlockWhoseSampleIsNoDataCountsNothing) {
    auto source = OpenSparse(6000, 4500, 1, {{0, 0, 100}}, 0.0);
    auto area = Area(Rectangle(500, 4200, 5500, 200));
    EXPECT_TRUE(Compute(*source, *area));
    EXPECT_EQ(m_count, 5000 * 3355);
    EXPECT_EQ(m_mean[0], 100);
}

TEST_F(StatisticsBlocks, AFailedReadAnswersFalse) {
    auto source = OpenSparse(5000, 3500, 1, {{0, 0, 100}});
    // The windows reach 300 columns beyond the raster.
    auto area = Area(Rectangle(200, 3500, 5300, 0));
    EXPECT_FALSE(Compute(*source, *area));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_mean[0], -999);
}

TEST_F(StatisticsBlocks, AnAreaOffALargeRasterCountsNothing) {
    auto source = OpenSparse(5000, 4000, 1, {{0, 0, 100}});
    auto area = Area(Rectangle(6000, 9000, 7000, 8000));
    EXPECT_FALSE(Compute(*source, *area));
    EXPECT_EQ(m_count, 0);
}

TEST_F(StatisticsBlocks, AnAreaOfMoreRowsThanCanBeCountedCountsNothing) {
    auto source = OpenSparse(20, 8, 1, {{0, 0, 100}});
    // 10 columns, and 4,000,000,000 rows, which 32 bits hold as -294,967,296.
    auto area = Area(Rectangle(5, 2e9, 15, -2e9));
    EXPECT_FALSE(Compute(*source, *area));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_mean[0], -999);
}

TEST_F(StatisticsBlocks, ExactlyTheBudgetIsReadPixelByPixel) {
    auto source = OpenSparse(4100, 4100, 1, {{0, 0, 100}, {2, 2, 8}});
    auto area = Area(Rectangle(2, 4098, 4098, 2)); // 4,096 × 4,096
    // The plain path answers false and sees the pixels as they are.
    EXPECT_FALSE(Compute(*source, *area));
    EXPECT_EQ(m_count, 16777216);
    EXPECT_EQ(m_max[0], 8);
    EXPECT_EQ(m_min[0], 0);
    area = Area(Rectangle(2, 4098, 4099, 2)); // one column more
    EXPECT_TRUE(Compute(*source, *area));
    EXPECT_EQ(m_max[0], 100);
}

TEST_F(StatisticsBlocks, ApproxReadsTheDecimatedWindow) {
    auto source = OpenSparse(6000, 4500, 2, {{0, 0, 100}});
    auto area = Area(Polygon({{500, 4200}, {500, 200}, {5500, 200}}));
    CRasterAOI aoi(source.get(), area.get());
    const CRect rect = aoi.GetRect();
    const int w = rect.right - rect.left, h = rect.bottom - rect.top;
    EXPECT_FALSE(Compute(*source, *area, true));
    const double s = std::sqrt(w * h / 8388608.0);
    const int bufW = static_cast<int>(w / s), bufH = static_cast<int>(h / s);
    long long inside = 0;
    for (int j = 0; j < bufH; ++j)
        for (int i = 0; i < bufW; ++i)
            inside +=
                aoi.IsInAOI(static_cast<int>(i * s + rect.left), static_cast<int>(j * s + rect.top))
                    ? 1
                    : 0;
    EXPECT_EQ(m_count, inside);
    EXPECT_EQ(m_max, (std::vector<double>{0, 0}));
}
