#include "tests/support/TestData.h"

#include <cstdlib>

namespace zelto::test {

std::string TestDataFile(const std::string& relative) {
    const char* folder = std::getenv("ZELTO_TEST_DATA");
    if (folder == nullptr || *folder == '\0')
        return {};
    return std::string(folder) + "/" + relative;
}

std::string SampleScene() {
    return ZELTO_SAMPLE_FOLDER "/L7_ETMs.tif";
}

} // namespace zelto::test
