#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

// The text of named polygons that becomes a shapefile, unless one cannot be written to it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("polygons.txt", data, size);
    CRasterAlgorithm::SaveGemetryFromTxt(folder.File("polygons.txt"));
    return 0;
}
