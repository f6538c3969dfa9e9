#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/raster/RasterSource.h"

bool CCoordinateAlgorithm::IsNeededProject(const wchar_t* pathA, const wchar_t* pathB,
                                           bool& needed) {
    CRasterSource a;
    CRasterSource b;
    if (pathA == nullptr || pathB == nullptr || a.Open(pathA, GIS_READONLY, true) != GIS_SUCCESS ||
        b.Open(pathB, GIS_READONLY, true) != GIS_SUCCESS)
        return false;
    const std::string wktA = a.GetSpatialReferenceWKT();
    const std::string wktB = b.GetSpatialReferenceWKT();
    const bool validA = IsValidCoordinate(wktA.c_str());
    const bool validB = IsValidCoordinate(wktB.c_str());
    needed = validA && validB && !IsSameCoordinate(wktA.c_str(), wktB.c_str());
    return validA == validB;
}
