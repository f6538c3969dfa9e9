#include "tests/datasource/PlainDataSource.h"
#include "tests/support/CopiedProcess.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <filesystem>
#include <memory>

using zelto::test::PlainDataSource;
using zelto::test::TemporaryFolder;

namespace {

int DriverCount() {
    return GetGDALDriverManager()->GetDriverCount();
}

std::string Option(const char* name) {
    return CPLGetConfigOption(name, "(unset)");
}

std::string ExecutableFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}

} // namespace

TEST(Registration, TheFirstSourceRegistersTheDriversAndTheLastOneTearsDown) {
    auto first = std::make_unique<PlainDataSource>();
    EXPECT_GT(DriverCount(), 0);
    EXPECT_NE(GetGDALDriverManager()->GetDriverByName("GTiff"), nullptr);
    EXPECT_NE(GetGDALDriverManager()->GetDriverByName("ESRI Shapefile"), nullptr);
    auto second = std::make_unique<PlainDataSource>();
    first.reset();
    EXPECT_GT(DriverCount(), 0);
    second.reset();
    EXPECT_EQ(DriverCount(), 0);
}

TEST(Registration, ALaterSourceDoesNotConfigureAgain) {
    const PlainDataSource first;
    CPLSetConfigOption("GDAL_CACHEMAX", "64");
    {
        const PlainDataSource second;
        EXPECT_EQ(Option("GDAL_CACHEMAX"), "64");
    }
    EXPECT_GT(DriverCount(), 0);
    CPLSetConfigOption("GDAL_CACHEMAX", "256");
}

TEST(Registration, TheNextFirstSourceConfiguresAgain) {
    { const PlainDataSource source; }
    CPLSetConfigOption("GDAL_CACHEMAX", "64");
    const PlainDataSource source;
    EXPECT_EQ(Option("GDAL_CACHEMAX"), "256");
    EXPECT_GT(DriverCount(), 0);
}

TEST(Registration, ExplicitRegistrationCountsAsAUser) {
    CGISDataSource::RegisterGDAL();
    EXPECT_GT(DriverCount(), 0);
    { const PlainDataSource source; }
    EXPECT_GT(DriverCount(), 0);
    CGISDataSource::RegisterGDAL();
    CGISDataSource::DestroyGDAL();
    EXPECT_GT(DriverCount(), 0);
    CGISDataSource::DestroyGDAL();
    EXPECT_EQ(DriverCount(), 0);
}

TEST(Registration, TheFirstExplicitRegistrationConfigures) {
    CPLSetConfigOption("GDAL_CACHEMAX", "64");
    CGISDataSource::RegisterGDAL();
    EXPECT_EQ(Option("GDAL_CACHEMAX"), "256");
    CPLSetConfigOption("GDAL_CACHEMAX", "64");
    CGISDataSource::RegisterGDAL();
    EXPECT_EQ(Option("GDAL_CACHEMAX"), "64");
    CGISDataSource::DestroyGDAL();
    CGISDataSource::DestroyGDAL();
    CPLSetConfigOption("GDAL_CACHEMAX", "256");
}

TEST(Registration, ACopyCountsOnlyWhenItEnds) {
    auto source = std::make_unique<PlainDataSource>();
    auto copy = std::make_unique<PlainDataSource>(*source);
    copy.reset();
    EXPECT_EQ(DriverCount(), 0);
    CGISDataSource::RegisterGDAL(); // what the copy's end took away
    EXPECT_GT(DriverCount(), 0);
    source.reset();
    EXPECT_EQ(DriverCount(), 0);
}

TEST(Registration, AssignmentDoesNotCount) {
    auto first = std::make_unique<PlainDataSource>();
    auto second = std::make_unique<PlainDataSource>();
    *second = *first;
    second.reset();
    EXPECT_GT(DriverCount(), 0);
    first.reset();
    EXPECT_EQ(DriverCount(), 0);
}

TEST(Registration, TenCyclesWithRastersAndReferencesStayClean) {
    const TemporaryFolder folder;
    for (int cycle = 0; cycle < 10; ++cycle) {
        const PlainDataSource source("EPSG:4547");
        const std::string path = zelto::test::WriteRaster(
            folder.File("a.tif"), {.width = 2, .height = 1, .srs = "EPSG:32650"}, {{1.0, 2.0}});
        EXPECT_EQ(zelto::test::ReadBand(path, 1), (zelto::test::Pixels{1.0, 2.0}));
        EXPECT_TRUE(source.IsProjected());
    }
}

TEST(Environment, OptionsPointBelowTheExecutableWithoutAHostModule) {
    const PlainDataSource source;
    EXPECT_EQ(Option("GDAL_DATA"), ExecutableFolder() + "/data");
    EXPECT_EQ(Option("CPL_LOG"), ExecutableFolder() + "/logs/gdal.log");
    EXPECT_TRUE(std::filesystem::is_directory(ExecutableFolder() + "/logs"));
}

TEST(Environment, SetsTheFixedOptions) {
    const PlainDataSource source;
    EXPECT_EQ(Option("CPL_LOG_ERRORS"), "ON");
    EXPECT_EQ(Option("CPL_TIMESTAMP"), "ON");
    EXPECT_EQ(Option("HFA_USE_RRD"), "YES");
    EXPECT_EQ(Option("USE_RRD"), "YES");
    EXPECT_EQ(Option("GDAL_FILENAME_IS_UTF8"), "NO");
    EXPECT_EQ(Option("SHAPE_ENCODING"), "");
    EXPECT_EQ(Option("GDAL_CACHEMAX"), "256");
}

TEST(Environment, GdalFindsItsSupportFiles) {
    const PlainDataSource source;
    EXPECT_NE(CPLFindFile("gdal", "gdalicon.png"), nullptr);
}

/// Ends the process with 0 when the options of the installation folder stay the host's.
[[noreturn]] void RegisterWithoutAnInstallationFolder() {
    CPLSetConfigOption("GDAL_DATA", "/of/the/host");
    CGISDataSource::UseNoInstallationFolder();
    CGISDataSource::RegisterGDAL();
    const bool stays = Option("GDAL_DATA") == "/of/the/host" && Option("GDAL_CACHEMAX") == "256";
    zelto::test::EndCopy(stays ? 0 : 1);
}

TEST(Environment, WithoutAnInstallationFolderTheHostsOptionsStay) {
    EXPECT_EXIT(RegisterWithoutAnInstallationFolder(), testing::ExitedWithCode(0), "");
}
