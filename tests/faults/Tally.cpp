#include "tests/faults/Tally.h"

#include <cstdlib>
#include <fstream>
#include <limits>

namespace zelto::test {

int MostSteps() {
    constexpr int FEW = 3;
    const char* const faults = std::getenv("ZELTO_FAULTS");
    if (faults == nullptr)
        return FEW;
    const int number = std::atoi(faults);
    return number > 0 ? number : std::numeric_limits<int>::max();
}

bool IsLongRun() {
    return std::getenv("ZELTO_FAULTS") != nullptr;
}

void Count(const char* kind) {
    const char* const tally = std::getenv("ZELTO_FAULTS_TALLY");
    if (tally != nullptr)
        std::ofstream(tally, std::ios::app) << kind << '\n';
}

} // namespace zelto::test
