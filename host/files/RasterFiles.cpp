#include "host/files/RasterFiles.h"

#include "host/base/Text.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <filesystem>
#include <system_error>

namespace zelto::host {

namespace {

namespace fs = std::filesystem;

/// Whether a file's name says that it goes with the main file: the same name with another
/// extension, or with something appended.
bool GoesWith(const fs::path& file, const fs::path& main) {
    const std::string name = file.filename().string();
    return file.stem() == main.stem() || name.rfind(main.filename().string() + ".", 0) == 0 ||
           name.rfind(main.stem().string() + ".", 0) == 0;
}

} // namespace

std::vector<std::wstring> SideFilesOf(const std::string& path) {
    std::error_code ignored;
    if (!fs::exists(path, ignored))
        return {};
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str()));
    if (!dataset)
        return {};
    const fs::path main(path);
    CPLStringList files(dataset->GetFileList());
    if (dataset->GetDriver() != nullptr && EQUAL(dataset->GetDriver()->GetDescription(), "GTiff"))
        files.AddString(fs::path(main).replace_extension("tfw").c_str());
    std::vector<std::wstring> names;
    for (int i = 0; i < files.Count(); ++i) {
        const fs::path file(files[i]);
        if (file.filename() != main.filename() && file.parent_path() == main.parent_path() &&
            GoesWith(file, main) && fs::exists(file, ignored))
            names.push_back(Wide(file.filename().string()));
    }
    return names;
}

} // namespace zelto::host
