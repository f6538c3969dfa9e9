#include "zelto/algorithm/internal/ExactSum.h"

#include "zelto/algorithm/internal/ExactMoments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <utility>
#include <vector>

using zelto::ExactSum;
using zelto::ExactWay;

namespace {

std::vector<unsigned char> BytesOf(const std::vector<double>& terms) {
    ExactSum sum;
    for (const double term : terms)
        sum.Add(term);
    return sum.Bytes();
}

std::vector<unsigned char> One(std::size_t bit) {
    std::vector<unsigned char> bytes(ExactSum().Bytes().size());
    bytes[bit / 8] = static_cast<unsigned char>(1U << bit % 8);
    return bytes;
}

} // namespace

TEST(ExactSum, HoldsTheSmallestAndTheGreatestTermBesideEachOther) {
    const double small = std::numeric_limits<double>::denorm_min(); // 2^−1074
    const double great = std::numeric_limits<double>::max();
    EXPECT_EQ(BytesOf({great, small, -great}), One(2148 - 1074));
    EXPECT_EQ(BytesOf({1.0}), One(2148));
    EXPECT_EQ(BytesOf({0.0, -0.0}), ExactSum().Bytes());
}

TEST(ExactSum, HoldsProductsThatDoublesDoNot) {
    const double small = std::numeric_limits<double>::denorm_min();
    ExactSum sum;
    sum.AddProduct(small, small);
    EXPECT_EQ(sum.Bytes(), One(0));
    const double great = std::numeric_limits<double>::max();
    sum.AddProduct(great, great);
    sum.AddProduct(-great, great);
    EXPECT_EQ(sum.Bytes(), One(0));
}

TEST(ExactSum, DoesNotDependOnTheOrder) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> exponent(-1000, 1000);
    std::normal_distribution<double> normal(0, 1);
    std::vector<double> terms(5000);
    for (double& term : terms)
        term = std::ldexp(normal(random), exponent(random));
    const auto expected = BytesOf(terms);
    std::shuffle(terms.begin(), terms.end(), random);
    EXPECT_EQ(BytesOf(terms), expected);
}

TEST(ExactSum, OfWholeNumbersIsThatOfTheirDoubles) {
    std::mt19937_64 random(11);
    ExactSum whole;
    ExactSum doubles;
    for (int i = 0; i < 1000; ++i) {
        const auto value = static_cast<std::int64_t>(random() >> 12U) - (std::int64_t{1} << 51);
        whole.AddWhole(value);
        doubles.Add(static_cast<double>(value));
        whole.AddWhole(static_cast<zelto::Int128>(value) * value);
        doubles.AddProduct(static_cast<double>(value), static_cast<double>(value));
    }
    EXPECT_EQ(whole.Bytes(), doubles.Bytes());
}

TEST(ExactSum, IsNegativeInTwosComplement) {
    const auto bytes = BytesOf({-1.0});
    EXPECT_EQ(bytes[2148 / 8], 0xF0); // bit 2148 and all above it
    EXPECT_EQ(bytes.back(), 0xFF);
    EXPECT_EQ(bytes.front(), 0x00);
}

TEST(ExactSum, OfManyLargeTermsCarriesInTime) {
    // All the digits that a term has are full: 2^53 − 1 and its square.
    constexpr double FULL = 9007199254740991.0;
    constexpr int TERMS = 1 << 21;
    ExactSum many;
    for (int i = 0; i < TERMS; ++i) {
        many.AddProduct(FULL, FULL);
        many.Add(-FULL);
    }
    ExactSum product;
    const auto square = static_cast<zelto::Int128>(FULL) * static_cast<zelto::Int128>(FULL);
    product.AddWhole((square - static_cast<zelto::Int128>(FULL)) * TERMS);
    EXPECT_EQ(many.Bytes(), product.Bytes());
}

TEST(ExactSum, ProductsOfEveryTwoTypesAreExact) {
    // Whole numbers of 32 bits, singles, whole numbers of 16 bits.
    const std::vector<double> whole = {2147483647, -2147483648.0, 3};
    const std::vector<double> single = {16777215, 0.125, -16777213};
    const std::vector<double> small = {65535, -32768, 1};
    const std::vector<std::pair<std::vector<double>, ExactWay>> bands = {
        {whole, ExactWay::Whole},
        {single, ExactWay::Single},
        {small, ExactWay::SmallWhole},
        {small, ExactWay::Double}};
    for (const auto& [a, wayOfA] : bands)
        for (const auto& [b, wayOfB] : bands) {
            ExactSum sum;
            AddProducts(sum, a, wayOfA, b, wayOfB);
            ExactSum plain;
            for (std::size_t i = 0; i < a.size(); ++i)
                plain.AddProduct(a[i], b[i]);
            EXPECT_EQ(sum.Bytes(), plain.Bytes())
                << static_cast<int>(wayOfA) << " " << static_cast<int>(wayOfB);
        }
}
