#include "zelto/baselib/MatrixOperation.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using Values = std::vector<double>;

} // namespace

TEST(MatrixOperation, TransposesRowsToColumns) {
    const Values matrix = {1, 2, 3, 4, 5, 6};
    Values result(6);
    EXPECT_TRUE(CMatrixOperation::Transpose(matrix.data(), result.data(), 2, 3));
    EXPECT_EQ(result, (Values{1, 4, 2, 5, 3, 6}));
}

TEST(MatrixOperation, MultipliesRowsByColumns) {
    const Values a = {1, 2, 3, 4, 5, 6}; // 2 × 3
    const Values b = {1, 0, 0, 1, 2, 3}; // 3 × 2
    Values result(4);
    EXPECT_TRUE(CMatrixOperation::Multiply(a.data(), b.data(), result.data(), 2, 3, 2));
    EXPECT_EQ(result, (Values{1 + 6, 2 + 9, 4 + 12, 5 + 18}));
}

TEST(MatrixOperation, InvertsAndSolvesAlsoWithAZeroOnTheDiagonal) {
    const Values matrix = {0, 2, 4, 0}; // its inverse is 0, 1/4; 1/2, 0
    Values inverse(4);
    ASSERT_TRUE(CMatrixOperation::Inverse(matrix.data(), inverse.data(), 2));
    EXPECT_EQ(inverse, (Values{0, 0.25, 0.5, 0}));
    const Values right = {6, 8};
    Values solution(2);
    ASSERT_TRUE(CMatrixOperation::Solve(matrix.data(), right.data(), solution.data(), 2));
    EXPECT_EQ(solution, (Values{2, 3}));
}

TEST(MatrixOperation, ASingularMatrixLeavesTheResult) {
    const Values matrix = {1, 2, 2, 4};
    Values result = {7, 7, 7, 7};
    EXPECT_FALSE(CMatrixOperation::Inverse(matrix.data(), result.data(), 2));
    EXPECT_FALSE(CMatrixOperation::Solve(matrix.data(), matrix.data(), result.data(), 2));
    EXPECT_EQ(result, (Values{7, 7, 7, 7}));
}

TEST(MatrixOperation, ValuesThatAreNotFiniteFail) {
    const Values matrix = {1, 0, 0, std::numeric_limits<double>::quiet_NaN()};
    const Values one = {1, 0, 0, 1};
    const Values right = {1, std::numeric_limits<double>::infinity()};
    Values result(4);
    EXPECT_FALSE(CMatrixOperation::Inverse(matrix.data(), result.data(), 2));
    EXPECT_FALSE(CMatrixOperation::Solve(one.data(), right.data(), result.data(), 2));
}

TEST(MatrixOperation, NullAndCountsBelowOneFail) {
    const Values one = {1};
    Values result(1);
    EXPECT_FALSE(CMatrixOperation::Transpose(nullptr, result.data(), 1, 1));
    EXPECT_FALSE(CMatrixOperation::Transpose(one.data(), result.data(), 0, 1));
    EXPECT_FALSE(CMatrixOperation::Multiply(one.data(), nullptr, result.data(), 1, 1, 1));
    EXPECT_FALSE(CMatrixOperation::Multiply(one.data(), one.data(), result.data(), 1, 0, 1));
    EXPECT_FALSE(CMatrixOperation::Inverse(one.data(), nullptr, 1));
    EXPECT_FALSE(CMatrixOperation::Inverse(one.data(), result.data(), -1));
    EXPECT_FALSE(CMatrixOperation::Solve(one.data(), nullptr, result.data(), 1));
}

TEST(MatrixOperation, EachNullArgumentAndCountBelowOneFails) {
    const Values one = {1};
    Values result = {7};
    EXPECT_FALSE(CMatrixOperation::Transpose(one.data(), nullptr, 1, 1));
    EXPECT_FALSE(CMatrixOperation::Transpose(one.data(), result.data(), 1, 0));
    EXPECT_FALSE(CMatrixOperation::Multiply(nullptr, one.data(), result.data(), 1, 1, 1));
    EXPECT_FALSE(CMatrixOperation::Multiply(one.data(), one.data(), nullptr, 1, 1, 1));
    EXPECT_FALSE(CMatrixOperation::Multiply(one.data(), one.data(), result.data(), 0, 1, 1));
    EXPECT_FALSE(CMatrixOperation::Multiply(one.data(), one.data(), result.data(), 1, 1, -1));
    EXPECT_FALSE(CMatrixOperation::Inverse(nullptr, result.data(), 1));
    EXPECT_FALSE(CMatrixOperation::Solve(nullptr, one.data(), result.data(), 1));
    EXPECT_FALSE(CMatrixOperation::Solve(one.data(), one.data(), nullptr, 1));
    EXPECT_FALSE(CMatrixOperation::Solve(one.data(), one.data(), result.data(), 0));
    EXPECT_EQ(result, Values{7});
}

TEST(MatrixOperation, ASolutionBeyondTheLargestNumberFails) {
    const Values matrix = {1e-10};
    const Values right = {1e300};
    Values result = {7};
    EXPECT_FALSE(CMatrixOperation::Solve(matrix.data(), right.data(), result.data(), 1));
    EXPECT_EQ(result, Values{7});
}
