#include "cli/ReprojectCommands.h"
#include "cli/support/Failure.h"
#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <sstream>

namespace {

/// Keeps a stream's output while it lives.
class Redirected {
  public:
    explicit Redirected(std::ostream& stream)
        : m_stream(stream), m_former(stream.rdbuf(m_kept.rdbuf())) {}
    ~Redirected() { m_stream.rdbuf(m_former); }
    Redirected(const Redirected&) = delete;
    Redirected& operator=(const Redirected&) = delete;

  private:
    std::ostream& m_stream;
    std::ostringstream m_kept;
    std::streambuf* m_former;
};

} // namespace

// The points that `zelto reproject points` reads.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("points.txt", data, size);
    const Redirected out(std::cout);
    const Redirected err(std::cerr);
    CLI::App program;
    zelto::cli::AddReprojectPoints(program);
    try {
        program.parse("points --json --from EPSG:4326 --to EPSG:3857 " + folder.File("points.txt"));
    } catch (const zelto::cli::Failure&) {
    }
    return 0;
}
