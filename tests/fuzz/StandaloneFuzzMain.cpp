// Replays inputs through a fuzz target without libFuzzer:
//   zelto_fuzz_<target> FILE-OR-FOLDER…
// Every input is one that some version of the engine could have stumbled over; all of them must
// pass, in every build.

#include "tests/fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

std::vector<std::filesystem::path> FilesOf(const std::filesystem::path& place) {
    if (!std::filesystem::is_directory(place))
        return {place};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(place))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

bool Replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
        return false;
    }
    const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
    // Named before it runs: after a crash the last one named is to blame.
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& file : FilesOf(argv[i])) {
            if (!Replay(file))
                return 1;
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
