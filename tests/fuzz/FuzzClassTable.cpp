#include "host/base/Failure.h"
#include "host/report/ClassTable.h"
#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

// A CSV file of classes.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("classes.csv", data, size);
    try {
        const auto classes = zelto::host::ReadClassTable(folder.File("classes.csv"));
        zelto::fuzz::Require(!classes.empty(), "a table that is accepted holds a class");
    } catch (const zelto::host::Failure&) {
    }
    return 0;
}
