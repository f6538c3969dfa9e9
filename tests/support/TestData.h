#pragma once

#include <string>

namespace zelto::test {

/// Path below the folder of real test data that the environment names, empty when it names none.
std::string TestDataFile(const std::string& relative);

/// Path of the sample scene in the source tree: six 8-bit bands, 349 × 352.
std::string SampleScene();

} // namespace zelto::test

/// Skips the test, visibly, where no folder of real test data is set.
#define ZELTO_REQUIRE_TEST_DATA()                                                                  \
    if (zelto::test::TestDataFile("").empty())                                                     \
    GTEST_SKIP() << "ZELTO_TEST_DATA names no folder of test data"
