#include "cli/Program.h"
#include "host/base/Interrupts.h"

namespace {

/// The libraries take most of the program's start to set themselves up; what is called by this
/// list comes before them.
__attribute__((section(".preinit_array"), used)) void (*const g_first)() = zelto::host::HoldSignals;

} // namespace

int main(int argc, char** argv) {
    return zelto::cli::RunProgram(argc, argv);
}
