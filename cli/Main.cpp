#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/Progress.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <new>

namespace {

constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

void AddCommands(CLI::App& program) {
    using namespace zelto::cli;
    program.require_subcommand(1);
    AddAoi(program);
    AddClasses(program);
    AddCompose(program);
    AddCopy(program);
    AddCreate(program);
    AddFile(program);
    AddGeoref(program);
    AddHistogram(program);
    AddInfo(program);
    AddPolygonize(program);
    AddPyramids(program);
    AddRender(program);
    AddReproject(program);
    AddSamples(program);
    AddSrs(program);
    AddStats(program);
    AddVector(program);
}

} // namespace

int main(int argc, char** argv) {
    zelto::cli::CatchInterrupts();
    // Long output goes through a buffer of its own, not piece by piece through C's.
    std::ios::sync_with_stdio(false);
    CLI::App program("zelto: look into, draw, measure, reproject and make raster images.\n"
                     "Bands are numbered from 1; boxes are left,top,right,bottom in ground units.");
    program.set_version_flag("--version", ZELTO_VERSION);
    program.footer("zelto COMMAND --help explains a command.");
    AddCommands(program);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : EXIT_USAGE;
    } catch (const zelto::cli::UsageError& error) {
        std::cerr << "zelto: " << error.what() << '\n';
        return EXIT_USAGE;
    } catch (const zelto::cli::Failure& error) {
        std::cerr << "zelto: " << error.what() << '\n';
        return EXIT_FAILED;
    } catch (const std::bad_alloc&) {
        std::cerr << "zelto: not enough memory\n";
        return EXIT_FAILED;
    } catch (const std::exception& error) {
        std::cerr << "zelto: " << error.what() << '\n';
        return EXIT_FAILED;
    }
    std::cout.flush();
    return std::cout ? 0 : EXIT_FAILED;
}
