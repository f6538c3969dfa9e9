#include "zelto/baselib/ErrorEquation.h"

#include "zelto/baselib/MatrixOperation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using Values = std::vector<double>;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(ErrorEquation, ZeroClearsTheGivenCountOnly) {
    Values values = {1, 2, 3};
    CErrorEquation::zero(values.data(), 2);
    EXPECT_EQ(values, (Values{0, 0, 3}));
    CErrorEquation::zero(nullptr, 2);
    CErrorEquation::zero(values.data(), -1);
    EXPECT_EQ(values, (Values{0, 0, 3}));
}

TEST(ErrorEquation, AnObservationAddsItsOuterProduct) {
    Values normal = {1, 0, 0, 1};
    Values right = {10, 20};
    const Values row = {2, 3};
    CErrorEquation::_TFuncNorml(row.data(), 5.0, normal.data(), right.data(), 2);
    EXPECT_EQ(normal, (Values{5, 6, 6, 10}));
    EXPECT_EQ(right, (Values{20, 35}));
}

TEST(ErrorEquation, BalancingDividesEachEquationByItsLargestCoefficient) {
    Values matrix = {2, -8, 0, 0};
    Values right = {16, 3};
    CErrorEquation::_TBalance(matrix.data(), right.data(), 2);
    EXPECT_EQ(matrix, (Values{0.25, -1, 0, 0}));
    EXPECT_EQ(right, (Values{2, 3}));
}

TEST(ErrorEquation, AStraightLineIsFoundThroughItsPoints) {
    // y = 3 + 0.5 x at 0, 2, 4 with the errors +1, −2, +1, which least squares leaves out.
    const double xs[] = {0, 2, 4};
    const double ys[] = {4, 2, 6};
    Values normal(4);
    Values right(2);
    Values solution(2);
    for (int i = 0; i < 3; ++i) {
        const double row[] = {1, xs[i]};
        CErrorEquation::_TFuncNorml(row, ys[i], normal.data(), right.data(), 2);
    }
    CErrorEquation::_TBalance(normal.data(), right.data(), 2);
    ASSERT_TRUE(CErrorEquation::_TCaGauss(normal.data(), right.data(), solution.data(), 2));
    EXPECT_NEAR(solution[0], 3.0, 1e-14);
    EXPECT_NEAR(solution[1], 0.5, 1e-14);
}

TEST(ErrorEquation, ASystemThatNeedsPivotingIsSolved) {
    const Values matrix = {0, 2, 4, 0};
    const Values right = {6, 8};
    Values solution(2);
    ASSERT_TRUE(CErrorEquation::_TCaGauss(matrix.data(), right.data(), solution.data(), 2));
    EXPECT_EQ(solution, (Values{2, 3}));
}

TEST(ErrorEquation, SingularAndUndefinedSystemsAreRefused) {
    Values solution = {7, 7};
    const Values right = {1, 2};
    for (const Values& matrix : {Values{1, 2, 2, 4}, Values{0, 0, 0, 0}, Values{1, 0, 0, 1e-14},
                                 Values{1, 0, 0, NOT_A_NUMBER}})
        EXPECT_FALSE(CErrorEquation::_TCaGauss(matrix.data(), right.data(), solution.data(), 2));
    const Values unit = {1, 0, 0, 1};
    const Values bad = {1, NOT_A_NUMBER};
    EXPECT_FALSE(CErrorEquation::_TCaGauss(unit.data(), bad.data(), solution.data(), 2));
    EXPECT_EQ(solution, (Values{7, 7}));
}

TEST(ErrorEquation, NullAndEmptySystemsAreLeftAlone) {
    Values matrix = {4};
    Values right = {8};
    Values solution = {7};
    CErrorEquation::_TFuncNorml(nullptr, 1.0, matrix.data(), right.data(), 1);
    CErrorEquation::_TFuncNorml(matrix.data(), 1.0, nullptr, right.data(), 1);
    CErrorEquation::_TBalance(matrix.data(), nullptr, 1);
    CErrorEquation::_TBalance(matrix.data(), right.data(), 0);
    EXPECT_FALSE(CErrorEquation::_TCaGauss(nullptr, right.data(), solution.data(), 1));
    EXPECT_FALSE(CErrorEquation::_TCaGauss(matrix.data(), right.data(), nullptr, 1));
    EXPECT_FALSE(CErrorEquation::_TCaGauss(matrix.data(), right.data(), solution.data(), 0));
    EXPECT_EQ(matrix, Values{4});
    EXPECT_EQ(right, Values{8});
    EXPECT_EQ(solution, Values{7});
}

TEST(MatrixOperation, TransposeExchangesRowsAndColumns) {
    const Values matrix = {1, 2, 3, 4, 5, 6};
    Values result(6);
    ASSERT_TRUE(CMatrixOperation::Transpose(matrix.data(), result.data(), 2, 3));
    EXPECT_EQ(result, (Values{1, 4, 2, 5, 3, 6}));
    EXPECT_FALSE(CMatrixOperation::Transpose(matrix.data(), nullptr, 2, 3));
    EXPECT_FALSE(CMatrixOperation::Transpose(matrix.data(), result.data(), 0, 3));
}

TEST(MatrixOperation, ProductOfRectangularMatrices) {
    const Values a = {1, 2, 3, 4, 5, 6};
    const Values b = {1, 0, 0, 1, 1, 1};
    Values result(4);
    ASSERT_TRUE(CMatrixOperation::Multiply(a.data(), b.data(), result.data(), 2, 3, 2));
    EXPECT_EQ(result, (Values{4, 5, 10, 11}));
    EXPECT_FALSE(CMatrixOperation::Multiply(a.data(), nullptr, result.data(), 2, 3, 2));
    EXPECT_FALSE(CMatrixOperation::Multiply(a.data(), b.data(), result.data(), 2, 0, 2));
}

TEST(MatrixOperation, InverseUndoesTheMatrix) {
    const Values matrix = {2, 0, 1, 0, 4, 0, 0, 0, 0.5};
    Values result(9);
    ASSERT_TRUE(CMatrixOperation::Inverse(matrix.data(), result.data(), 3));
    EXPECT_EQ(result, (Values{0.5, 0, -1, 0, 0.25, 0, 0, 0, 2}));
}

TEST(MatrixOperation, InverseOfASingularMatrixIsRefused) {
    const Values matrix = {1, 2, 2, 4};
    Values result = {7, 7, 7, 7};
    EXPECT_FALSE(CMatrixOperation::Inverse(matrix.data(), result.data(), 2));
    EXPECT_FALSE(CMatrixOperation::Inverse(nullptr, result.data(), 2));
    EXPECT_FALSE(CMatrixOperation::Inverse(matrix.data(), result.data(), 0));
    EXPECT_EQ(result, (Values{7, 7, 7, 7}));
}
