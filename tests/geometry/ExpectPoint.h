#pragma once

#include "zelto/geometry/Point2D.h"

#include <gtest/gtest.h>

namespace zelto::test {

inline void ExpectPoint(const CPoint2D& p, double x, double y) {
    EXPECT_EQ(p.x, x);
    EXPECT_EQ(p.y, y);
}

} // namespace zelto::test
