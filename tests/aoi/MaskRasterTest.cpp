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

} // namespace
