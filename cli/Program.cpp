#include "cli/Program.h"

#include "cli/Cluster.h"
#include "cli/Commands.h"
#include "cli/Manual.h"
#include "cli/options/Usage.h"
#include "host/base/Breakdown.h"
#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Message.h"
#include "host/base/StateFolder.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>
#include <new>

namespace zelto::cli {

namespace {

constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

void AddAllCommands(CLI::App& program) {
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
    AddZonal(program);
}

/// Adds --quiet to the program and to all its commands, so that it may stand anywhere.
void AddQuiet(CLI::App& command) {
    command.add_flag_callback("--quiet", host::BeQuiet,
                              "no progress, no remarks, no word of what was made");
    for (CLI::App* each : command.get_subcommands([](const CLI::App*) { return true; }))
        AddQuiet(*each);
}

/// A hidden option for the build, which installs what it writes.
void AddManual(CLI::App& program) {
    program
        .add_option_function<std::string>(
            "--write-manual",
            [&program](const std::string& folder) {
                WriteManual(program, ZELTO_VERSION, folder);
                throw CLI::Success();
            },
            "write manual pages and completions below a folder")
        ->group("");
}

int Fail(const std::string& line, int status = EXIT_FAILED) {
    host::Tell(line);
    return status;
}

/// Parses the command line and runs what it says.
/// @return the exit status
int Run(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
        std::cout.flush();
        return 0;
    } catch (const CLI::Success& request) { // for help or the version
        program.exit(request);
        std::cout.flush();
        return 0;
    } catch (const CLI::ParseError& error) {
        return Fail(ExplainUsage(program, error), EXIT_USAGE);
    } catch (const host::UsageError& error) {
        return Fail(error.what(), EXIT_USAGE);
    }
}

/// Turns whatever goes wrong into a line and an exit status.
int RunAndExplain(CLI::App& program, int argc, char** argv) {
    try {
        return Run(program, argc, argv);
    } catch (const std::exception& error) {
        // Work that was cancelled has failed with reasons of its own.
        if (host::Interrupted())
            return Fail(host::Interruption().what(), host::EXIT_INTERRUPTED);
        if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
            return Fail("not enough memory");
        if (dynamic_cast<const std::ios_base::failure*>(&error) != nullptr)
            return Fail("standard output: " + std::string(std::strerror(errno)));
        return Fail(error.what());
    }
}

} // namespace

int RunProgram(int argc, char** argv) {
    host::TakeStandardStreams();
    if (IsForCluster(argc, argv))
        return HandOverToPython(argc, argv);
    host::TellBreakdowns(EXIT_FAILED);
    host::ListenForInterrupts();
    host::LogBelowStateFolder();
    // A file that may not grow any more is a failure with a reason, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    // Long output goes through a buffer of its own, not piece by piece through C's.
    std::ios::sync_with_stdio(false);
    // What cannot be printed is a failure like any other, told by an exception.
    std::cout.exceptions(std::ios::badbit | std::ios::failbit);
    CLI::App program("zelto: look into, draw, measure, reproject and make raster images.\n"
                     "Bands are numbered from 1; boxes are left,top,right,bottom in ground units.",
                     "zelto");
    program.set_version_flag("--version", ZELTO_VERSION);
    program.footer(
        "zelto COMMAND --help explains a command. With --cluster ADDRESS, that of a Dask\n"
        "scheduler, stats, render and pyramids work on many files there; zelto stats\n"
        "--cluster ADDRESS --help explains that.");
    AddAllCommands(program);
    AddQuiet(program);
    AddManual(program);
    const int status = RunAndExplain(program, argc, argv);
    host::StopListening();
    return status;
}

} // namespace zelto::cli
