#include "zelto/aoi/AOISource.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

#include <algorithm>
#include <vector>

namespace {

/// Where the header of a file holds its reference.
constexpr std::size_t REFERENCE = 516;
constexpr std::size_t REFERENCE_SIZE = 1024;

void Hit(CAOISource& area) {
    CBoundingBox box(0.0, 10.0, 10.0, 0.0);
    area.TopoRelationWithPoint(1.0, 2.0);
    area.GetTopoRelationWithBoundingbox(&box);
    area.GetSelectedDrawShape({1.0, 2.0}, 0.5, 0);
    area.GetSelectedDrawShape(&box, 1);
}

void WriteAndReadAgain(CAOISource& area) {
    // Rings as coarse as can be: fine ones would be all that a run makes.
    area.SetResolution(1e300);
    area.GetOGRGeometries();
    const int shapes = area.GetDrawShapeCount();
    const std::wstring copy = zelto::fuzz::InputFolder::Get().WideFile("copy.aif");
    zelto::fuzz::Require(area.SaveAs(copy.c_str(), VDF_AOI) == GIS_SUCCESS, "an area is written");
    CAOISource again;
    zelto::fuzz::Require(again.Open(copy.c_str(), GIS_READONLY, true) == GIS_SUCCESS &&
                             again.GetDrawShapeCount() == shapes,
                         "an area that was written is read back whole");
    if (!area.GetSpatialReferenceWKT().empty())
        again.OpenAndWarped(copy.c_str(), GIS_READONLY, "EPSG:3857");
}

} // namespace

// A file of areas of interest: read and asked; sometimes transformed, written and read again. What
// the projection library makes of its reference would be most of a run: it stays in some files.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    const bool isWhole = zelto::fuzz::IsChosen(data, size, 128);
    std::vector<std::uint8_t> bytes(data, data + size);
    if (!isWhole && size >= REFERENCE + REFERENCE_SIZE)
        std::fill_n(bytes.begin() + REFERENCE, REFERENCE_SIZE, std::uint8_t(0));
    folder.Write("area.aif", bytes.data(), size);
    CAOISource area;
    if (area.Open(folder.WideFile("area.aif").c_str(), GIS_READONLY, true) != GIS_SUCCESS)
        return 0;
    Hit(area);
    if (isWhole)
        WriteAndReadAgain(area);
    return 0;
}
