// Runs a fuzz target without libFuzzer. It replays inputs, all of which must pass in every build:
//   zelto_fuzz_<target> FILE-OR-FOLDER…
// or damages them at random for some seconds; LAST holds the one at work, also after a crash:
//   zelto_fuzz_<target> --mutate SECONDS LAST FILE-OR-FOLDER…

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputMutator.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using zelto::fuzz::Input;

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

Input ReadInput(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
        std::exit(1);
    }
    return Input(std::istreambuf_iterator<char>(stream), {});
}

void Replay(const std::vector<std::filesystem::path>& files) {
    zelto::fuzz::ChooseAll(true);
    for (const auto& file : files) {
        const Input input = ReadInput(file);
        // Named before it runs: after a crash the last one named is to blame.
        std::printf("%s\n", file.c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("%zu inputs\n", files.size());
}

/// Keeps the input at work in a file.
class LastInput {
  public:
    explicit LastInput(const char* path)
        : m_file(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {}
    ~LastInput() { close(m_file); }
    LastInput(const LastInput&) = delete;
    LastInput& operator=(const LastInput&) = delete;

    void Keep(const Input& input) const {
        const auto size = static_cast<off_t>(input.size());
        zelto::fuzz::Require(pwrite(m_file, input.data(), input.size(), 0) == size &&
                                 ftruncate(m_file, size) == 0,
                             "an input can be kept");
    }

  private:
    int m_file;
};

void Mutate(const std::vector<std::filesystem::path>& files, std::chrono::seconds time,
            const LastInput& last) {
    std::vector<Input> inputs(files.size());
    std::transform(files.begin(), files.end(), inputs.begin(), ReadInput);
    zelto::fuzz::InputMutator mutator(std::move(inputs), std::random_device()());
    long count = 0;
    for (const auto end = std::chrono::steady_clock::now() + time;
         std::chrono::steady_clock::now() < end; ++count) {
        const Input input = mutator.Next();
        last.Keep(input);
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("%ld inputs\n", count);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    const bool mutates = words.size() > 3 && words.front() == "--mutate";
    std::vector<std::filesystem::path> files;
    for (std::size_t i = mutates ? 3 : 0; i < words.size(); ++i)
        for (const auto& file : FilesOf(words[i]))
            files.push_back(file);
    if (files.empty())
        return 1;
    if (mutates)
        Mutate(files, std::chrono::seconds(std::stoi(words[1])), LastInput(words[2].c_str()));
    else
        Replay(files);
    return 0;
}
