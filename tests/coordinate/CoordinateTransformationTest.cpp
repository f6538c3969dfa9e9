#include "zelto/coordinate/CoordinateTransformation.h"

#include "zelto/datasource/GISDataSource.h"

#include "tests/coordinate/ReferenceDialects.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using zelto::test::InDialect;

namespace {

struct Destroy {
    void operator()(CCoordinateTransformation* t) const {
        CCoordinateTransformation::DestroyCoordinateTransformation(t);
    }
};
using Transformation = std::unique_ptr<CCoordinateTransformation, Destroy>;

Transformation Connect(const char* src, const char* dst, double* parameters = nullptr) {
    return Transformation(
        CCoordinateTransformation::CreateCoordinateTransformation(src, dst, parameters));
}

Transformation ConnectBy(const char* src, const char* dst, double* srcToWgs84, double* dstToWgs84) {
    return Transformation(CCoordinateTransformation::CreateCoordinateTransformation(
        src, dst, srcToWgs84, dstToWgs84));
}

struct Position {
    double x;
    double y;
    double z;
};

Position Transformed(const Transformation& transformation, Position p) {
    EXPECT_NE(transformation, nullptr);
    EXPECT_TRUE(transformation && transformation->Transform(1, &p.x, &p.y, &p.z, nullptr));
    return p;
}

constexpr double RADIANS = 3.14159265358979323846 / 180.0;
constexpr double SECOND = 1.0 / 3600.0;

struct Spheroid {
    double a;
    double inverseFlattening;
    double E2() const { return (2 - 1 / inverseFlattening) / inverseFlattening; }
};
constexpr Spheroid KRASSOWSKY = {6378245.0, 298.3};
constexpr Spheroid WGS84 = {6378137.0, 298.257223563};

Position ToGeocentric(const Spheroid& s, Position p) {
    const double phi = p.y * RADIANS;
    const double lambda = p.x * RADIANS;
    const double n = s.a / std::sqrt(1 - s.E2() * std::sin(phi) * std::sin(phi));
    return {(n + p.z) * std::cos(phi) * std::cos(lambda),
            (n + p.z) * std::cos(phi) * std::sin(lambda), (n * (1 - s.E2()) + p.z) * std::sin(phi)};
}

Position ToGeographic(const Spheroid& s, Position p) {
    const double r = std::hypot(p.x, p.y);
    double phi = std::atan2(p.z, r * (1 - s.E2()));
    double n = 0.0;
    for (int i = 0; i < 20; ++i) {
        n = s.a / std::sqrt(1 - s.E2() * std::sin(phi) * std::sin(phi));
        phi = std::atan2(p.z + s.E2() * n * std::sin(phi), r);
    }
    return {std::atan2(p.y, p.x) / RADIANS, phi / RADIANS, r / std::cos(phi) - n};
}

/// The position-vector transformation, seven parameters as published.
Position Helmert(const std::vector<double>& q, Position p) {
    const double rx = q[3] * SECOND * RADIANS;
    const double ry = q[4] * SECOND * RADIANS;
    const double rz = q[5] * SECOND * RADIANS;
    const double m = 1 + q[6] * 1e-6;
    return {q[0] + m * (p.x - rz * p.y + ry * p.z), q[1] + m * (rz * p.x + p.y - rx * p.z),
            q[2] + m * (-ry * p.x + rx * p.y + p.z)};
}

} // namespace

TEST(CoordinateTransformation, PutsEastAndLongitudeFirstInEveryDialect) {
    for (const char* dialect : zelto::test::DIALECTS) {
        const std::string geographic = InDialect("EPSG:4326", dialect);
        const std::string projected = InDialect("EPSG:32650", dialect);
        // Central meridian 117, equator: the false easting, and 0.
        const auto p = Transformed(Connect(geographic.c_str(), projected.c_str()), {117, 0, 0});
        EXPECT_NEAR(p.x, 500000.0, 1e-6) << dialect;
        EXPECT_NEAR(p.y, 0.0, 1e-6) << dialect;
    }
    // A system whose authority lists north first.
    const auto p = Transformed(Connect("EPSG:4490", "EPSG:4548"), {117, 0, 0});
    EXPECT_NEAR(p.x, 500000.0, 1e-6);
    EXPECT_NEAR(p.y, 0.0, 1e-6);
}

TEST(CoordinateTransformation, OfUnreadableOrUnrelatedSystemsIsNull) {
    for (const char* bad : {static_cast<const char*>(nullptr), "", "junk", "GEOGCS["}) {
        EXPECT_EQ(Connect(bad, "EPSG:4326"), nullptr);
        EXPECT_EQ(Connect("EPSG:4326", bad), nullptr);
        EXPECT_EQ(ConnectBy(bad, "EPSG:4326", nullptr, nullptr), nullptr);
        EXPECT_EQ(ConnectBy("EPSG:4326", bad, nullptr, nullptr), nullptr);
    }
    const char* local = "LOCAL_CS[\"here\",UNIT[\"metre\",1]]";
    EXPECT_EQ(Connect(local, "EPSG:4326"), nullptr);
    EXPECT_EQ(ConnectBy("EPSG:5773", "EPSG:4326", nullptr, nullptr), nullptr);
    CGISDataSource::ClearLastErrorText();
    EXPECT_EQ(ConnectBy("EPSG:4326", "EPSG:5773", nullptr, nullptr), nullptr);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "EPSG:5773: cannot be shifted to WGS 84");
    EXPECT_EQ(ConnectBy(local, "EPSG:4326", nullptr, nullptr), nullptr);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              std::string(local) + ": cannot be shifted to WGS 84");
}

TEST(CoordinateTransformation, BetweenPlacesAndHeightsAloneIsNull) {
    for (const auto& [from, to] :
         {std::pair("EPSG:4326", "EPSG:5773"), std::pair("EPSG:5773", "EPSG:32650")}) {
        CGISDataSource::ClearLastErrorText();
        EXPECT_EQ(CCoordinateTransformation::CreateCoordinateTransformation(from, to, nullptr),
                  nullptr);
        EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
    }
    CCoordinateTransformation* const compound =
        CCoordinateTransformation::CreateCoordinateTransformation("EPSG:4326", "EPSG:32650+5773",
                                                                  nullptr);
    EXPECT_NE(compound, nullptr);
    CCoordinateTransformation::DestroyCoordinateTransformation(compound);
}

TEST(CoordinateTransformation, StoresSevenParametersWithRotationsInRadians) {
    double parameters[] = {1, 2, 3, 10, -20, 30, 7};
    const auto transformation = Connect("EPSG:4214", "EPSG:4326", parameters);
    ASSERT_NE(transformation, nullptr);
    const double* stored = transformation->GetSevenParameters();
    EXPECT_EQ(stored[0], 1);
    EXPECT_EQ(stored[1], 2);
    EXPECT_EQ(stored[2], 3);
    EXPECT_EQ(stored[3], 10 * 4.84813681109536e-6);
    EXPECT_EQ(stored[4], -20 * 4.84813681109536e-6);
    EXPECT_EQ(stored[5], 30 * 4.84813681109536e-6);
    EXPECT_EQ(stored[6], 7);
}

TEST(CoordinateTransformation, StoredParametersAreNotApplied) {
    double parameters[] = {100, 200, 300, 10, 20, 30, 7};
    const auto with = Transformed(Connect("EPSG:4214", "EPSG:32650", parameters), {117, 40, 0});
    const auto without = Transformed(Connect("EPSG:4214", "EPSG:32650"), {117, 40, 0});
    EXPECT_EQ(with.x, without.x);
    EXPECT_EQ(with.y, without.y);
}

TEST(CoordinateTransformation, ParametersNotGivenAreStoredAsZeros) {
    double parameters[] = {1, 2, 3, 4, 5, 6, 7};
    for (const auto& transformation :
         {Connect("EPSG:4214", "EPSG:4326").release(),
          ConnectBy("EPSG:4214", "EPSG:4326", parameters, parameters).release()}) {
        const Transformation owner(transformation);
        ASSERT_NE(owner, nullptr);
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(owner->GetSevenParameters()[i], 0.0);
    }
}

TEST(CoordinateTransformation, PublishedExampleOfThePositionVectorRotation) {
    // Guidance note 7-2 of the EPSG registry, example of method 9606, WGS 72 to WGS 84:
    // 55°00'00" N 4°00'00" E becomes 55°00'00.090" N 4°00'00.554" E.
    double wgs72[] = {0, 0, 4.5, 0, 0, 0.554, 0.219};
    const auto p = Transformed(ConnectBy("EPSG:4322", "EPSG:4326", wgs72, nullptr), {4, 55, 0});
    EXPECT_NEAR(p.x, 4 + 0.554 * SECOND, 0.0005 * SECOND);
    EXPECT_NEAR(p.y, 55 + 0.090 * SECOND, 0.0005 * SECOND);
}

TEST(CoordinateTransformation, GivenParametersAreHonouredWhateverCodesTheSystemsCarry) {
    std::vector<double> q = {22, -118, 30.5, 0.1, -0.2, 0.3, 1.5};
    for (const char* dialect : zelto::test::DIALECTS) {
        const std::string beijing = InDialect("EPSG:4214", dialect);
        const auto forward = ConnectBy(beijing.c_str(), "EPSG:4326", q.data(), nullptr);
        for (const Position& p : {Position{116, 40, 0}, Position{-60, -30, 1000}}) {
            const auto expected = ToGeographic(WGS84, Helmert(q, ToGeocentric(KRASSOWSKY, p)));
            const auto actual = Transformed(forward, p);
            EXPECT_NEAR(actual.x, expected.x, 1e-10) << dialect;
            EXPECT_NEAR(actual.y, expected.y, 1e-10) << dialect;
        }
    }
}

TEST(CoordinateTransformation, ParametersOfTheTargetLeadBack) {
    std::vector<double> q = {22, -118, 30.5, 0.1, -0.2, 0.3, 1.5};
    const Position p = {116, 40, 0};
    const auto shifted = ToGeographic(WGS84, Helmert(q, ToGeocentric(KRASSOWSKY, p)));
    const auto back = ConnectBy("EPSG:4326", "EPSG:4214", nullptr, q.data());
    const auto actual = Transformed(back, shifted);
    // The reverse rotates with the signs changed, which is the inverse but for their squares.
    EXPECT_NEAR(actual.x, p.x, 1e-9);
    EXPECT_NEAR(actual.y, p.y, 1e-9);
}

TEST(CoordinateTransformation, WithoutParametersOnlyTheSpheroidChanges) {
    const auto expected = ToGeographic(WGS84, ToGeocentric(KRASSOWSKY, {116, 40, 0}));
    const auto actual =
        Transformed(ConnectBy("EPSG:4214", "EPSG:4326", nullptr, nullptr), {116, 40, 0});
    EXPECT_NEAR(actual.x, expected.x, 1e-10);
    EXPECT_NEAR(actual.y, expected.y, 1e-10);
    EXPECT_GT(std::abs(actual.y - 40), 1e-6);
}

TEST(CoordinateTransformation, IsTrueWhenAtLeastOnePointHasAnAnswer) {
    const auto transformation = Connect("EPSG:4326", "EPSG:3395");
    ASSERT_NE(transformation, nullptr);
    double x[] = {10, 10, 10};
    double y[] = {0, 400, 0};
    int success[] = {7, 7, 7};
    EXPECT_TRUE(transformation->Transform(3, x, y, nullptr, success));
    EXPECT_EQ(success[0], 1);
    EXPECT_EQ(success[1], 0);
    EXPECT_EQ(success[2], 1);
    EXPECT_TRUE(std::isinf(x[1]));
    EXPECT_TRUE(std::isinf(y[1]));
    EXPECT_NEAR(x[0], 6378137.0 * 10 * RADIANS, 1e-6);
    double badX[] = {10, 10};
    double badY[] = {400, 500};
    EXPECT_FALSE(transformation->Transform(2, badX, badY, nullptr, success));
    EXPECT_EQ(success[0], 0);
}

TEST(CoordinateTransformation, WithoutFlagsAnswersTheSame) {
    const auto transformation = Connect("EPSG:4326", "EPSG:3395");
    double x[] = {10, 10};
    double y[] = {400, 0};
    EXPECT_TRUE(transformation->Transform(2, x, y, nullptr, nullptr));
    double badX = 10;
    double badY = 400;
    EXPECT_FALSE(transformation->Transform(1, &badX, &badY, nullptr, nullptr));
}

TEST(CoordinateTransformation, NoPointsSucceedAndMissingArraysFail) {
    const auto transformation = Connect("EPSG:4326", "EPSG:3395");
    double value = 1.0;
    EXPECT_TRUE(transformation->Transform(0, nullptr, nullptr, nullptr, nullptr));
    EXPECT_FALSE(transformation->Transform(-1, &value, &value, nullptr, nullptr));
    EXPECT_FALSE(transformation->Transform(1, nullptr, &value, nullptr, nullptr));
    EXPECT_FALSE(transformation->Transform(1, &value, nullptr, nullptr, nullptr));
    EXPECT_EQ(value, 1.0);
}

TEST(CoordinateTransformation, DestroyingNothingIsAllowed) {
    CCoordinateTransformation::DestroyCoordinateTransformation(nullptr);
}
