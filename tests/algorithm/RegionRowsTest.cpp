#include "zelto/algorithm/internal/RegionRows.h"

#include "zelto/aoi/RasterAOI.h"

#include "tests/algorithm/RegionFixture.h"

using namespace zelto;
using namespace zelto::test;

namespace {

class RegionRowsTest : public RegionTest {
  protected:
    /// The row's samples as a mask.
    static std::vector<bool> Row(RegionRows& region, int row, int width) {
        std::vector<ColumnSpan> spans;
        region.AppendSpans(row, spans);
        std::vector<bool> mask(static_cast<std::size_t>(width));
        int last = -1;
        for (const ColumnSpan& span : spans) {
            EXPECT_LT(span.begin, span.end);
            EXPECT_GT(span.begin, last); // apart and from left to right
            last = span.end;
            for (int i = span.begin; i < span.end; ++i)
                mask.at(static_cast<std::size_t>(i)) = true;
        }
        return mask;
    }
};

} // namespace

TEST_F(RegionRowsTest, AllRowsAreOneSpan) {
    std::vector<ColumnSpan> spans;
    AllRows(7)->AppendSpans(3, spans);
    EXPECT_EQ(spans, (std::vector<ColumnSpan>{{0, 7}}));
    AllRows(0)->AppendSpans(3, spans);
    EXPECT_EQ(spans.size(), 1U);
}

TEST_F(RegionRowsTest, EverySampleAnswersAsTheSingleTests) {
    RasterSpec spec = UnitSpec(60, 50);
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        std::array<double, 6> g = {3, 1.3, 0, 70, 0, -1.7};
        if (seed % 2 == 0)
            g = {3, 1.3, 0.2, 70, -0.3, -1.7};
        spec.geoTransform = g;
        Open(spec, {Pixels(3000, 1.0)});
        auto source = Reopen(true);
        auto first = RandomPolygon(random, 60);
        CDrawPolygon shape = *first;
        auto area = Area(std::move(first), Ellipse(10, 60, 50, 20));
        CRasterAOI aoi(source.get(), area.get());
        aoi.Initialize();
        const PixelWindow window = {5, 3, 40, 30};
        SampleGrid grid;
        grid.step = seed % 3 == 0 ? 1.0 : 0.37 * (1 + seed % 7);
        grid.width = static_cast<int>(40 / grid.step);
        grid.height = static_cast<int>(30 / grid.step);
        const auto ofAoi = RowsOf(aoi, window, grid);
        const auto ofShape = RowsOf(shape, *source, window, grid);
        const auto ofArea = RowsOf(*area, *source, window, grid);
        CDrawShape* const shapes[] = {&shape};
        const auto ofCentres = RowsOf(shapes, *source, window, grid, 0.5);
        for (int j = 0; j < grid.height; ++j) {
            const auto aoiRow = Row(*ofAoi, j, grid.width);
            const auto shapeRow = Row(*ofShape, j, grid.width);
            const auto areaRow = Row(*ofArea, j, grid.width);
            const auto centreRow = Row(*ofCentres, j, grid.width);
            for (int i = 0; i < grid.width; ++i) {
                const double px = i * grid.step + 5, py = j * grid.step + 3;
                const auto ground = [&](double x, double y) {
                    return CPoint2D(g[0] + x * g[1] + y * g[2], g[3] + x * g[4] + y * g[5]);
                };
                const CPoint2D p = ground(px, py);
                const auto k = static_cast<std::size_t>(i);
                EXPECT_EQ(aoiRow[k], aoi.IsInAOI(static_cast<int>(px), static_cast<int>(py)));
                EXPECT_EQ(shapeRow[k], shape.TopoRelationWithPoint(p, 0.0, 1) == TOPO_CONTAIN);
                EXPECT_EQ(areaRow[k], area->TopoRelationWithPoint(p.x, p.y) == TOPO_CONTAIN);
                EXPECT_EQ(centreRow[k], shape.TopoRelationWithPoint(
                                            ground(i * grid.step + 5.5, j * grid.step + 3.5), 0.0,
                                            1) == TOPO_CONTAIN);
            }
        }
    }
}

TEST_F(RegionRowsTest, AnAreasExtentLimitsItsShapes) {
    auto source = Open(UnitSpec(10, 10), {Pixels(100, 1.0)});
    auto area = Area(Rectangle(1, 9, 8, 1));
    // The host moves the shape; the area's extent does not know.
    area->GetDrawShape(0)->SetOffset(5, 0);
    const auto region = RowsOf(*area, *source, {0, 0, 10, 10}, {1.0, 10, 10, 100});
    std::vector<ColumnSpan> spans;
    region->AppendSpans(5, spans);
    EXPECT_EQ(spans, (std::vector<ColumnSpan>{{6, 9}}));
    EXPECT_EQ(area->TopoRelationWithPoint(8, 5), TOPO_CONTAIN);
    EXPECT_EQ(area->TopoRelationWithPoint(9, 5), TOPO_DISJOINT);
}

TEST_F(RegionRowsTest, SpansAreVisitedAtTheirPlaceInPackedRows) {
    auto source = Open(UnitSpec(10, 10), {Pixels(100, 1.0)});
    auto area = Area(Rectangle(2, 8, 4.5, 6.5), Rectangle(7, 8, 8.5, 6.5));
    const auto region = RowsOf(*area, *source, {0, 0, 10, 10}, {1.0, 10, 10, 100});
    RegionSpans spans;
    spans.Find(*region, 1, 4);
    std::vector<std::pair<std::size_t, std::size_t>> visited;
    spans.Visit(10,
                [&](std::size_t begin, std::size_t count) { visited.emplace_back(begin, count); });
    // Rows 2 (y = 8) and 3 (y = 7) of the image are rows 1 and 2 of what was asked.
    EXPECT_EQ(visited, (std::vector<std::pair<std::size_t, std::size_t>>{
                           {12, 3}, {17, 2}, {22, 3}, {27, 2}}));
}
