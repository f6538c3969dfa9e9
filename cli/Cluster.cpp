#include "cli/Cluster.h"

#include "host/base/Message.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace zelto::cli {

namespace {

constexpr const char* START =
    "import sys\n"
    "try:\n"
    "    from zelto.many.__main__ import main\n"
    "except ImportError as error:\n"
    "    sys.exit('zelto: --cluster takes the Python package zelto, which is not "
    "installed (%s)' % error)\n"
    "sys.exit(main())\n";

bool IsOption(std::string_view argument, std::string_view name) {
    return argument.substr(0, name.size()) == name &&
           (argument.size() == name.size() || argument[name.size()] == '=');
}

/// In a build folder the package stands beside the programs; an installed one is found by the
/// interpreter itself.
void LookBesideProgram() {
    std::error_code ignored;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    const auto folder = program.parent_path().parent_path() / "python";
    if (!std::filesystem::exists(folder / "zelto", ignored))
        return;
    const char* const others = std::getenv("PYTHONPATH");
    const std::string path =
        folder.string() + (others != nullptr ? std::string(":") + others : std::string());
    setenv("PYTHONPATH", path.c_str(), 1);
}

void LetSignalsThrough() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_UNBLOCK, &all, nullptr);
}

} // namespace

bool IsForCluster(int argc, char** argv) {
    const std::string_view command = argc > 1 ? argv[1] : "";
    if (command != "stats" && command != "render" && command != "pyramids")
        return false;
    for (int i = 2; i < argc; ++i)
        if (IsOption(argv[i], "--cluster"))
            return true;
    return false;
}

int HandOverToPython(int argc, char** argv) {
    LookBesideProgram();
    std::string interpreter = ZELTO_PYTHON;
    std::string option = "-c";
    std::string start = START;
    std::vector<char*> arguments = {interpreter.data(), option.data(), start.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    arguments.push_back(nullptr);
    LetSignalsThrough();
    host::GiveBackStandardError();
    execvp(interpreter.c_str(), arguments.data());
    host::Tell("--cluster takes Python: " + interpreter + ": " + std::strerror(errno));
    return 1;
}

} // namespace zelto::cli
