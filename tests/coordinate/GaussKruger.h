#pragma once

#include "zelto/coordinate/CoordinateAlgorithm.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <string>

namespace zelto::test {

/// The text of a zone over another system.
inline std::string BuildZone(const std::string& srs, int zone, int width) {
    return CCoordinateAlgorithm::NewChinaProjCS(srs.c_str(), zone, width);
}

inline OGRSpatialReference ReadReference(const std::string& text) {
    OGRSpatialReference reference;
    EXPECT_EQ(reference.SetFromUserInput(text.c_str()), OGRERR_NONE) << text;
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return reference;
}

} // namespace zelto::test
