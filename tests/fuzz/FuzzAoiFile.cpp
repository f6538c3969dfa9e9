#include "zelto/aoi/AOISource.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

// A file of areas of interest: read, asked, transformed, written and read again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("area.aif", data, size);
    CAOISource area;
    if (area.Open(folder.WideFile("area.aif").c_str(), GIS_READONLY, true) != GIS_SUCCESS)
        return 0;
    CBoundingBox box(0.0, 10.0, 10.0, 0.0);
    area.TopoRelationWithPoint(1.0, 2.0);
    area.GetTopoRelationWithBoundingbox(&box);
    area.GetSelectedDrawShape({1.0, 2.0}, 0.5, 0);
    area.GetSelectedDrawShape(&box, 1);
    // Rings as coarse as can be: fine ones would be all that a run makes.
    area.SetResolution(1e300);
    area.GetOGRGeometries();
    const int shapes = area.GetDrawShapeCount();

    const std::wstring copy = folder.WideFile("copy.aif");
    zelto::fuzz::Require(area.SaveAs(copy.c_str(), VDF_AOI) == GIS_SUCCESS, "an area is written");
    CAOISource again;
    zelto::fuzz::Require(again.Open(copy.c_str(), GIS_READONLY, true) == GIS_SUCCESS &&
                             again.GetDrawShapeCount() == shapes,
                         "an area that was written is read back whole");
    if (!area.GetSpatialReferenceWKT().empty())
        again.OpenAndWarped(copy.c_str(), GIS_READONLY, "EPSG:3857");
    return 0;
}
