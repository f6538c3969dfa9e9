#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/datasource/GISDataSource.h"

#include "tests/coordinate/GaussKruger.h"
#include "tests/coordinate/ReferenceDialects.h"
#include "tests/support/TestData.h"

#include <cpl_error.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>
#include <ogr_srs_api.h>
#include <ogrsf_frmts.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// What a Gauss-Kruger system is built on: the geographic system of the text given, whole.

using zelto::test::BuildZone;
using zelto::test::InDialect;
using zelto::test::ReadReference;

namespace {

using Shift = std::array<double, 7>;

constexpr Shift THREE = {15.8, -154.4, -82.3, 0, 0, 0, 0};
constexpr Shift SEVEN = {22, -118, 30.5, 0.1, -0.2, 0.3, 1.5};

std::string Export(const OGRSpatialReference& reference, const char* dialect) {
    const std::string option = std::string("FORMAT=") + dialect;
    const char* const options[] = {option.c_str(), nullptr};
    char* text = nullptr;
    reference.exportToWkt(&text, options);
    const std::string result = text == nullptr ? "" : text;
    CPLFree(text);
    return result;
}

/// Everything a geographic system is made of, but its names in one dialect or another.
struct Geographic {
    std::string datum;
    double semiMajor;
    double inverseFlattening;
    double meridian;
    double angularUnit;
    Shift shift;

    explicit Geographic(const OGRSpatialReference& reference)
        : datum(Text(reference.GetAttrValue("DATUM"))),
          semiMajor(reference.GetSemiMajor()),
          inverseFlattening(reference.GetInvFlattening()),
          meridian(reference.GetPrimeMeridian()),
          angularUnit(reference.GetAngularUnits()),
          shift{} {
        reference.GetTOWGS84(shift.data(), 7);
    }

  private:
    static std::string Text(const char* text) { return text == nullptr ? "" : text; }
};

/// Shifts pass through texts of parts in a million, which round their last digits.
void ExpectSame(const Shift& actual, const Shift& expected, const std::string& about) {
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-9) << about;
}

void ExpectSame(const Geographic& actual, const Geographic& expected, const std::string& about) {
    EXPECT_EQ(actual.datum, expected.datum) << about;
    EXPECT_EQ(actual.semiMajor, expected.semiMajor) << about;
    EXPECT_NEAR(actual.inverseFlattening, expected.inverseFlattening, 1e-9) << about;
    EXPECT_NEAR(actual.meridian, expected.meridian, 1e-12) << about;
    EXPECT_NEAR(actual.angularUnit, expected.angularUnit, 1e-15) << about;
    ExpectSame(actual.shift, expected.shift, about);
}

/// Whether the text is that of a Gauss-Kruger system in metres around the meridian.
void ExpectZone(const std::string& wkt, double meridian, const std::string& about) {
    ASSERT_NE(wkt, "") << about;
    EXPECT_NE(wkt.find(R"(PROJECTION["Gauss_Kruger"],PARAMETER["latitude_of_origin",0],)"),
              std::string::npos)
        << about << '\n'
        << wkt;
    EXPECT_NE(wkt.find(R"(UNIT["Meter",1])"), std::string::npos) << about << '\n' << wkt;
    const OGRSpatialReference built = ReadReference(wkt);
    EXPECT_NEAR(built.GetNormProjParm("central_meridian"), meridian, 1e-9) << about;
    EXPECT_EQ(built.GetNormProjParm("scale_factor"), 1.0) << about;
    EXPECT_EQ(built.GetNormProjParm("false_easting"), 500000.0) << about;
    EXPECT_EQ(built.GetNormProjParm("false_northing"), 0.0) << about;
}

/// Builds zone 20 of 6 degrees on a text whose horizontal part is `horizontal` and looks at what
/// became of it.
void ExpectBaseIsKept(const std::string& text, const OGRSpatialReference& horizontal) {
    const std::string wkt = BuildZone(text, 20, 6);
    ExpectZone(wkt, 117.0, text);
    if (!wkt.empty())
        ExpectSame(Geographic(ReadReference(wkt)), Geographic(horizontal), text + "\n" + wkt);
}

void ExpectBaseIsKept(const std::string& text) {
    ExpectBaseIsKept(text, ReadReference(text));
}

/// Geographic systems and projected ones, of the national systems and others.
const std::vector<std::string> CODES = {"EPSG:4214", "EPSG:4610", "EPSG:4490",  "EPSG:4326",
                                        "EPSG:4267", "EPSG:4807", "EPSG:2432",  "EPSG:2360",
                                        "EPSG:4547", "EPSG:2278", "EPSG:32650", "EPSG:31466"};

std::string WithShift(const std::string& code, const Shift& s, const char* dialect) {
    OGRSpatialReference reference = ReadReference(code);
    reference.SetTOWGS84(s[0], s[1], s[2], s[3], s[4], s[5], s[6]);
    return Export(reference, dialect);
}

/// Number and width of the zone that a system of the registry describes, if it is one that
/// carries no zone prefix in its eastings.
struct NamedZone {
    int number;
    int width;
};

std::optional<NamedZone> ZoneOf(const OGRSpatialReference& reference, const std::string& name) {
    const double meridian = reference.GetNormProjParm("central_meridian", -1.0);
    const bool three = name.find("3-degree") != std::string::npos;
    const double zone = three ? meridian / 3 : (meridian + 3) / 6;
    if (zone < 1 || zone != static_cast<int>(zone))
        return std::nullopt;
    return NamedZone{static_cast<int>(zone), three ? 3 : 6};
}

/// Calls f(code, name) for every Gauss-Kruger system of the registry.
template <typename Function>
void ForRegistryZones(Function f) {
    int count = 0;
    OSRCRSInfo** list = OSRGetCRSInfoListFromDatabase("EPSG", nullptr, &count);
    ASSERT_NE(list, nullptr);
    const std::unique_ptr<OSRCRSInfo*, void (*)(OSRCRSInfo**)> owner(list, OSRDestroyCRSInfoList);
    for (int i = 0; i < count; ++i) {
        const std::string name = list[i]->pszName;
        const bool gaussKruger =
            name.find("Gauss-Kruger") != std::string::npos || name.find("GK") != std::string::npos;
        if (list[i]->eType == OSR_CRS_TYPE_PROJECTED && gaussKruger && !list[i]->bDeprecated)
            f("EPSG:" + std::string(list[i]->pszCode), name);
    }
}

} // namespace

TEST(GaussKrugerBase, EveryZoneOfTheRegistryKeepsItsGeographicSystem) {
    int zones = 0;
    int same = 0;
    ForRegistryZones([&](const std::string& code, const std::string& name) {
        const OGRSpatialReference system = ReadReference(code);
        const auto zone = ZoneOf(system, name);
        if (!zone)
            return;
        ++zones;
        const std::string wkt = BuildZone(code, zone->number, zone->width);
        ExpectZone(wkt, system.GetNormProjParm("central_meridian"), name);
        ExpectSame(Geographic(ReadReference(wkt)), Geographic(system), name);
        // A system without a zone prefix is the very one that is built.
        if (system.GetNormProjParm("false_easting") == 500000.0 &&
            system.GetNormProjParm("scale_factor") == 1.0 && system.GetLinearUnits() == 1.0) {
            ++same;
            EXPECT_TRUE(CCoordinateAlgorithm::IsSameCoordinate(wkt.c_str(), code.c_str())) << name;
        }
    });
    // Beijing 1954, Xian 1980 and CGCS2000 alone have 64 zones each, half of them without prefix.
    EXPECT_GT(zones, 3 * 64);
    EXPECT_GT(same, 3 * 32);
}

TEST(GaussKrugerBase, EveryDialectKeepsTheGeographicSystem) {
    for (const std::string& code : CODES) {
        ExpectBaseIsKept(code);
        for (const char* dialect : zelto::test::DIALECTS)
            ExpectBaseIsKept(InDialect(code, dialect));
    }
}

TEST(GaussKrugerBase, ShiftParametersAreKept) {
    for (const std::string& code : CODES) {
        for (const Shift& shift : {THREE, SEVEN}) {
            for (const char* dialect : {"WKT1_GDAL", "WKT2_2015", "WKT2_2019"}) {
                const std::string text = WithShift(code, shift, dialect);
                ExpectBaseIsKept(text);
                ExpectSame(Geographic(ReadReference(BuildZone(text, 20, 6))).shift, shift, text);
            }
        }
    }
}

TEST(GaussKrugerBase, ShiftOfAPathOfParametersIsKept) {
    for (const char* text :
         {"+proj=longlat +ellps=krass +towgs84=15.8,-154.4,-82.3,0,0,0,0 +no_defs",
          "+proj=tmerc +lon_0=117 +x_0=500000 +ellps=krass +towgs84=22,-118,30.5,0.1,-0.2,0.3,1.5",
          "+proj=longlat +a=6378140 +rf=298.257 +towgs84=1,2,3 +no_defs"})
        ExpectBaseIsKept(text);
}

TEST(GaussKrugerBase, GridsOfTheDatumAreKept) {
    const std::string wkt = BuildZone("+proj=longlat +datum=NAD27 +nadgrids=conus +no_defs", 20, 6);
    EXPECT_NE(wkt.find("North_American_Datum_1927"), std::string::npos) << wkt;
    EXPECT_NE(wkt.find(R"(EXTENSION["PROJ4_GRIDS","conus"])"), std::string::npos) << wkt;
}

TEST(GaussKrugerBase, HeightsOfACompoundSystemAreLeftOut) {
    ExpectBaseIsKept("EPSG:2432+5737", ReadReference("EPSG:2432"));
    ExpectBaseIsKept("EPSG:4214+5737", ReadReference("EPSG:4214"));
    ExpectBaseIsKept("EPSG:4490+5737", ReadReference("EPSG:4490"));
    for (const char* dialect : {"WKT1_GDAL", "WKT2_2015", "WKT2_2019"})
        ExpectBaseIsKept(InDialect("EPSG:2432+5737", dialect), ReadReference("EPSG:2432"));
    const std::string shifted = WithShift("EPSG:2432", SEVEN, "WKT1_GDAL");
    ExpectBaseIsKept(R"(COMPD_CS["with heights",)" + shifted + "," +
                         InDialect("EPSG:5737", "WKT1_GDAL") + "]",
                     ReadReference(shifted));
}

TEST(GaussKrugerBase, SystemsOfThreeDimensionsLendTheirHorizontalPart) {
    ExpectBaseIsKept("EPSG:4979", ReadReference("EPSG:4326"));
    ExpectBaseIsKept("EPSG:4480", ReadReference("EPSG:4490"));
    EXPECT_EQ(BuildZone("EPSG:4979", 20, 6).find("4979"), std::string::npos);
}

TEST(GaussKrugerBase, MeridianIsInDegreesWhateverTheUnitOfTheBase) {
    // 117 degrees are 130 gradians.
    EXPECT_NE(BuildZone("EPSG:4807", 20, 6).find(R"(PARAMETER["central_meridian",130])"),
              std::string::npos);
}

TEST(GaussKrugerBase, SystemsWithoutAGeographicOneAreRefused) {
    for (const char* text :
         {"EPSG:4978", "EPSG:5773", R"(LOCAL_CS["site",UNIT["metre",1]])",
          R"(ENGCRS["site",EDATUM["site"],CS[Cartesian,2],AXIS["x",east],AXIS["y",north],)"
          R"(LENGTHUNIT["metre",1]])",
          zelto::test::VERTICAL_ESRI, zelto::test::ELLIPSOIDAL_ESRI}) {
        CGISDataSource::ClearLastErrorText();
        EXPECT_EQ(BuildZone(text, 20, 6), "") << text;
        EXPECT_NE(CGISDataSource::GetLastErrorText().find("no geographic system"),
                  std::string::npos)
            << CGISDataSource::GetLastErrorText();
    }
}

TEST(GaussKrugerBase, ARotatedPoleCannotBeWritten) {
    CGISDataSource::ClearLastErrorText();
    EXPECT_EQ(
        BuildZone("+proj=ob_tran +o_proj=longlat +o_lon_p=0 +o_lat_p=39 +lon_0=18 +ellps=krass", 20,
                  6),
        "");
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
}

TEST(GaussKrugerBase, UnreadableTextTellsItsReason) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    for (const char* text : {"", "no system", "EPSG:1"}) {
        CGISDataSource::ClearLastErrorText();
        EXPECT_EQ(BuildZone(text, 20, 6), "") << text;
        EXPECT_NE(CGISDataSource::GetLastErrorText(), "") << text;
    }
}

TEST(GaussKrugerBase, PointsArriveWhereTheShiftTakesThem) {
    const std::string shifted = WithShift("EPSG:4214", THREE, "WKT1_GDAL");
    // Where a point of WGS 84 lies on the shifted spheroid, by hand: to geocentric, less the
    // shift, back by iteration.
    const double degree = 3.14159265358979323846 / 180.0;
    const double phi = 40.0 * degree;
    const double lambda = 117.5 * degree;
    const double f = 1 / 298.257223563;
    const double e2 = f * (2 - f);
    const double n = 6378137.0 / std::sqrt(1 - e2 * std::sin(phi) * std::sin(phi));
    const double x = n * std::cos(phi) * std::cos(lambda) - THREE[0];
    const double y = n * std::cos(phi) * std::sin(lambda) - THREE[1];
    const double z = n * (1 - e2) * std::sin(phi) - THREE[2];
    const double krassowsky = 1 / 298.3 * (2 - 1 / 298.3);
    const double p = std::hypot(x, y);
    double latitude = phi;
    for (int i = 0; i < 20; ++i) {
        const double radius =
            6378245.0 / std::sqrt(1 - krassowsky * std::sin(latitude) * std::sin(latitude));
        latitude = std::atan2(z + krassowsky * radius * std::sin(latitude), p);
    }
    double expectedX = std::atan2(y, x) / degree;
    double expectedY = latitude / degree;
    double actualX = 117.5;
    double actualY = 40.0;

    const auto connect = [](const OGRSpatialReference& from, const OGRSpatialReference& to) {
        return std::unique_ptr<OGRCoordinateTransformation>(
            OGRCreateCoordinateTransformation(&from, &to));
    };
    const OGRSpatialReference built = ReadReference(BuildZone(shifted, 20, 6));
    ASSERT_TRUE(connect(ReadReference("EPSG:4326"), built)->Transform(1, &actualX, &actualY));
    // The same zone on the spheroid alone.
    ASSERT_TRUE(connect(ReadReference("+proj=longlat +ellps=krass +no_defs"),
                        ReadReference("+proj=tmerc +lon_0=117 +x_0=500000 +ellps=krass +no_defs"))
                    ->Transform(1, &expectedX, &expectedY));
    EXPECT_NEAR(actualX, expectedX, 1e-3);
    EXPECT_NEAR(actualY, expectedY, 1e-3);
}

TEST(GaussKrugerBase, SystemsOfRealFilesAreKept) {
    ZELTO_REQUIRE_TEST_DATA();
    GDALAllRegister();
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    std::set<std::string> texts;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(zelto::test::TestDataFile(""))) {
        if (!entry.is_regular_file())
            continue;
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(entry.path().c_str()));
        if (!dataset)
            continue;
        if (const OGRSpatialReference* reference = dataset->GetSpatialRef())
            texts.insert(Export(*reference, "WKT1_GDAL"));
        for (OGRLayer* layer : dataset->GetLayers())
            if (const OGRSpatialReference* reference = layer->GetSpatialRef())
                texts.insert(Export(*reference, "WKT1_GDAL"));
    }
    texts.erase("");
    EXPECT_GT(texts.size(), 20U);
    for (const std::string& text : texts) {
        const OGRSpatialReference reference = ReadReference(text);
        if (!reference.IsGeographic() && !reference.IsProjected())
            EXPECT_EQ(BuildZone(text, 20, 6), "") << text;
        else if (!reference.IsCompound())
            ExpectBaseIsKept(text);
    }
}
