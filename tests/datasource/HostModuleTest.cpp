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

/// The folder that the options name when the module is loaded from `folder` under `name`.
std::string FolderNamedByOptions(const TemporaryFolder& folder, const std::string& name) {
    std::filesystem::copy_file(ZELTO_TEST_HOST_MODULE, folder.Path() / name);
    void* module = dlopen(folder.File(name).c_str(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(module, nullptr) << dlerror();
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
