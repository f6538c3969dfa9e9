#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/NamedPolygons.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

#include <sstream>

// The text of named polygons: read, and sometimes made a shapefile, unless one cannot be written to
// it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    std::istringstream text(std::string(data, data + size));
    for (const zelto::NamedPolygon& polygon : zelto::ReadNamedPolygons(text))
        zelto::fuzz::Require(polygon.geometry != nullptr, "a polygon that is read has a ring");
    if (!zelto::fuzz::IsChosen(data, size, 256))
        return 0;
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("polygons.txt", data, size);
    CRasterAlgorithm::SaveGemetryFromTxt(folder.File("polygons.txt"));
    return 0;
}
