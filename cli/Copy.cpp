#include "cli/Commands.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Message.h"
#include "host/base/Progress.h"
#include "host/files/Output.h"
#include "host/files/RasterCopy.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace zelto::cli {

namespace {

/// Tells what the new file lacks.
void TellWhatIsLost(const std::vector<std::string>& lost, const std::string& path) {
    for (const std::string& what : lost)
        host::Remark(path + ": the format cannot hold " + what + ", which the copy lacks");
}

} // namespace

void AddCopy(CLI::App& program) {
    auto* copy = program.add_subcommand("copy", "copy pixels into a new raster file");
    auto options = std::make_shared<host::CopyOptions>();
    copy->add_option("IN", options->from, "the raster to copy")->required();
    copy->add_option("OUT", options->to, "the file to make")->required();
    copy->add_option("--bands", options->bands, "bands to copy, in this order: 3,2,1");
    copy->add_option("--window", options->window, "part to copy: column,row,columns,rows");
    copy->add_option("--box", options->box, "part to copy: left,top,right,bottom in ground units");
    copy->add_option("--type", options->type, "pixel type, Byte … Float64");
    copy->add_option("--format", options->format, "format, where the extension does not tell");
    AddOverwriteOption(*copy, options->overwrite);
    copy->add_option("--co", options->creation, "KEY=VALUE for the GeoTIFF writer");
    copy->callback([options] {
        host::TerminalProgress progress;
        TellWhatIsLost(host::CopyRaster(*options, progress), options->to);
    });
}

} // namespace zelto::cli
