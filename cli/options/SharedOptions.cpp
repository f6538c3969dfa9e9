#include "cli/options/SharedOptions.h"

#include "host/files/Region.h"
#include "host/picture/Picture.h"

#include <CLI/CLI.hpp>

#include <string>

namespace zelto::cli {

void AddOverwriteOption(CLI::App& command, bool& overwrite) {
    command.add_flag("--overwrite", overwrite, "replace a file that has the new one's name");
}

void AddPictureOptions(CLI::App& command, host::PictureFile& file) {
    AddOverwriteOption(command, file.overwrite);
    command
        .add_option("--png-level", file.pngLevel,
                    "how hard a PNG is compressed: 1 (quick) to 9 (small), " +
                        std::to_string(host::BEST_PNG_LEVEL) + " when not given")
        ->check(CLI::Range(1, 9));
}

void AddRegionOptions(CLI::App& command, host::RegionOptions& options) {
    auto* aoi = command.add_option("--aoi", options.aoi,
                                   "the shapes of an area file (.aif) or of any vector file");
    auto* box = command.add_option("--box", options.box, "left,top,right,bottom in ground units");
    auto* shape = command.add_option(
        "--shape", options.shape,
        "\"polygon x,y x,y x,y …\", \"rectangle left,top,right,bottom\" or \"ellipse …\"");
    aoi->excludes(box)->excludes(shape);
    box->excludes(shape);
    for (CLI::Option* option : {aoi, box, shape})
        option->check([](const std::string& text) { return text.empty() ? "is empty" : ""; });
}

} // namespace zelto::cli
