#pragma once

namespace CLI {
class App;
}

namespace zelto::host {
struct PictureFile;
struct RegionOptions;
} // namespace zelto::host

namespace zelto::cli {

/// Adds --overwrite, without which no command replaces a file.
void AddOverwriteOption(CLI::App& command, bool& overwrite);

/// Adds --png-level and --overwrite.
void AddPictureOptions(CLI::App& command, host::PictureFile& file);

/// Adds --aoi, --box and --shape, of which one may be given.
void AddRegionOptions(CLI::App& command, host::RegionOptions& options);

} // namespace zelto::cli
