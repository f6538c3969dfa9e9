#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

/// Several threads ask the same shapes at once, as the rendering loops do. Under the thread
/// sanitizer this shows that the store of the selected point is no data race.
TEST(ConcurrentHit, ContainmentTestsOfOneShapeMayRunAtOnce) {
    auto polygon = zelto::test::UnitSquareTimes10();
    auto rectangle = zelto::test::Drag({0, 10}, {10, 0});
    auto ellipse = zelto::test::Drag<CDrawEllipse>({0, 10}, {10, 0});
    std::atomic<int> hits = 0;
    const auto ask = [&] {
        for (int i = 0; i < 2000; ++i) {
            const CPoint2D p(i % 20, 5);
            hits += polygon.TopoRelationWithPoint(p, 0, 1) == TOPO_CONTAIN;
            hits += rectangle.TopoRelationWithPoint(p, 0, 1) == TOPO_CONTAIN;
            hits += ellipse.TopoRelationWithPoint(p, 0, 1) == TOPO_CONTAIN;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(ask);
    for (std::thread& thread : threads)
        thread.join();
    // Of x = 0 … 19 the polygon holds 0 … 9, rectangle and ellipse 0 … 10.
    EXPECT_EQ(hits, 4 * 100 * (10 + 11 + 11));
    EXPECT_EQ(polygon.m_selectedPointIndex, -1);
    EXPECT_EQ(rectangle.m_selectedPointIndex, -1);
}

} // namespace
