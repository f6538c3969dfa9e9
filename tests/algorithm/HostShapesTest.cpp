#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/algorithm/RegionFixture.h"

#include <limits>

using namespace zelto::test;

namespace {

/// A shape of a host's own: a disc in which it answers what it was told to, whatever the mode.
class HostDisc : public CDrawShape {
  public:
    HostDisc(CPoint2D centre, double radius, SpatialTopoRelation answer)
        : m_centre(centre), m_radius(radius), m_answer(answer) {
        m_shapeKind = SHAPE_POLYGON;
        m_complete = true;
        m_extent.SetBoundingBox(centre.x - radius, centre.y + radius, centre.x + radius,
                                centre.y - radius);
    }

    int AddVertex(CPoint2D /*p*/) override { return 0; }
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double, int) override {
        return std::hypot(p.x - m_centre.x, p.y - m_centre.y) <= m_radius ? m_answer
                                                                          : TOPO_DISJOINT;
    }
    SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox*) override {
        return TOPO_DISJOINT;
    }

  private:
    CPoint2D m_centre;
    double m_radius;
    SpatialTopoRelation m_answer;
};

class HostShapes : public RegionTest {
  protected:
    /// An area of random shapes, a host's among the engine's.
    static std::unique_ptr<CAOISource> RandomArea(std::minstd_rand& random, double size) {
        std::uniform_real_distribution<double> place(0, size);
        std::uniform_int_distribution<int> kind(0, 4);
        auto area = std::make_unique<CAOISource>();
        for (int i = 0; i < 5; ++i) {
            const int answer = kind(random);
            std::unique_ptr<CDrawShape> shape;
            if (answer == 0)
                shape = RandomPolygon(random, size);
            else if (answer == 4)
                shape = Ellipse(place(random), size, size, place(random));
            else
                shape = std::make_unique<HostDisc>(CPoint2D(place(random), place(random)),
                                                   place(random) / 2, SpatialTopoRelation(answer));
            if (area->AddDrawShape(shape.get()))
                shape.release();
        }
        return area;
    }
};

} // namespace

TEST_F(HostShapes, TheFirstOneThatAnswersDecidesAlsoWhereALaterOneHoldsThePoint) {
    const auto source = Open(UnitSpec(4, 4), {MakePixels(4, 4, [](int c, int) { return 1 + c; })});
    CAOISource area;
    area.AddDrawShape(new HostDisc({2, 2}, 10, TOPO_TOUCH));
    area.AddDrawShape(Rectangle(0, 4, 4, 0).release());
    __int64 count = -1;
    double maximum = -1;
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI2(
        source.get(), &area, count, nullptr, &maximum, nullptr, nullptr, false, nullptr));
    EXPECT_EQ(count, 0) << "touched everywhere, contained nowhere";
    EXPECT_EQ(maximum, 0);
}

TEST_F(HostShapes, RandomAreasAgreeWithAskingTheSourceSampleBySample) {
    RasterSpec spec = UnitSpec(40, 30);
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::minstd_rand random(seed);
        spec.geoTransform =
            seed % 2 == 0 ? std::array<double, 6>{0, 1, 0.2, 30, -0.1, -1} : NorthUp(0, 30, 1);
        // Eight bands share the budget, so that the grid stays small enough to be asked plainly.
        Open(spec, std::vector<Pixels>(
                       8, MakePixels(40, 30, [&](int, int) { return 1.0 + random() % 200; })));
        const auto source = Reopen(true);
        const auto area = RandomArea(random, 30);
        __int64 count = -1;
        std::vector<double> mean(8, -1);
        CBoundingBox box = area->GetExtent();
        CBoundingBox extent = source->GetExtent();
        ASSERT_TRUE(box.Intersect(&extent));
        const CRect rect = source->GroundToImage(&box);
        const int width = rect.right - rect.left;
        const int height = rect.bottom - rect.top;
        const double step = std::sqrt(double(width) * height / (16777216 / 8));
        const int columns = int(width / step);
        const int rows = int(height / step);
        std::vector<float> samples(std::size_t(columns) * std::size_t(rows));
        ASSERT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI2(source.get(), area.get(), count,
                                                             nullptr, nullptr, mean.data(), nullptr,
                                                             false, nullptr));
        if (source->GetRasterBand(0)->GetGDALBand()->RasterIO(
                GF_Read, rect.left, rect.top, width, height, samples.data(), columns, rows,
                GDT_Float32, 0, 0, nullptr) != CE_None)
            continue;
        double g[6];
        source->GetGeoTransform(g, false);
        long long plainCount = 0;
        double sum = 0;
        for (int j = 0; j < rows; ++j)
            for (int i = 0; i < columns; ++i) {
                const double px = i * step + rect.left;
                const double py = j * step + rect.top;
                if (area->TopoRelationWithPoint(g[0] + px * g[1] + py * g[2],
                                                g[3] + px * g[4] + py * g[5]) != TOPO_CONTAIN)
                    continue;
                ++plainCount;
                sum += double(samples[std::size_t(j) * std::size_t(columns) + std::size_t(i)]);
            }
        EXPECT_EQ(count, plainCount);
        EXPECT_EQ(mean[0], plainCount > 0 ? sum / double(plainCount) : 0.0);
    }
}
