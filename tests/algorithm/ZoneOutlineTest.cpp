#include "zelto/algorithm/internal/ZoneOutline.h"

#include <gtest/gtest.h>

#include <vector>

using namespace zelto;

TEST(ZoneOutline, RingsWithoutAnAreaMeetNoRow) {
    const std::vector<std::vector<PixelPoint>> rings = {
        {}, {{1, 1}}, {{0, 0}, {2, 2}, {1, 1}}, {{0, 1}, {4, 1}, {2, 1}}};
    ZoneOutline outline;
    for (const auto& ring : rings)
        outline.AddRing(ring, false);
    outline.Finish(4, 4);
    EXPECT_EQ(outline.FirstRow(), outline.EndRow());
}

TEST(ZoneOutline, ZonesBesideTheRasterMeetNoRow) {
    for (const double left : {-9.0, 4.0, 9.0}) {
        ZoneOutline outline;
        outline.AddRing({{left, 1}, {left + 3, 1}, {left + 3, 3}}, false);
        outline.Finish(4, 4);
        EXPECT_EQ(outline.FirstRow(), outline.EndRow()) << left;
    }
}

TEST(ZoneOutline, SidesThatLeaveTheRasterAreCutAtItsEdge) {
    // A triangle from the left half of the last column far to the right: x = 3.5 on the left.
    ZoneOutline outline;
    outline.AddRing({{3.5, 0}, {1003.5, 0}, {3.5, 1}}, false);
    outline.Finish(4, 4);
    EXPECT_EQ(outline.FirstColumn(), 3);
    EXPECT_EQ(outline.EndColumn(), 4);
    outline.Rewind();
    std::vector<ZoneSpan> spans;
    outline.FindCoverage(0, spans);
    ASSERT_EQ(spans.size(), 1U);
    EXPECT_EQ(spans[0].begin, 3);
    EXPECT_EQ(spans[0].end, 4);
    // Half a column but for the small triangle that the long side cuts off: ½ × ½ × 1/2000.
    EXPECT_NEAR(spans[0].weight, 0.5 - 0.5 * 0.5 / 2000, 1e-12);
}
