#include "zelto/aoi/internal/RowMembership.h"

#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPoint.h"

#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace {

using zelto::RowMembership;
using zelto::test::Drag;
using zelto::test::MakePolygon;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

using Shapes = std::vector<std::unique_ptr<CDrawShape>>;

std::vector<CDrawShape*> Pointers(const Shapes& shapes) {
    std::vector<CDrawShape*> pointers;
    for (const auto& shape : shapes)
        pointers.push_back(shape.get());
    return pointers;
}

bool SingleTest(const Shapes& shapes, double x, double y) {
    return std::any_of(shapes.begin(), shapes.end(), [&](const auto& shape) {
        return shape->TopoRelationWithPoint({x, y}, 0.0, 1) == TOPO_CONTAIN;
    });
}

/// Every answer of the rows against the single test, for each y over all xs.
void ExpectSameAsSingleTest(const Shapes& shapes, const std::vector<double>& ys,
                            const std::vector<double>& xs) {
    const RowMembership rows(Pointers(shapes));
    RowMembership::Scratch scratch;
    std::vector<unsigned char> inside(xs.size(), 7);
    for (double y : ys) {
        rows.Row(y, xs, inside, scratch);
        for (std::size_t i = 0; i < xs.size(); ++i)
            ASSERT_EQ(int(inside[i]), int(SingleTest(shapes, xs[i], y)))
                << "at (" << xs[i] << ", " << y << ")";
    }
}

class Random {
  public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    int Integer(int low, int high) { return std::uniform_int_distribution(low, high)(m_engine); }
    double Real(double low, double high) {
        return std::uniform_real_distribution(low, high)(m_engine);
    }
    template <typename Coordinate>
    std::vector<CPoint2D> Points(int count, Coordinate coordinate) {
        std::vector<CPoint2D> points;
        for (int i = 0; i < count; ++i)
            points.emplace_back(coordinate(), coordinate());
        return points;
    }

  private:
    std::mt19937 m_engine;
};

std::vector<double> Steps(double first, double step, int count) {
    std::vector<double> xs;
    for (int i = 0; i < count; ++i)
        xs.push_back(first + i * step);
    return xs;
}

template <typename Coordinate>
void CompareRandomPolygons(Random& random, const std::vector<double>& ys,
                           const std::vector<double>& xs, Coordinate coordinate) {
    for (int round = 0; round < 150; ++round) {
        Shapes shapes;
        for (int n = random.Integer(1, 3); n > 0; --n)
            shapes.push_back(std::make_unique<CDrawPolygon>(
                MakePolygon(random.Points(random.Integer(0, 12), coordinate))));
        ExpectSameAsSingleTest(shapes, ys, xs);
    }
}

TEST(RowMembership, PolygonsOnWholePixelsAnswerAsTheSingleTest) {
    SCOPED_TRACE("seed 11");
    Random random(11);
    // Few distinct coordinates: repeated vertices, horizontal and vertical edges, positions on
    // vertices and on edges all come up.
    CompareRandomPolygons(random, Steps(-1, 1, 11), Steps(-1, 1, 11),
                          [&] { return double(random.Integer(0, 8)); });
}

TEST(RowMembership, PolygonsOnFractionsAnswerAsTheSingleTest) {
    SCOPED_TRACE("seed 12");
    Random random(12);
    CompareRandomPolygons(random, Steps(-0.3, 0.41, 30), Steps(-0.7, 0.1, 120),
                          [&] { return random.Real(0, 10); });
}

TEST(RowMembership, RowsWithManyCrossingsAnswerAsTheSingleTest) {
    SCOPED_TRACE("seed 16");
    Random random(16);
    for (int round = 0; round < 20; ++round) {
        Shapes shapes;
        // A zigzag whose edges all cross the rows in its middle: 20 to 120 crossings a row.
        for (int n = random.Integer(1, 2); n > 0; --n) {
            std::vector<CPoint2D> zigzag;
            for (int i = random.Integer(20, 120); i > 0; --i)
                zigzag.emplace_back(random.Real(0, 10),
                                    i % 2 == 0 ? random.Real(0, 4) : random.Real(6, 10));
            shapes.push_back(std::make_unique<CDrawPolygon>(MakePolygon(zigzag)));
        }
        ExpectSameAsSingleTest(shapes, Steps(-0.5, 0.73, 16), Steps(-0.7, 0.05, 230));
    }
}

TEST(RowMembership, PositionsBesideACrossingByOneRoundingStepAnswerAsTheSingleTest) {
    SCOPED_TRACE("seed 13");
    Random random(13);
    for (int round = 0; round < 200; ++round) {
        Shapes shapes;
        shapes.push_back(std::make_unique<CDrawPolygon>(
            MakePolygon(random.Points(3, [&] { return random.Real(-1e6, 1e6); }))));
        const double y = random.Real(-1e6, 1e6);
        const auto& v = shapes[0]->m_vertices;
        std::vector<double> xs;
        for (std::size_t i = 0; i < 3; ++i) {
            const CPoint2D p = v[i];
            const CPoint2D q = v[(i + 1) % 3];
            double x = p.x + (y - p.y) / (q.y - p.y) * (q.x - p.x);
            for (int k = 0; k < 12; ++k)
                x = std::nextafter(x, -INFINITE);
            for (int k = 0; k < 24; ++k)
                xs.push_back(x = std::nextafter(x, INFINITE));
        }
        std::sort(xs.begin(), xs.end());
        ExpectSameAsSingleTest(shapes, {y}, xs);
    }
}

TEST(RowMembership, HugeAndUndefinedCoordinatesAnswerAsTheSingleTest) {
    SCOPED_TRACE("seed 14");
    Random random(14);
    const std::vector<double> odd = {0,     1,      -1,       5,         1e149,        -1e151,
                                     1e200, -1e308, INFINITE, -INFINITE, NOT_A_NUMBER, 1e-310};
    std::vector<double> xs = {-INFINITE, -1e308, -1e200, -1e151, -1e149, -1,    0,       1e-310,
                              1,         3,      1e149,  1e151,  1e200,  1e308, INFINITE};
    std::vector<double> ys = xs;
    ys.push_back(NOT_A_NUMBER);
    const auto coordinate = [&] {
        return odd[std::size_t(random.Integer(0, int(odd.size()) - 1))];
    };
    CompareRandomPolygons(random, ys, xs, coordinate);
    CompareRandomPolygons(random, ys, Steps(-2, 0.5, 12), coordinate);
    xs.insert(xs.begin() + 4, NOT_A_NUMBER);
    CompareRandomPolygons(random, ys, xs, coordinate);
}

TEST(RowMembership, RectanglesAndEllipsesAnswerAsTheSingleTest) {
    SCOPED_TRACE("seed 15");
    Random random(15);
    for (int round = 0; round < 300; ++round) {
        // Every other round on whole numbers, so that positions fall on the boundary.
        const auto coordinate = [&] {
            return round % 2 == 0 ? random.Integer(0, 10) : random.Real(0, 10);
        };
        const auto corners = random.Points(4, coordinate);
        Shapes shapes;
        shapes.push_back(
            std::make_unique<CDrawRectangle>(Drag<CDrawRectangle>(corners[0], corners[1])));
        shapes.push_back(
            std::make_unique<CDrawEllipse>(Drag<CDrawEllipse>(corners[2], corners[3])));
        // Dragging leaves inverted extents, which hold nothing; half of them are put right.
        if (round % 4 < 2) {
            dynamic_cast<CDrawRectangle&>(*shapes[0]).UpdateExtent();
            dynamic_cast<CDrawEllipse&>(*shapes[1]).UpdateExtent();
        }
        ExpectSameAsSingleTest(shapes, Steps(-1, 0.5, 25), Steps(-1, 0.25, 50));
    }
}

TEST(RowMembership, OddEllipsesAnswerAsTheSingleTest) {
    const std::vector<double> sizes = {0, 1e-200, 1e-160, 2, 1e149, 1e160, 1e308, NOT_A_NUMBER};
    const std::vector<double> xs = {-1e308, -1e160, -1, 0, 1e-200, 0.5, 1, 2, 1e149, 1e160};
    for (double width : sizes)
        for (double height : sizes) {
            auto ellipse = std::make_unique<CDrawEllipse>();
            ellipse->m_width = width;
            ellipse->m_height = height;
            ellipse->m_extent.SetBoundingBox(-INFINITE, INFINITE, INFINITE, -INFINITE);
            Shapes shapes;
            shapes.push_back(std::move(ellipse));
            ExpectSameAsSingleTest(shapes, xs, xs);
        }
}

TEST(RowMembership, EllipsesAroundAFarPlaceAnswerAsTheSingleTest) {
    const std::vector<double> places = {-1e152, 0, 1e152};
    const std::vector<double> xs = {-1.1e152, -1e152, -5, 0, 4, 1e152, 1.2e152};
    for (double left : places)
        for (double top : places) {
            auto ellipse = std::make_unique<CDrawEllipse>();
            ellipse->m_topLeft = {left, top};
            ellipse->m_width = 10;
            ellipse->m_height = 8;
            ellipse->m_extent.SetBoundingBox(-INFINITE, INFINITE, INFINITE, -INFINITE);
            Shapes shapes;
            shapes.push_back(std::move(ellipse));
            ExpectSameAsSingleTest(shapes, xs, xs);
        }
}

TEST(RowMembership, ASinglePositionOrOneBeyondTheLimitAnswersAsTheSingleTest) {
    Shapes shapes;
    shapes.push_back(std::make_unique<CDrawPolygon>(zelto::test::UnitSquareTimes10()));
    for (const std::vector<double>& xs : {std::vector<double>{NOT_A_NUMBER},
                                          {5.0},
                                          {5.0, 1e160},
                                          {-1e160, 5.0},
                                          std::vector<double>{}})
        ExpectSameAsSingleTest(shapes, {-1, 0, 5, 10, 11}, xs);
    EXPECT_FALSE(zelto::RowPositions(std::vector<double>{NOT_A_NUMBER}).AreMonotone());
    EXPECT_FALSE(zelto::RowPositions(std::vector<double>{5.0, 1e160}).AreMonotone());
    EXPECT_TRUE(zelto::RowPositions(std::vector<double>{5.0}).AreMonotone());
}

TEST(RowMembership, PositionsInAnyOrderAnswerAsTheSingleTest) {
    SCOPED_TRACE("seed 16");
    Random random(16);
    auto xs = Steps(-0.5, 0.25, 50);
    std::reverse(xs.begin(), xs.end());
    CompareRandomPolygons(random, Steps(-1, 0.5, 22), xs, [&] { return random.Real(0, 10); });
    xs = Steps(0, 0, 0);
    for (int i = 0; i < 50; ++i)
        xs.push_back(random.Integer(-1, 9));
    CompareRandomPolygons(random, Steps(-1, 0.5, 22), xs,
                          [&] { return double(random.Integer(0, 8)); });
}

TEST(RowMembership, TheExtentDecidesEvenWhenItIsNotThatOfTheVertices) {
    const std::vector<CBoundingBox> extents = {{2, 8, 6, 3},
                                               {6, 8, 2, 3},
                                               {2, 3, 6, 8},
                                               {-INFINITE, 5, INFINITE, 5},
                                               {NOT_A_NUMBER, 10, 10, 0},
                                               {0, 10, 10, NOT_A_NUMBER}};
    for (const CBoundingBox& extent : extents) {
        Shapes shapes;
        shapes.push_back(std::make_unique<CDrawPolygon>(zelto::test::UnitSquareTimes10()));
        shapes[0]->m_extent = extent;
        ExpectSameAsSingleTest(shapes, Steps(-1, 1, 13), Steps(-1, 1, 13));
    }
}

/// A host's shape: everything left of x = 3, whatever its vertices say.
class HalfPlane : public CDrawPolygon {
  public:
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double, int) override {
        return p.x < 3 ? TOPO_CONTAIN : TOPO_DISJOINT;
    }
};

TEST(RowMembership, PointsLinesAndShapesOfTheHostAreAskedThemselves) {
    Shapes shapes;
    shapes.push_back(std::make_unique<CDrawPoint>(1));
    shapes.back()->AddVertex({7, 2});
    shapes.push_back(std::make_unique<CDrawLine>());
    shapes.back()->AddVertex({4, 4});
    shapes.back()->AddVertex({9, 9});
    shapes.push_back(std::make_unique<CDrawMultiLine>());
    shapes.back()->AddVertex({0, 0});
    ExpectSameAsSingleTest(shapes, Steps(0, 1, 10), Steps(0, 1, 10));
    shapes.push_back(std::make_unique<HalfPlane>());
    ExpectSameAsSingleTest(shapes, Steps(0, 1, 10), Steps(0, 1, 10));
}

TEST(RowMembership, ShapesAreUnited) {
    Shapes shapes;
    shapes.push_back(std::make_unique<CDrawPolygon>(zelto::test::UnitSquareTimes10()));
    shapes.push_back(std::make_unique<CDrawRectangle>(Drag({8, 4}, {12, 2})));
    const RowMembership rows(Pointers(shapes));
    RowMembership::Scratch scratch;
    const std::vector<double> xs = {-1, 0, 5, 9, 10, 12, 13};
    std::vector<unsigned char> inside(xs.size());
    rows.Row(3, xs, inside, scratch);
    EXPECT_EQ(inside, (std::vector<unsigned char>{0, 1, 1, 1, 1, 1, 0}));
    rows.Row(5, xs, inside, scratch);
    EXPECT_EQ(inside, (std::vector<unsigned char>{0, 1, 1, 1, 0, 0, 0}));
    EXPECT_TRUE(rows.Holds(12, 3, scratch));
    EXPECT_FALSE(rows.Holds(12, 5, scratch));
}

TEST(RowMembership, NoShapesAndNullShapesHoldNothing) {
    const std::vector<CDrawShape*> shapes = {nullptr};
    const RowMembership rows(shapes);
    RowMembership::Scratch scratch;
    EXPECT_FALSE(rows.Holds(0, 0, scratch));
    rows.Row(0, std::vector<double>{}, {}, scratch);
}

TEST(RowMembership, TheSelectedPointIsForgottenAsBySingleTests) {
    auto polygon = zelto::test::UnitSquareTimes10();
    auto rectangle = Drag({0, 10}, {10, 0});
    auto ellipse = Drag<CDrawEllipse>({0, 10}, {10, 0});
    for (CDrawShape* shape : std::initializer_list<CDrawShape*>{&polygon, &rectangle, &ellipse})
        shape->m_selectedPointIndex = 2;
    const RowMembership rows(std::vector<CDrawShape*>{&polygon, &rectangle, &ellipse});
    EXPECT_EQ(polygon.m_selectedPointIndex, -1);
    EXPECT_EQ(rectangle.m_selectedPointIndex, -1);
    EXPECT_EQ(ellipse.m_selectedPointIndex, 2);
}

TEST(RowMembership, ALargePolygonAnswersAsTheSingleTest) {
    SCOPED_TRACE("seed 17");
    Random random(17);
    std::vector<CPoint2D> points;
    for (int i = 0; i < 5000; ++i) {
        const double angle = i * 2 * 3.14159265358979323846 / 5000;
        const double radius = random.Real(300, 500);
        points.emplace_back(std::floor(radius * std::cos(angle)),
                            std::floor(radius * std::sin(angle)));
    }
    Shapes shapes;
    shapes.push_back(std::make_unique<CDrawPolygon>(MakePolygon(points)));
    ExpectSameAsSingleTest(shapes, Steps(-500, 37, 28), Steps(-501, 1, 1003));
}

} // namespace
