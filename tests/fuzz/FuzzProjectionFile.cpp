#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

#include <algorithm>
#include <string>

// A projection file, whose first line is its reference; sometimes the reference is read as well.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("reference.prj", data, size);
    const std::string line =
        CCoordinateAlgorithm::GetWKTFromPrjFile(folder.WideFile("reference.prj").c_str());
    const bool isBeginning = line.size() <= size &&
                             std::equal(line.begin(), line.end(), data, [](char a, std::uint8_t b) {
                                 return std::uint8_t(a) == b;
                             });
    zelto::fuzz::Require(isBeginning && line.find('\n') == std::string::npos, "one line is read");
    if (zelto::fuzz::IsChosen(data, size, 64))
        CCoordinateAlgorithm::GetUnit(line.c_str());
    return 0;
}
