#include "tests/datasource/PlainDataSource.h"
#include "tests/support/TemporaryFolder.h"

#include <cpl_conv.h>
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <filesystem>
#include <string>

using zelto::test::PlainDataSource;
using zelto::test::TemporaryFolder;

namespace {

/// The working directory as it was before.
class FormerDirectory {
  public:
    FormerDirectory() : m_path(std::filesystem::current_path()) {}
    ~FormerDirectory() { std::filesystem::current_path(m_path); }
    FormerDirectory(const FormerDirectory&) = delete;
    FormerDirectory& operator=(const FormerDirectory&) = delete;

  private:
    std::filesystem::path m_path;
};

/// The folder that the options name while the module is loaded under `path`, which may be
/// relative.
std::string FolderNamedByOptions(const std::string& path, const std::string& directoryLater) {
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(module, nullptr) << dlerror();
    std::filesystem::current_path(directoryLater);
    std::string data;
    {
        const PlainDataSource source;
        data = CPLGetConfigOption("GDAL_DATA", "");
        EXPECT_NE(CPLFindFile("gdal", "gdalicon.png"), nullptr);
    }
    if (module != nullptr)
        dlclose(module);
    return std::filesystem::path(data).parent_path().string();
}

/// The same for a module put into `folder` under `name`.
std::string FolderNamedByOptions(const TemporaryFolder& folder, const std::string& name) {
    std::filesystem::copy_file(ZELTO_TEST_HOST_MODULE, folder.Path() / name);
    return FolderNamedByOptions(folder.File(name), std::filesystem::current_path());
}

} // namespace

TEST(HostModule, TheFolderOfTheLoadedModuleIsTheInstallation) {
    for (const char* name : {"libHalvorn.so", "Halvorn.so", "Halvorn.dll"}) {
        const TemporaryFolder folder;
        EXPECT_EQ(FolderNamedByOptions(folder, name), folder.Path().string()) << name;
        EXPECT_TRUE(std::filesystem::is_directory(folder.Path() / "logs")) << name;
    }
}

TEST(HostModule, AModuleWithAnotherNameIsNotTheHost) {
    const TemporaryFolder folder;
    EXPECT_NE(FolderNamedByOptions(folder, "libHalvorn2.so"), folder.Path().string());
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "logs"));
}

TEST(HostModule, AModuleLoadedByARelativePathIsWhereItWasLoadedFrom) {
    const FormerDirectory former;
    // Folders whose names the list of mappings spells in its own way.
    for (const char* name : {"plain", "two words", "line\nbreak", "back\\slash"}) {
        const TemporaryFolder folder;
        const TemporaryFolder elsewhere;
        const auto installation = std::filesystem::canonical(folder.Path()) / name;
        std::filesystem::create_directory(installation);
        std::filesystem::copy_file(ZELTO_TEST_HOST_MODULE, installation / "libHalvorn.so");
        std::filesystem::current_path(installation);
        EXPECT_EQ(FolderNamedByOptions("./libHalvorn.so", elsewhere.Path().string()),
                  installation.string());
        EXPECT_TRUE(std::filesystem::is_directory(installation / "logs"));
        EXPECT_TRUE(std::filesystem::is_empty(elsewhere.Path()));
        std::filesystem::current_path(folder.Path());
        EXPECT_EQ(
            FolderNamedByOptions(std::string(name) + "/libHalvorn.so", elsewhere.Path().string()),
            installation.string());
    }
}
