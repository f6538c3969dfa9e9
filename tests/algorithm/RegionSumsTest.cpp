#include "zelto/algorithm/RegionStatistics.h"

#include "tests/algorithm/RegionFixture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

using namespace zelto::test;

namespace {

using Sum = CRegionStatistics::ExactSum;

/// Adds numbers in two's complement, as whoever merges them does.
Sum Plus(Sum a, const Sum& b) {
    unsigned carry = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const unsigned digit = unsigned{a[i]} + b[i] + carry;
        a[i] = static_cast<unsigned char>(digit);
        carry = digit >> 8U;
    }
    return a;
}

/// The number where it is whole and has at most 63 bits.
std::int64_t WholeNumber(const Sum& sum) {
    constexpr std::size_t UNIT_BITS = 2148;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::size_t bit = UNIT_BITS + i;
        value |= std::uint64_t{(sum[bit / 8] >> bit % 8) & 1U} << i;
    }
    return static_cast<std::int64_t>(value);
}

std::vector<CRegionStatistics::Sums> SumsOf(CRegionStatistics& statistics) {
    std::vector<CRegionStatistics::Sums> sums;
    EXPECT_EQ(statistics.ComputeSums(sums, nullptr), GIS_SUCCESS);
    return sums;
}

class RegionSums : public RegionTest {};

} // namespace

TEST_F(RegionSums, CountRangeSumAndSquaresOfTheValuesThatCount) {
    RasterSpec spec = UnitSpec(4, 1, GDT_Int16);
    spec.noData = 9.0;
    auto source = Open(spec, {{-3, 2, 4, 9}});
    CRegionStatistics statistics(source.get());
    const auto sums = SumsOf(statistics);
    ASSERT_EQ(sums.size(), 1U);
    EXPECT_EQ(sums[0].count, 3);
    EXPECT_EQ(sums[0].minimum, -3);
    EXPECT_EQ(sums[0].maximum, 4);
    EXPECT_EQ(WholeNumber(sums[0].sum), -3 + 2 + 4);
    EXPECT_EQ(WholeNumber(sums[0].squares), 9 + 4 + 16);
}

TEST_F(RegionSums, OfEveryTypeAgreeWithWholeNumberArithmetic) {
    for (const GDALDataType type :
         {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_UInt32, GDT_Int32, GDT_Float32, GDT_Float64}) {
        const auto pixels = MakePixels(50, 40, [](int c, int r) { return (c * 7 + r * 13) % 251; });
        auto source = Open(UnitSpec(50, 40, type), {pixels});
        std::int64_t sum = 0;
        std::int64_t squares = 0;
        for (const double value : pixels) {
            sum += static_cast<std::int64_t>(value);
            squares += static_cast<std::int64_t>(value * value);
        }
        CRegionStatistics statistics(source.get());
        const auto sums = SumsOf(statistics);
        EXPECT_EQ(WholeNumber(sums[0].sum), sum) << GDALGetDataTypeName(type);
        EXPECT_EQ(WholeNumber(sums[0].squares), squares) << GDALGetDataTypeName(type);
    }
}

TEST_F(RegionSums, OfStripsAddUpToThoseOfTheWholeToTheLastBit) {
    std::mt19937 random(20240517);
    std::normal_distribution<double> normal(0, 1);
    const auto pixels = MakePixels(31, 60, [&](int, int) {
        return normal(random) * std::pow(10.0, static_cast<double>(random() % 40) - 20);
    });
    auto source = Open(UnitSpec(31, 60, GDT_Float64), {pixels});
    CRegionStatistics whole(source.get());
    const auto expected = SumsOf(whole);
    for (const int height : {1, 7, 59}) {
        Sum sum(expected[0].sum.size());
        Sum squares(sum.size());
        __int64 count = 0;
        for (int row = 0; row < 60; row += height) {
            CRegionStatistics strip(source.get());
            strip.SetRows(row, std::min(height, 60 - row));
            const auto part = SumsOf(strip);
            sum = Plus(sum, part[0].sum);
            squares = Plus(squares, part[0].squares);
            count += part[0].count;
        }
        EXPECT_EQ(count, expected[0].count);
        EXPECT_EQ(sum, expected[0].sum) << height;
        EXPECT_EQ(squares, expected[0].squares) << height;
    }
}

TEST_F(RegionSums, OfNothingAreZeroAndTheRangeIsNoNumber) {
    auto source = Open(UnitSpec(3, 3), {Pixels(9, 5)});
    CRegionStatistics statistics(source.get());
    statistics.SetBox({10, 12, 12, 10});
    const auto sums = SumsOf(statistics);
    EXPECT_EQ(sums[0].count, 0);
    EXPECT_TRUE(std::isnan(sums[0].minimum));
    EXPECT_EQ(sums[0].sum, Sum(sums[0].sum.size()));
}

TEST_F(RegionSums, OfABandWithoutValuesAreThoseOfNothing) {
    RasterSpec spec = UnitSpec(3, 1);
    spec.noData = 9.0;
    auto source = Open(spec, {{9, 9, 9}});
    CRegionStatistics statistics(source.get());
    const auto sums = SumsOf(statistics);
    EXPECT_EQ(sums[0].count, 0);
    EXPECT_TRUE(std::isnan(sums[0].maximum));
    EXPECT_EQ(sums[0].squares, Sum(sums[0].squares.size()));
}

TEST_F(RegionSums, OfProductsTakeThePixelsWithAValueInEveryBand) {
    RasterSpec spec = UnitSpec(4, 1, GDT_Int16);
    spec.noData = 9.0;
    auto source = Open(spec, {{1, 2, 9, 4}, {-5, 6, 7, 9}});
    CRegionStatistics statistics(source.get());
    CRegionStatistics::Products products;
    ASSERT_EQ(statistics.ComputeProducts(products, nullptr), GIS_SUCCESS);
    EXPECT_EQ(products.count, 2);
    ASSERT_EQ(products.products.size(), 3U);
    EXPECT_EQ(WholeNumber(products.sums[0]), 1 + 2);
    EXPECT_EQ(WholeNumber(products.sums[1]), -5 + 6);
    EXPECT_EQ(WholeNumber(products.products[0]), 1 + 4);
    EXPECT_EQ(WholeNumber(products.products[1]), -5 + 12);
    EXPECT_EQ(WholeNumber(products.products[2]), 25 + 36);
}

TEST_F(RegionSums, ComeFromABandThatCannotBeReadAsAFailure) {
    auto source = OpenWithCutSecondBand();
    CRegionStatistics statistics(source.get());
    std::vector<CRegionStatistics::Sums> sums;
    EXPECT_EQ(statistics.ComputeSums(sums, nullptr), GIS_FAILED);
    CRegionStatistics::Products products;
    EXPECT_EQ(statistics.ComputeProducts(products, nullptr), GIS_FAILED);
}

TEST_F(RegionSums, MaskTellsThePixelsWhoseCentresLieInTheRegion) {
    auto source = Open(UnitSpec(5, 4), {Pixels(20, 1)});
    CRegionStatistics statistics(source.get());
    // Centres at 1.5 and 2.5 along x, at 1.5 and 0.5 along y: rows 2 and 3.
    statistics.SetBox({1.4, 1.6, 2.6, 0.4});
    std::vector<unsigned char> mask(20, 7);
    ASSERT_EQ(statistics.FillMask(0, 4, mask.data()), GIS_SUCCESS);
    EXPECT_EQ(mask, (std::vector<unsigned char>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, //
                                                0, 1, 1, 0, 0, 0, 1, 1, 0, 0}));
    std::vector<unsigned char> rows(10, 7);
    ASSERT_EQ(statistics.FillMask(2, 2, rows.data()), GIS_SUCCESS);
    EXPECT_EQ(rows, std::vector<unsigned char>(mask.begin() + 10, mask.end()));
    EXPECT_EQ(statistics.FillMask(3, 2, rows.data()), GIS_FAILED);
    EXPECT_EQ(statistics.FillMask(0, 1, nullptr), GIS_FAILED);
}

TEST_F(RegionSums, MaskOfTheWholeRasterIsFullAndThatOfARegionBesideItEmpty) {
    auto source = Open(UnitSpec(3, 2), {Pixels(6, 1)});
    CRegionStatistics statistics(source.get());
    std::vector<unsigned char> mask(6, 7);
    ASSERT_EQ(statistics.FillMask(0, 2, mask.data()), GIS_SUCCESS);
    EXPECT_EQ(mask, std::vector<unsigned char>(6, 1));
    statistics.SetBox({10, 12, 12, 10});
    ASSERT_EQ(statistics.FillMask(0, 2, mask.data()), GIS_SUCCESS);
    EXPECT_EQ(mask, std::vector<unsigned char>(6, 0));
}

TEST_F(RegionSums, MaskOfRowsThatTheRasterDoesNotHaveIsRefused) {
    auto source = Open(UnitSpec(3, 2), {Pixels(6, 1)});
    CRegionStatistics statistics(source.get());
    std::vector<unsigned char> mask(6, 7);
    for (const auto& [first, count] : {std::pair{-1, 1}, {0, 0}, {0, -1}, {0, 3}, {2, 1}}) {
        CGISDataSource::ClearLastErrorText();
        EXPECT_EQ(statistics.FillMask(first, count, mask.data()), GIS_FAILED) << first;
        EXPECT_EQ(CGISDataSource::GetLastErrorText(), "no rows of the mask is given");
    }
    EXPECT_EQ(mask, std::vector<unsigned char>(6, 7));
}

TEST_F(RegionSums, RowsLimitWhatIsMeasured) {
    auto source = Open(UnitSpec(2, 3), {{1, 2, 3, 4, 5, 6}});
    CRegionStatistics statistics(source.get());
    statistics.SetRows(1, 1);
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].count, 2);
    EXPECT_EQ(statistics.GetBands()[0].mean, 3.5);
    statistics.SetRows(2, 2147483647);
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].mean, 5.5);
    statistics.SetRows(3, 1); // below the last row
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].count, 0);
}
