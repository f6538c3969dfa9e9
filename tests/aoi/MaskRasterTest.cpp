#include "zelto/aoi/internal/MaskRaster.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_geometry.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

TEST(MaskRaster, StripsHoldSixteenMebibytes) {
    EXPECT_EQ(zelto::MaskStripRows(1000, 40000), 16777);
    EXPECT_EQ((40000 + 16776) / 16777, 3) << "strips for 40,000 rows";
    EXPECT_EQ(zelto::MaskStripRows(1000, 500), 500);
    EXPECT_EQ(zelto::MaskStripRows(16777216, 10), 1);
    EXPECT_EQ(zelto::MaskStripRows(16777217, 10), 1) << "a wider row is a strip of its own";
    EXPECT_EQ(zelto::MaskStripRows(1, 20000000), 16777216);
}

Bytes Grow(const Bytes& burnt, int width, int height) {
    Bytes grown(burnt.size(), 9);
    zelto::GrowByOnePixel(burnt.data(), grown.data(), width, height);
    return grown;
}

TEST(MaskRaster, GrowthReachesAllEightNeighbours) {
    const Bytes burnt = {0, 0, 0, 0, 0, //
                         0, 0, 0, 0, 0, //
                         0, 0, 1, 0, 0, //
                         0, 0, 0, 0, 0, //
                         0, 0, 0, 0, 0};
    const Bytes expected = {0, 0, 0, 0, 0, //
                            0, 1, 1, 1, 0, //
                            0, 1, 1, 1, 0, //
                            0, 1, 1, 1, 0, //
                            0, 0, 0, 0, 0};
    EXPECT_EQ(Grow(burnt, 5, 5), expected);
}

TEST(MaskRaster, TheBorderGrowsInwardsOnly) {
    const Bytes burnt = {1, 0, 0, 0, //
                         0, 0, 0, 0, //
                         0, 0, 0, 0, //
                         0, 0, 1, 0};
    const Bytes expected = {1, 0, 0, 0, //
                            0, 1, 0, 0, //
                            0, 1, 1, 0, //
                            0, 0, 1, 0};
    EXPECT_EQ(Grow(burnt, 4, 4), expected);
}

TEST(MaskRaster, GridsWithoutAnInteriorAreCopied) {
    EXPECT_EQ(Grow({1, 0, 0, 0}, 4, 1), (Bytes{1, 0, 0, 0}));
    EXPECT_EQ(Grow({1, 0, 0, 0}, 1, 4), (Bytes{1, 0, 0, 0}));
    EXPECT_EQ(Grow({1, 0, 0, 0}, 2, 2), (Bytes{1, 0, 0, 0}));
    EXPECT_EQ(Grow({0, 0, 1, 0, 0, 0}, 2, 3), (Bytes{0, 0, 1, 0, 0, 0}));
}

TEST(MaskRaster, GrowthEqualsThePlainRuleOnRandomGrids) {
    SCOPED_TRACE("seed 42");
    std::mt19937 engine(42);
    for (int round = 0; round < 50; ++round) {
        const int width = 1 + int(engine() % 70);
        const int height = 1 + int(engine() % 20);
        Bytes burnt(std::size_t(width) * height);
        for (unsigned char& pixel : burnt)
            pixel = engine() % 9 == 0;
        Bytes expected = burnt;
        for (int r = 1; r < height - 1; ++r)
            for (int c = 1; c < width - 1; ++c)
                for (int k = 0; k < 9; ++k)
                    expected[std::size_t(r * width + c)] |=
                        burnt[std::size_t((r + k / 3 - 1) * width + c + k % 3 - 1)];
        ASSERT_EQ(Grow(burnt, width, height), expected) << width << " x " << height;
    }
}

TEST(MaskRaster, StripsMeetWithoutASeam) {
    GDALAllRegister();
    // Taller than a strip of 16,777 rows: a circle across the seam must come out as one.
    OGRPolygon circle;
    OGRLinearRing ring;
    for (int i = 0; i <= 360; ++i)
        ring.addPoint(500 + 400 * std::cos(i * 3.14159265358979 / 180),
                      400 * std::sin(i * 3.14159265358979 / 180));
    ring.closeRings();
    circle.addRing(&ring);
    // Row 16,777 starts at y = 0.
    const zelto::MaskGrid grid{{0, 16777, 1000, -1000}, 1000, 17777, 1, 1};
    Bytes pixels(grid.Size());
    ASSERT_TRUE(zelto::BurnGeometry(circle, grid, pixels.data()));
    for (int k = 0; k < 300; k += 7)
        for (int column = 0; column < 1000; column += 3) {
            // Rows as far above as below the seam.
            const auto above = pixels[std::size_t(16776 - k) * 1000 + std::size_t(column)];
            const auto below = pixels[std::size_t(16777 + k) * 1000 + std::size_t(column)];
            ASSERT_EQ(int(above), int(below)) << column << ", " << k;
            const double radius = std::hypot(column + 0.5 - 500, k + 0.5);
            if (std::abs(radius - 400) > 1) {
                ASSERT_EQ(int(below), radius < 400) << column << ", " << k;
            }
        }
    EXPECT_EQ(std::count(pixels.begin(), pixels.begin() + 1000 * 16000, 1), 0);
}

TEST(MaskRaster, RowsHandedOutStripByStripEqualTheWholeMask) {
    GDALAllRegister();
    SCOPED_TRACE("seed 7");
    std::mt19937 engine(7);
    const auto between = [&](int least, int most) {
        return least + static_cast<int>(engine() % static_cast<unsigned>(most - least + 1));
    };
    for (int round = 0; round < 6; ++round) {
        // Rows of 16 MiB and more are strips of one row, of 5 MiB of three; the last grid is one.
        const int widths[] = {16777216, 5592405, 300};
        const int width = widths[round % 3];
        const int height = between(1, round % 3 == 2 ? 40 : 7);
        const double x = between(0, width - 1), y = between(0, height - 1);
        OGRPolygon triangle;
        OGRLinearRing ring;
        ring.setPoints(4, std::vector<double>{x, x + between(1, 200), x - 3, x}.data(),
                       std::vector<double>{y - 2, y + 3, y + 2, y - 2}.data());
        triangle.addRing(&ring);
        const zelto::MaskGrid grid{{0, double(height), double(width), 0}, width, height, 1.0, 1.0};
        Bytes burnt(grid.Size()), whole(grid.Size(), 9), rows;
        ASSERT_TRUE(zelto::BurnGeometry(triangle, grid, burnt.data()));
        zelto::GrowByOnePixel(burnt.data(), whole.data(), width, height);
        ASSERT_TRUE(zelto::BurnGrownRows(
            triangle, grid, [&](int firstRow, int count, const unsigned char* mask) {
                EXPECT_EQ(std::size_t(firstRow) * width, rows.size());
                rows.insert(rows.end(), mask, mask + std::size_t(count) * width);
                return true;
            }));
        ASSERT_TRUE(rows == whole) << width << " x " << height;
    }
}

TEST(MaskRaster, ASinkThatStopsEndsTheWork) {
    GDALAllRegister();
    OGRPolygon square;
    OGRLinearRing ring;
    ring.setPoints(5, std::vector<double>{1, 1, 2, 2, 1}.data(),
                   std::vector<double>{1, 2, 2, 1, 1}.data());
    square.addRing(&ring);
    const zelto::MaskGrid grid{{0, 3, 16777216, 0}, 16777216, 3, 1, 1};
    int calls = 0;
    const auto stop = [&](int, int, const unsigned char*) { return ++calls < 2; };
    EXPECT_FALSE(zelto::BurnGrownRows(square, grid, stop));
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(zelto::FillRows(1, grid, [](int, int, const unsigned char*) { return false; }));
}

} // namespace
