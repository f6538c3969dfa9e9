#include "cli/reproject/Commands.h"
#include "cli/reproject/PointColumns.h"
#include "cli/reproject/PointLines.h"
#include "host/base/Failure.h"
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

template <typename Use>
void Try(const Use& use) {
    try {
        use();
    } catch (const zelto::host::Failure&) {
    }
}

void ReadPoints(const std::string& file) {
    constexpr std::size_t BATCH = 16;
    zelto::cli::LineReader lines(file);
    zelto::cli::PointReader reader(lines);
    for (auto points = reader.Read(BATCH); !points.x.empty(); points = reader.Read(BATCH))
        zelto::fuzz::Require(points.x.size() == points.y.size(), "every x has its y");
}

void ReadColumns(const std::string& file, const std::string& names) {
    zelto::cli::LineReader lines(file);
    zelto::cli::PointColumns columns(names);
    for (std::string line; lines.Next(line);) {
        const zelto::cli::PointLine point = columns.Parse(line, lines.Where());
        zelto::fuzz::Require(point.text == line, "a line stays what it is");
        if (point.isPoint)
            point.With("1", "2");
    }
}

void RunCommand(const std::string& file) {
    const Redirected out(std::cout);
    const Redirected err(std::cerr);
    CLI::App program;
    zelto::cli::AddReprojectPoints(program);
    program.parse("points --json --from EPSG:4326 --to EPSG:3857 " + file);
}

} // namespace

// The points that `zelto reproject points` reads, as lines and as columns; sometimes through the
// whole command.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("points.txt", data, size);
    const std::string file = folder.File("points.txt");
    Try([&] { ReadPoints(file); });
    Try([&] { ReadColumns(file, "2,1"); });
    Try([&] { ReadColumns(file, "lon,lat"); });
    if (zelto::fuzz::IsChosen(data, size, 512))
        Try([&] { RunCommand(file); });
    return 0;
}
