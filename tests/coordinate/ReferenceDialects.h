#pragma once

#include <cpl_conv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <string>

namespace zelto::test {

/// A reference text in another dialect, converted by GDAL alone: "WKT1_GDAL", "WKT1_SIMPLE",
/// "WKT1_ESRI", "WKT2_2015", "WKT2_2019" or "PROJ".
inline std::string InDialect(const std::string& text, const std::string& dialect) {
    OGRSpatialReference reference;
    EXPECT_EQ(reference.SetFromUserInput(text.c_str()), OGRERR_NONE) << text;
    char* result = nullptr;
    if (dialect == "PROJ") {
        reference.exportToProj4(&result);
    } else {
        const std::string option = "FORMAT=" + dialect;
        const char* const options[] = {option.c_str(), nullptr};
        reference.exportToWkt(&result, options);
    }
    std::string converted = result == nullptr ? "" : result;
    CPLFree(result);
    EXPECT_NE(converted, "") << text << " as " << dialect;
    return converted;
}

/// All dialects InDialect() knows.
inline constexpr const char* DIALECTS[] = {"WKT1_GDAL", "WKT1_SIMPLE", "WKT1_ESRI",
                                           "WKT2_2015", "WKT2_2019",   "PROJ"};

/// A vertical system as projection files hold it.
inline constexpr const char* VERTICAL_ESRI =
    R"(VERTCS["EGM96_Geoid",VDATUM["EGM96_Geoid"],PARAMETER["Vertical_Shift",0.0],)"
    R"(PARAMETER["Direction",1.0],UNIT["Meter",1.0]])";

/// The same for heights over a spheroid, which name a DATUM instead of a VDATUM.
inline constexpr const char* ELLIPSOIDAL_ESRI =
    R"(VERTCS["WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],)"
    R"(PARAMETER["Vertical_Shift",0.0],PARAMETER["Direction",1.0],UNIT["Foot",0.3048]])";

} // namespace zelto::test
