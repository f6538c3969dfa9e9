#include "zelto/algorithm/ZonalStatistics.h"

#include "tests/algorithm/RegionFixture.h"
#include "tests/support/RecordingProgress.h"

#include <cpl_string.h>
#include <ogr_geometry.h>

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <utility>

using namespace zelto::test;
using Weights = CZonalStatistics::Weights;

namespace {

using Geometry = std::unique_ptr<OGRGeometry>;

Geometry FromWkt(const std::string& wkt) {
    OGRGeometry* geometry = nullptr;
    EXPECT_EQ(OGRGeometryFactory::createFromWkt(wkt.c_str(), nullptr, &geometry), OGRERR_NONE)
        << wkt;
    return Geometry(geometry);
}

/// A value with its weight.
struct Weighted {
    double value;
    double weight;
};

/// The quantile as it is defined, one place after the other.
double PlainQuantile(std::vector<Weighted> values, double share) {
    std::sort(values.begin(), values.end(), [](const Weighted& a, const Weighted& b) {
        return a.value != b.value ? a.value < b.value : a.weight < b.weight;
    });
    const double n = static_cast<double>(values.size());
    double total = 0;
    for (const Weighted& each : values)
        total += each.weight;
    const double place = share * (n - 1) * total;
    double before = 0;
    double lastPlace = 0;
    for (std::size_t k = 0; k < values.size(); ++k) {
        const double at = static_cast<double>(k) * values[k].weight + (n - 1) * before;
        if (at >= place)
            return k == 0 ? values[0].value
                          : values[k - 1].value + (values[k].value - values[k - 1].value) *
                                                      (place - lastPlace) / (at - lastPlace);
        before += values[k].weight;
        lastPlace = at;
    }
    return values.back().value;
}

/// Whether a point lies inside, by the number of sides that a line to the right crosses.
bool IsInside(const OGRGeometry& geometry, double x, double y) {
    bool inside = false;
    const auto addRing = [&](const OGRLinearRing& ring) {
        for (int i = 0; i + 1 < ring.getNumPoints(); ++i) {
            const double x0 = ring.getX(i), y0 = ring.getY(i);
            const double x1 = ring.getX(i + 1), y1 = ring.getY(i + 1);
            if ((y0 > y) != (y1 > y) && x < x0 + (y - y0) * (x1 - x0) / (y1 - y0))
                inside = !inside;
        }
    };
    const auto addPolygon = [&](const OGRPolygon& polygon) {
        for (const OGRLinearRing* ring : polygon)
            addRing(*ring);
    };
    if (wkbFlatten(geometry.getGeometryType()) == wkbPolygon)
        addPolygon(*geometry.toPolygon());
    else
        for (const OGRGeometry* member : *geometry.toGeometryCollection())
            addPolygon(*member->toPolygon());
    return inside;
}

/// The share of a pixel that the geometry covers: the area of what they have in common.
double PlainCoverage(const OGRGeometry& geometry, const CRasterSource& source, int column,
                     int row) {
    OGRLinearRing ring;
    const int corners[][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}};
    for (const auto& corner : corners) {
        double x = 0;
        double y = 0;
        source.ImageToGround(static_cast<double>(column + corner[0]),
                             static_cast<double>(row + corner[1]), x, y);
        ring.addPoint(x, y);
    }
    OGRPolygon pixel;
    pixel.addRing(&ring);
    const Geometry common(geometry.Intersection(&pixel));
    double area = 0;
    if (common && wkbFlatten(common->getGeometryType()) == wkbPolygon)
        area = common->toPolygon()->get_Area();
    else if (common && OGR_GT_IsSubClassOf(common->getGeometryType(), wkbGeometryCollection))
        area = common->toGeometryCollection()->get_Area();
    return area / pixel.get_Area();
}

class ZonalStatistics : public RegionTest {
  protected:
    /// The values of a band in a geometry, found pixel by pixel.
    static std::vector<Weighted> Plain(const CRasterSource& source, int band,
                                       const OGRGeometry& geometry, Weights weights,
                                       const Pixels& pixels) {
        std::vector<Weighted> values;
        const CRasterBand& its = *source.GetRasterBand(band);
        for (int row = 0; row < source.GetHeight(); ++row)
            for (int column = 0; column < source.GetWidth(); ++column) {
                const double value =
                    pixels[static_cast<std::size_t>(row * source.GetWidth() + column)];
                if (its.IsNoData(value) || !std::isfinite(value))
                    continue;
                double weight = 0;
                if (weights == Weights::Coverage) {
                    weight = PlainCoverage(geometry, source, column, row);
                } else {
                    double x = 0;
                    double y = 0;
                    source.ImageToGround(column + 0.5, row + 0.5, x, y);
                    weight = IsInside(geometry, x, y) ? 1 : 0;
                }
                if (weight > 1e-12)
                    values.push_back({value, weight});
            }
        return values;
    }

    static void ExpectBand(const CZonalStatistics::Band& band, const std::vector<Weighted>& values,
                           const std::vector<double>& shares) {
        EXPECT_EQ(band.count, static_cast<__int64>(values.size()));
        double weight = 0;
        double sum = 0;
        double squares = 0;
        for (const Weighted& each : values) {
            weight += each.weight;
            sum += each.weight * each.value;
        }
        EXPECT_NEAR(band.weight, weight, 1e-9 * std::max(weight, 1.0));
        EXPECT_NEAR(band.sum, sum, 1e-9 * std::max(std::fabs(sum), 1.0));
        if (values.empty()) {
            EXPECT_TRUE(std::isnan(band.mean));
            EXPECT_TRUE(std::isnan(band.minimum));
            return;
        }
        for (const Weighted& each : values)
            squares += each.weight * (each.value - sum / weight) * (each.value - sum / weight);
        EXPECT_NEAR(band.mean, sum / weight, 1e-9 * std::fabs(sum / weight));
        EXPECT_NEAR(band.standardDeviation, std::sqrt(squares / weight), 1e-7);
        const auto [low, high] =
            std::minmax_element(values.begin(), values.end(),
                                [](const auto& a, const auto& b) { return a.value < b.value; });
        EXPECT_EQ(band.minimum, low->value);
        EXPECT_EQ(band.maximum, high->value);
        ASSERT_EQ(band.quantiles.size(), shares.size());
        for (std::size_t i = 0; i < shares.size(); ++i)
            EXPECT_NEAR(band.quantiles[i], PlainQuantile(values, shares[i]), 1e-6) << shares[i];
    }

    static std::vector<CZonalStatistics::Band> Measure(CRasterSource& source,
                                                       const std::string& wkt, Weights weights) {
        CZonalStatistics statistics(&source);
        statistics.SetWeights(weights);
        EXPECT_TRUE(statistics.AddZone(FromWkt(wkt).get())) << CGISDataSource::GetLastErrorText();
        EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        return statistics.GetZone(0);
    }
};

/// A star with a hole, which is valid, around a random place.
std::string RandomStar(std::minstd_rand& random, double size) {
    std::uniform_real_distribution<double> unit(0, 1);
    const double x = (unit(random) * 1.4 - 0.2) * size;
    const double y = (unit(random) * 1.4 - 0.2) * size;
    const int count = 3 + static_cast<int>(unit(random) * 12);
    const auto ring = [&](double low, double high) {
        std::string text;
        std::string first;
        for (int i = 0; i < count; ++i) {
            const double angle = 6.283185307179586 * i / count;
            const double radius = (low + unit(random) * (high - low)) * size;
            char point[80];
            CPLsnprintf(point, sizeof point, "%.17g %.17g", x + radius * std::cos(angle),
                        y + radius * std::sin(angle));
            text += std::string(point) + ",";
            first = i == 0 ? point : first;
        }
        return "(" + text + first + ")";
    };
    const std::string outer = ring(0.25, 0.5);
    // Within the triangle of every two neighbours of the outer ring, whatever their number.
    return "(" + outer + (count > 5 ? "," + ring(0.02, 0.1) : "") + ")";
}

} // namespace

TEST_F(ZonalStatistics, CountsThePixelsWhoseCentresLieInside) {
    auto source = Open(UnitSpec(4, 4), {MakePixels(4, 4, [](int c, int r) { return 10 * r + c; })});
    const auto bands =
        Measure(*source, "POLYGON ((0.6 0.4,2.6 0.4,2.6 2.6,0.6 2.6,0.6 0.4))", Weights::Center);
    ASSERT_EQ(bands.size(), 1U);
    // Columns 1 and 2 (centre 2.5), rows 2 and 3 (y 1.5 and 0.5), of which y = 2.5 lies inside too.
    EXPECT_EQ(bands[0].count, 6);
    EXPECT_EQ(bands[0].weight, 6);
    EXPECT_EQ(bands[0].minimum, 11);
    EXPECT_EQ(bands[0].maximum, 32);
    EXPECT_EQ(bands[0].sum, 11 + 12 + 21 + 22 + 31 + 32);
    EXPECT_DOUBLE_EQ(bands[0].mean, 21.5);
}

TEST_F(ZonalStatistics, HaveTheCentresOnTheirLeftAndUpperSides) {
    auto source = Open(UnitSpec(4, 4), {MakePixels(4, 4, [](int c, int r) { return 10 * r + c; })});
    const auto bands =
        Measure(*source, "POLYGON ((0.5 0.5,2.5 0.5,2.5 2.5,0.5 2.5,0.5 0.5))", Weights::Center);
    EXPECT_EQ(bands[0].count, 4);
    EXPECT_EQ(bands[0].minimum, 10);
    EXPECT_EQ(bands[0].maximum, 21);
}

TEST_F(ZonalStatistics, WeighsPixelsByTheShareThatIsCovered) {
    auto source = Open(UnitSpec(3, 2), {{1, 2, 3, 4, 5, 6}});
    // From x = 0.25 to 2.5, from y = 0.5 to 1.75: ¾, 1 and ½ of the columns, ¾ and ½ of the rows.
    const auto bands = Measure(*source, "POLYGON ((0.25 0.5,2.5 0.5,2.5 1.75,0.25 1.75,0.25 0.5))",
                               Weights::Coverage);
    EXPECT_EQ(bands[0].count, 6);
    EXPECT_DOUBLE_EQ(bands[0].weight, 2.25 * 1.25);
    EXPECT_DOUBLE_EQ(bands[0].sum,
                     0.75 * (0.75 * 1 + 2 + 0.5 * 3) + 0.5 * (0.75 * 4 + 5 + 0.5 * 6));
    EXPECT_EQ(bands[0].minimum, 1);
    EXPECT_EQ(bands[0].maximum, 6);
}

TEST_F(ZonalStatistics, HolesAreNoPartAndMultipolygonsAreOneZone) {
    auto source = Open(UnitSpec(10, 10), {Pixels(100, 7)});
    const std::string ring = "POLYGON ((0 0,10 0,10 10,0 10,0 0),(2 2,8 2,8 8,2 8,2 2))";
    EXPECT_EQ(Measure(*source, ring, Weights::Center)[0].count, 64);
    EXPECT_EQ(Measure(*source, ring, Weights::Coverage)[0].weight, 64);
    const std::string two = "MULTIPOLYGON (((0 0,2 0,2 2,0 2,0 0)),((5 5,8.5 5,8.5 8,5 8,5 5)))";
    EXPECT_EQ(Measure(*source, two, Weights::Coverage)[0].weight, 4 + 10.5);
    EXPECT_EQ(Measure(*source, two, Weights::Center)[0].count, 4 + 9);
}

TEST_F(ZonalStatistics, AgreeWithClippingEveryPixelAndTestingEveryCentre) {
    constexpr unsigned SEED = 20261122;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::minstd_rand random(SEED);
    const std::vector<double> shares = {0, 0.1, 0.5, 0.75, 1};
    for (const bool rotated : {false, true}) {
        RasterSpec spec = UnitSpec(24, 18, GDT_Float32);
        spec.noData = 5;
        if (rotated)
            spec.geoTransform = {2, 0.8, 0.3, 20, 0.25, -0.9};
        const auto draw = [&](int, int) { return static_cast<double>(random() % 60) / 4; };
        const std::vector<Pixels> pixels = {MakePixels(24, 18, draw), MakePixels(24, 18, draw)};
        Open(spec, pixels).reset();
        const auto source = Reopen(true);
        std::vector<Geometry> zones;
        for (int i = 0; i < 25; ++i)
            zones.push_back(FromWkt("POLYGON " + RandomStar(random, 20)));
        for (const Weights weights : {Weights::Center, Weights::Coverage}) {
            CZonalStatistics statistics(source.get());
            statistics.SetWeights(weights);
            ASSERT_TRUE(statistics.SetQuantiles(shares));
            for (const Geometry& zone : zones)
                ASSERT_TRUE(statistics.AddZone(zone.get()));
            ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
            for (std::size_t i = 0; i < zones.size(); ++i) {
                ASSERT_TRUE(zones[i]->IsValid());
                for (int b = 0; b < 2; ++b) {
                    SCOPED_TRACE("zone " + std::to_string(i) + " band " + std::to_string(b));
                    ExpectBand(
                        statistics.GetZone(static_cast<int>(i))[static_cast<std::size_t>(b)],
                        Plain(*source, b, *zones[i], weights, pixels[static_cast<std::size_t>(b)]),
                        shares);
                }
            }
        }
    }
}

TEST_F(ZonalStatistics, NeighboursShareTheirPixelsOut) {
    auto source = Open(UnitSpec(40, 40), {Pixels(1600, 1)});
    std::minstd_rand random(7);
    std::uniform_real_distribution<double> unit(0, 40);
    for (int i = 0; i < 20; ++i) {
        // A square cut into four triangles at a random point.
        const double x = unit(random);
        const double y = unit(random);
        CZonalStatistics statistics(source.get());
        CZonalStatistics covered(source.get());
        covered.SetWeights(Weights::Coverage);
        const double corners[][2] = {{0, 0}, {40, 0}, {40, 40}, {0, 40}, {0, 0}};
        for (int k = 0; k < 4; ++k) {
            OGRLinearRing ring;
            ring.addPoint(x, y);
            ring.addPoint(corners[k][0], corners[k][1]);
            ring.addPoint(corners[k + 1][0], corners[k + 1][1]);
            ring.addPoint(x, y);
            OGRPolygon triangle;
            triangle.addRing(&ring);
            ASSERT_TRUE(statistics.AddZone(&triangle));
            ASSERT_TRUE(covered.AddZone(&triangle));
        }
        ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        ASSERT_EQ(covered.Compute(nullptr), GIS_SUCCESS);
        __int64 count = 0;
        double weight = 0;
        for (int k = 0; k < 4; ++k) {
            count += statistics.GetZone(k)[0].count;
            weight += covered.GetZone(k)[0].weight;
        }
        EXPECT_EQ(count, 1600) << x << " " << y;
        EXPECT_NEAR(weight, 1600, 1e-9) << x << " " << y;
    }
}

TEST_F(ZonalStatistics, WhatLiesOffTheRasterDoesNotMatter) {
    auto source = Open(UnitSpec(5, 5), {Pixels(25, 3)});
    for (const Weights weights : {Weights::Center, Weights::Coverage}) {
        EXPECT_EQ(Measure(*source, "POLYGON ((-1e6 -1e6,1e6 -1e6,1e6 1e6,-1e6 1e6,-1e6 -1e6))",
                          weights)[0]
                      .weight,
                  25);
        EXPECT_EQ(Measure(*source, "POLYGON ((-9 1,2 1,2 3,-9 3,-9 1))", weights)[0].weight, 4);
        EXPECT_EQ(Measure(*source, "POLYGON ((3 1,99 1,99 3,3 3,3 1))", weights)[0].weight, 4);
        EXPECT_EQ(Measure(*source, "POLYGON ((2 -9,4 -9,4 99,2 99,2 -9))", weights)[0].weight, 10);
        EXPECT_EQ(Measure(*source, "POLYGON ((20 1,30 1,30 3,20 1))", weights)[0].count, 0);
        EXPECT_EQ(Measure(*source, "POLYGON ((1 20,3 20,3 30,1 20))", weights)[0].count, 0);
        EXPECT_EQ(Measure(*source, "POLYGON ((-9 1,-4 1,-4 3,-9 1))", weights)[0].count, 0);
    }
}

TEST_F(ZonalStatistics, PolygonsThatCrossThemselvesAreRepaired) {
    auto source = Open(UnitSpec(4, 4), {Pixels(16, 1)});
    // A bow tie of two triangles of two square units each, and a square twice over.
    EXPECT_NEAR(Measure(*source, "POLYGON ((0 0,4 4,4 0,0 4,0 0))", Weights::Coverage)[0].weight, 8,
                1e-9);
    EXPECT_NEAR(Measure(*source, "MULTIPOLYGON (((0 0,3 0,3 3,0 3,0 0)),((1 1,4 1,4 4,1 4,1 1)))",
                        Weights::Coverage)[0]
                    .weight,
                9 + 9 - 4, 1e-9);
}

TEST_F(ZonalStatistics, EmptyZonesHaveNoValuesAndOtherGeometryIsRefused) {
    auto source = Open(UnitSpec(4, 4), {Pixels(16, 1)});
    CZonalStatistics statistics(source.get());
    EXPECT_TRUE(statistics.AddZone(nullptr));
    EXPECT_TRUE(statistics.AddZone(FromWkt("POLYGON EMPTY").get()));
    EXPECT_FALSE(statistics.AddZone(FromWkt("POINT (1 1)").get()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "a zone is no polygon");
    EXPECT_FALSE(statistics.AddZone(FromWkt("LINESTRING (0 0,1 1)").get()));
    EXPECT_EQ(statistics.GetZoneCount(), 2);
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetZone(1)[0].count, 0);
    EXPECT_EQ(statistics.GetZone(1)[0].sum, 0);
    EXPECT_TRUE(std::isnan(statistics.GetZone(0)[0].mean));
    EXPECT_TRUE(statistics.GetZone(2).empty());
    EXPECT_FALSE(statistics.SetQuantiles({0.5, 1.5}));
    CZonalStatistics nothing(nullptr);
    EXPECT_FALSE(nothing.AddZone(nullptr));
    EXPECT_EQ(nothing.Compute(nullptr), GIS_FAILED);
}

TEST_F(ZonalStatistics, RowsBetweenZonesAreNotReadAndTheWorkCanBeCancelled) {
    // The file ends after a third of its rows.
    RasterSpec spec = UnitSpec(300, 300);
    Open(spec, {MakePixels(300, 300, [](int c, int) { return 1 + c % 5; })}).reset();
    std::filesystem::resize_file(m_path, 30000);
    auto source = Reopen();
    CZonalStatistics statistics(source.get());
    ASSERT_TRUE(statistics.AddZone(FromWkt("POLYGON ((0 280,300 280,300 290,0 290,0 280))").get()));
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetZone(0)[0].count, 3000);
    RecordingProgress progress(0);
    EXPECT_EQ(statistics.Compute(&progress), GIS_FAILED);
    EXPECT_TRUE(statistics.GetZone(0).empty());
    ASSERT_TRUE(statistics.AddZone(FromWkt("POLYGON ((0 10,300 10,300 20,0 20,0 10))").get()));
    EXPECT_EQ(statistics.Compute(nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText().find(m_path + ": "), 0U);
}

TEST_F(ZonalStatistics, ManyZonesAreFarFromTheOrigin) {
    RasterSpec spec = UnitSpec(100, 100, GDT_UInt16);
    spec.geoTransform = NorthUp(499980.0, 4600020.0, 10);
    auto source = Open(spec, {MakePixels(100, 100, [](int c, int r) { return c + 100 * r; })});
    CZonalStatistics statistics(source.get());
    statistics.SetWeights(Weights::Coverage);
    for (int i = 0; i < 1000; ++i) {
        const double x = 499980.0 + i % 40 * 25 + 0.1;
        const double y = 4600020.0 - i / 40 * 39 - 0.7;
        OGRLinearRing ring;
        for (const auto& [dx, dy] :
             std::vector<std::pair<double, double>>{{0, 0}, {17.3, -3.1}, {11.9, -21.7}, {0, 0}})
            ring.addPoint(x + dx, y + dy);
        OGRPolygon polygon;
        polygon.addRing(&ring);
        ASSERT_TRUE(statistics.AddZone(&polygon));
    }
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    const double area = (17.3 * 21.7 - 11.9 * 3.1) / 2 / 100;
    for (int i = 0; i < 1000; ++i)
        EXPECT_NEAR(statistics.GetZone(i)[0].weight, area, 1e-9) << i;
}

TEST_F(ZonalStatistics, MeasuresTheBandsThatAreWanted) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}, {5, 7}});
    CZonalStatistics statistics(source.get());
    statistics.SetBands({1, 2, -1, 0});
    ASSERT_TRUE(statistics.AddZone(FromWkt("POLYGON ((0 0,1 0,1 1,0 1,0 0))").get()));
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    const auto& bands = statistics.GetZone(0);
    ASSERT_EQ(bands.size(), 2U);
    EXPECT_EQ(bands[0].index, 1);
    EXPECT_EQ(bands[0].sum, 5);
    EXPECT_EQ(bands[1].index, 0);
    EXPECT_EQ(bands[1].sum, 1);
    EXPECT_TRUE(statistics.GetZone(-1).empty());
    CZonalStatistics none(nullptr);
    none.SetBands({0});
    EXPECT_EQ(none.Compute(nullptr), GIS_FAILED);
}

TEST_F(ZonalStatistics, QuantilesOfSharesThatAreNoneChangeNothing) {
    auto source = Open(UnitSpec(3, 1), {{1, 3, 8}});
    CZonalStatistics statistics(source.get());
    ASSERT_TRUE(statistics.SetQuantiles({0.5}));
    for (const double share : {-0.1, 1.1, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_FALSE(statistics.SetQuantiles({0.25, share})) << share;
        EXPECT_EQ(CGISDataSource::GetLastErrorText(), "the share of a quantile is from 0 to 1");
    }
    ASSERT_TRUE(statistics.AddZone(FromWkt("POLYGON ((0 0,3 0,3 1,0 1,0 0))").get()));
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetZone(0)[0].quantiles, std::vector<double>{3});
}

TEST_F(ZonalStatistics, CollectionsOfPolygonsAreUnitedAndOthersRefused) {
    auto source = Open(UnitSpec(4, 4), {Pixels(16, 1)});
    const std::string squares = "POLYGON ((0 0,3 0,3 3,0 3,0 0)),POLYGON ((1 1,4 1,4 4,1 4,1 1))";
    EXPECT_NEAR(
        Measure(*source, "GEOMETRYCOLLECTION (" + squares + ")", Weights::Coverage)[0].weight,
        9 + 9 - 4, 1e-9);
    CZonalStatistics statistics(source.get());
    const auto mixed = FromWkt("GEOMETRYCOLLECTION (" + squares + ",POINT (1 1))");
    EXPECT_FALSE(statistics.AddZone(mixed.get()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "a zone is no polygon");
    EXPECT_EQ(statistics.GetZoneCount(), 0);
}

TEST_F(ZonalStatistics, CurvesAreMeasuredAsLines) {
    auto source = Open(UnitSpec(10, 10), {Pixels(100, 1)});
    // A circle of radius 4, within the tenth of a percent that its chords leave out.
    const auto bands =
        Measure(*source, "CURVEPOLYGON (CIRCULARSTRING (1 5,5 9,9 5,5 1,1 5))", Weights::Coverage);
    EXPECT_NEAR(bands[0].weight, 16 * 3.141592653589793, 0.05);
}

TEST_F(ZonalStatistics, PolygonsWithoutAPlaceAreRefused) {
    auto source = Open(UnitSpec(4, 4), {Pixels(16, 1)});
    OGRLinearRing ring;
    ring.addPoint(0, 0);
    ring.addPoint(std::numeric_limits<double>::quiet_NaN(), 0);
    ring.addPoint(3, 3);
    ring.addPoint(0, 0);
    OGRPolygon polygon;
    polygon.addRing(&ring);
    CZonalStatistics statistics(source.get());
    EXPECT_FALSE(statistics.AddZone(&polygon));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "a shape has coordinates that are not finite");
    EXPECT_EQ(statistics.GetZoneCount(), 0);
}

TEST_F(ZonalStatistics, RastersWithoutAPlaceOnTheGroundAreRefused) {
    // Columns and rows that run the same way, and pixels whose area is beyond all numbers.
    for (const std::string terms : {"0,1,1,0,1,1", "0,1e200,0,0,0,-1e200"}) {
        m_path = m_folder.File("flat.vrt");
        WriteFile(m_path, "<VRTDataset rasterXSize='2' rasterYSize='2'><GeoTransform>" + terms +
                              "</GeoTransform><VRTRasterBand dataType='Byte' band='1'/>"
                              "</VRTDataset>");
        const auto source = Reopen(true);
        CZonalStatistics statistics(source.get());
        EXPECT_FALSE(statistics.AddZone(FromWkt("POLYGON ((0 0,1 0,1 1,0 0))").get())) << terms;
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  m_path + ": its pixels have no place on the ground");
    }
}

TEST_F(ZonalStatistics, ShearedGridsAreMeasuredOnTheirOwn) {
    // x = c + r/2, y = 4 − r; and x = c, y = 4 − r + c/2.
    for (const std::array<double, 6>& terms :
         {std::array<double, 6>{0, 1, 0.5, 4, 0, -1}, std::array<double, 6>{0, 1, 0, 4, 0.5, -1}}) {
        RasterSpec spec = UnitSpec(4, 4);
        spec.geoTransform = terms;
        Open(spec, {MakePixels(4, 4, [](int c, int r) { return 10 * r + c; })}).reset();
        const auto source = Reopen(true);
        // Around the centre of the pixel of column 2, row 1, a hundredth of its area.
        const double x = terms[0] + 2.5 * terms[1] + 1.5 * terms[2];
        const double y = terms[3] + 2.5 * terms[4] + 1.5 * terms[5];
        OGRLinearRing ring;
        for (const auto& [dx, dy] : std::vector<std::pair<double, double>>{
                 {-0.05, -0.05}, {0.05, -0.05}, {0.05, 0.05}, {-0.05, 0.05}, {-0.05, -0.05}})
            ring.addPoint(x + dx, y + dy);
        OGRPolygon square;
        square.addRing(&ring);
        CZonalStatistics statistics(source.get());
        statistics.SetWeights(Weights::Coverage);
        ASSERT_TRUE(statistics.AddZone(&square));
        ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        EXPECT_EQ(statistics.GetZone(0)[0].minimum, 12);
        EXPECT_EQ(statistics.GetZone(0)[0].maximum, 12);
        EXPECT_NEAR(statistics.GetZone(0)[0].weight, 0.01, 1e-12);
    }
}

TEST_F(ZonalStatistics, ThatBeginFurtherDownWaitForTheirRows) {
    // A strip of 400 columns has 163 rows.
    auto source = Open(UnitSpec(400, 400, GDT_UInt16),
                       {MakePixels(400, 400, [](int, int r) { return static_cast<double>(r); })});
    CZonalStatistics statistics(source.get());
    ASSERT_TRUE(statistics.AddZone(FromWkt("POLYGON ((0 90,400 90,400 100,0 100,0 90))").get()));
    ASSERT_TRUE(statistics.AddZone(FromWkt("POLYGON ((0 0,400 0,400 400,0 400,0 0))").get()));
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetZone(0)[0].count, 4000);
    EXPECT_EQ(statistics.GetZone(0)[0].minimum, 300);
    EXPECT_EQ(statistics.GetZone(0)[0].mean, 304.5);
    EXPECT_EQ(statistics.GetZone(1)[0].count, 160000);
    EXPECT_EQ(statistics.GetZone(1)[0].mean, 199.5);
}

TEST_F(ZonalStatistics, TellsItsProgress) {
    auto source = Open(UnitSpec(10, 10), {Pixels(100, 1)});
    CZonalStatistics statistics(source.get());
    ASSERT_TRUE(statistics.AddZone(FromWkt("POLYGON ((0 0,9 0,9 9,0 0))").get()));
    RecordingProgress progress;
    EXPECT_EQ(statistics.Compute(&progress), GIS_SUCCESS);
    ASSERT_EQ(progress.m_stages.size(), 1U);
    EXPECT_EQ(progress.m_stages[0].second, 100);
    EXPECT_EQ(progress.m_steps.back().first, 100);
}
