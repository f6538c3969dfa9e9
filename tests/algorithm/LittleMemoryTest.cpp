#include "tests/algorithm/RegionFixture.h"
#include "tests/algorithm/RegionOperations.h"
#include "tests/support/LimitedMemory.h"

using namespace zelto::test;

namespace {

constexpr int VERTICES = 40000;

class LittleMemory : public RegionTest {
  protected:
    /// A comb whose teeth all cross every row, so that a row has as many edges as there are.
    static std::unique_ptr<CDrawPolygon> Comb(double size) {
        std::vector<CPoint2D> points;
        for (int i = 0; i < VERTICES; ++i)
            points.emplace_back(size * i / VERTICES, i % 2 == 0 ? 0.0 : size);
        return Polygon(points);
    }
    /// A disc, of whose edges a row crosses two.
    static std::unique_ptr<CDrawPolygon> Disc(double size) {
        std::vector<CPoint2D> points;
        for (int i = 0; i < VERTICES; ++i) {
            const double angle = 6.283185307179586 * i / VERTICES;
            points.emplace_back(size / 2 * (1 + std::cos(angle)), size / 2 * (1 + std::sin(angle)));
        }
        return Polygon(points);
    }
};

} // namespace

TEST_F(LittleMemory, NoOperationLetsAnExceptionOut) {
    if (!CanLimitMemory())
        GTEST_SKIP() << "the memory of this build cannot be limited";
    const auto pixels = MakePixels(64, 64, [](int c, int r) { return 1.0 + c % 7 + r % 5; });
    const auto source = Open(UnitSpec(64, 64), {pixels, pixels});
    const auto simple = Area(Rectangle(0, 64, 64, 0));
    const auto comb = Area(Comb(64), Rectangle(1, 7, 7, 1));
    const auto disc = Area(Disc(64), Rectangle(1, 7, 7, 1));
    for (const RegionOperation& operation : RegionOperations()) {
        // GDAL is to have all it keeps before the memory ends; it gives up where it has not.
        ASSERT_TRUE(operation.run(source.get(), *simple)) << operation.name;
        // An area is enlarged to thousands of rows, whose mask takes 8 megabytes before the
        // shapes are looked at.
        const bool enlarges = operation.name.starts_with("area");
        CAOISource& area = enlarges ? *disc : *comb;
        for (const double megabytes : {0.5, 1.0, 2.0, 4.0, 8.0}) {
            const double bytes = ((enlarges ? 8 : 0) + megabytes) * (1 << 20);
            EXPECT_NE(RunWithMemory(static_cast<std::size_t>(bytes),
                                    [&] { return operation.run(source.get(), area); }),
                      Ending::DIED)
                << operation.name << " with " << bytes << " bytes";
        }
    }
}
