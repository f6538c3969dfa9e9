#include "zelto/baselib/internal/Truncate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t LEAST64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int32_t LEAST32 = std::numeric_limits<std::int32_t>::min();

} // namespace

TEST(Truncate, GoesTowardZero) {
    EXPECT_EQ(zelto::TruncateToInt64(2.9), 2);
    EXPECT_EQ(zelto::TruncateToInt64(-2.9), -2);
    EXPECT_EQ(zelto::TruncateToInt64(-0.5), 0);
    EXPECT_EQ(zelto::TruncateToInt32(2.9), 2);
    EXPECT_EQ(zelto::TruncateToInt32(-2.9), -2);
}

TEST(Truncate, KeepsTheEndsOfTheRange) {
    EXPECT_EQ(zelto::TruncateToInt32(2147483647.9), 2147483647);
    EXPECT_EQ(zelto::TruncateToInt32(-2147483648.9), LEAST32);
    EXPECT_EQ(zelto::TruncateToInt64(std::nextafter(std::ldexp(1.0, 63), 0.0)),
              9223372036854774784);
    EXPECT_EQ(zelto::TruncateToInt64(-std::ldexp(1.0, 63)), LEAST64);
}

TEST(Truncate, WhatDoesNotFitGivesTheLeastInteger) {
    for (const double value :
         {NO_NUMBER, INFINITE, -INFINITE, std::ldexp(1.0, 63), 1e300, -1e300}) {
        EXPECT_EQ(zelto::TruncateToInt64(value), LEAST64) << value;
        EXPECT_EQ(zelto::TruncateToInt32(value), LEAST32) << value;
    }
    EXPECT_EQ(zelto::TruncateToInt32(2147483648.0), LEAST32);
    EXPECT_EQ(zelto::TruncateToInt32(-2147483649.0), LEAST32);
}

TEST(Truncate, ConstantsAreNoExceptionForTheOptimiser) {
    EXPECT_EQ(zelto::TruncateToInt32(4294967296.0), LEAST32);
    EXPECT_EQ(zelto::TruncateToInt32(-4294967296.0), LEAST32);
    EXPECT_EQ(zelto::TruncateToInt32(NO_NUMBER), LEAST32);
    EXPECT_EQ(zelto::TruncateToInt64(18446744073709551616.0), LEAST64);
    EXPECT_EQ(zelto::TruncateToInt64(NO_NUMBER), LEAST64);
}

TEST(Truncate, AByteIsTheLowEightBits) {
    EXPECT_EQ(zelto::TruncateToByte(0.99), 0);
    EXPECT_EQ(zelto::TruncateToByte(255.99), 255);
    EXPECT_EQ(zelto::TruncateToByte(256.0), 0);
    EXPECT_EQ(zelto::TruncateToByte(300.7), 44);
    EXPECT_EQ(zelto::TruncateToByte(-1.0), 255);
    EXPECT_EQ(zelto::TruncateToByte(-0.9), 0);
    EXPECT_EQ(zelto::TruncateToByte(4294967296.0 + 7.0), 7); // beyond 32 bits
}

TEST(Truncate, AByteOfWhatDoesNotFitIsZero) {
    for (const double value : {NO_NUMBER, INFINITE, -INFINITE, 1e19, -1e19})
        EXPECT_EQ(zelto::TruncateToByte(value), 0) << value;
}
