#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

// The text of named polygons that becomes a shapefile.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("polygons.txt", data, size);
    zelto::fuzz::Require(CRasterAlgorithm::SaveGemetryFromTxt(folder.File("polygons.txt")),
                         "every text makes a shapefile");
    return 0;
}
