// A scene on its whole way through the commands that make files, each file looked at by GDAL.

#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gdal_priv.h>
#include <gdal_utils.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::RunZelto;
using zelto::test::SampleScene;
using zelto::test::TemporaryFolder;

namespace {

/// Collects GDAL's warnings and errors while it lives.
class GdalMessages {
  public:
    GdalMessages() { CPLPushErrorHandlerEx(Remember, this); }
    ~GdalMessages() { CPLPopErrorHandler(); }
    GdalMessages(const GdalMessages&) = delete;
    GdalMessages& operator=(const GdalMessages&) = delete;

    std::string m_text;

  private:
    static void CPL_STDCALL Remember(CPLErr level, CPLErrorNum, const char* message) {
        if (level >= CE_Warning)
            static_cast<GdalMessages*>(CPLGetErrorHandlerUserData())->m_text +=
                std::string(message) + "\n";
    }
};

/// What gdalinfo prints of a raster; then gdal_translate reads all its pixels. Both must not warn.
std::string InfoWithoutWarning(const std::string& path) {
    SCOPED_TRACE(path);
    GDALAllRegister();
    const GdalMessages messages;
    std::string info;
    {
        const GDALDatasetUniquePtr image(
            GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
        EXPECT_NE(image, nullptr);
        if (!image)
            return {};
        CPLStringList infoArguments;
        infoArguments.AddString("-checksum");
        GDALInfoOptions* infoOptions = GDALInfoOptionsNew(infoArguments.List(), nullptr);
        char* text = GDALInfo(GDALDataset::ToHandle(image.get()), infoOptions);
        GDALInfoOptionsFree(infoOptions);
        EXPECT_NE(text, nullptr);
        info = text != nullptr ? text : "";
        CPLFree(text);

        CPLStringList arguments;
        arguments.AddString("-of");
        arguments.AddString("MEM");
        GDALTranslateOptions* options = GDALTranslateOptionsNew(arguments.List(), nullptr);
        const GDALDatasetUniquePtr copy(GDALDataset::FromHandle(
            GDALTranslate("", GDALDataset::ToHandle(image.get()), options, nullptr)));
        GDALTranslateOptionsFree(options);
        EXPECT_NE(copy, nullptr);
    }
    EXPECT_EQ(messages.m_text, "");
    return info;
}

/// Number of features and their whole area; ogr2ogr copies them without a warning.
std::pair<GIntBig, double> FeaturesWithoutWarning(const std::string& path) {
    SCOPED_TRACE(path);
    GDALAllRegister();
    const GdalMessages messages;
    std::pair<GIntBig, double> found = {0, 0.0};
    {
        const GDALDatasetUniquePtr file(
            GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_VERBOSE_ERROR));
        EXPECT_NE(file, nullptr);
        if (!file)
            return found;
        CPLStringList arguments;
        arguments.AddString("-f");
        arguments.AddString("Memory");
        GDALVectorTranslateOptions* options =
            GDALVectorTranslateOptionsNew(arguments.List(), nullptr);
        GDALDatasetH origin = GDALDataset::ToHandle(file.get());
        const GDALDatasetUniquePtr copy(GDALDataset::FromHandle(
            GDALVectorTranslate("", nullptr, 1, &origin, options, nullptr)));
        GDALVectorTranslateOptionsFree(options);
        EXPECT_NE(copy, nullptr);
        if (!copy)
            return found;
        for (const auto& feature : *copy->GetLayer(0)) {
            ++found.first;
            found.second += OGR_G_Area(OGRGeometry::ToHandle(feature->GetGeometryRef()));
        }
    }
    EXPECT_EQ(messages.m_text, "");
    return found;
}

void ExpectSuccess(const std::vector<std::string>& line) {
    const auto run = RunZelto(line);
    EXPECT_EQ(run.exitStatus, 0) << testing::PrintToString(line) << "\n" << run.errors;
    EXPECT_EQ(run.errors, "") << testing::PrintToString(line);
}

} // namespace

TEST(MakingCommands, ASceneGoesFromItsCreationToPolygonsAndGdalHasNothingToWarnOf) {
    const TemporaryFolder folder;
    const std::string scene = folder.File("景.tif");
    const std::string part = folder.File("part.tif");
    const std::string grid = folder.File("grid.img");
    const std::string box = "500000,4009600,509600,4000000";

    // 300 × 300 pixels of 32 m: bands of a real scene; and a coarser grid of one value.
    ExpectSuccess({"copy", SampleScene(), scene, "--bands", "4,3,2", "--window", "0,0,300,300"});
    ExpectSuccess({"create", grid, "--size", "75x75", "--fill", "7"});
    ExpectSuccess({"georef", scene, "--box", box, "--srs", "EPSG:32650"});
    ExpectSuccess({"georef", grid, "--box", box, "--srs", "EPSG:32650"});
    ExpectSuccess({"pyramids", "build", scene, grid, "--resampling", "AVERAGE"});
    ExpectSuccess({"pyramids", "check", scene, grid});
    for (const char* name : {"picture.tif", "picture.png"})
        ExpectSuccess({"compose", scene + ":1", scene + ":2", grid + ":1", folder.File(name),
                       "--stretch", "none"});
    ExpectSuccess({"copy", scene, part, "--bands", "1", "--window", "0,0,60,60"});
    ExpectSuccess({"polygonize", part, folder.File("part.gpkg")});
    ExpectSuccess({"polygonize", grid, folder.File("grid.shp")});

    const std::string sceneInfo = InfoWithoutWarning(scene);
    EXPECT_NE(sceneInfo.find("Size is 300, 300"), std::string::npos) << sceneInfo;
    EXPECT_NE(sceneInfo.find("WGS 84 / UTM zone 50N"), std::string::npos) << sceneInfo;
    EXPECT_NE(sceneInfo.find("Origin = (500000.0"), std::string::npos) << sceneInfo;
    EXPECT_NE(sceneInfo.find("Overviews: 150x150, 75x75, 38x38"), std::string::npos) << sceneInfo;
    const std::string gridInfo = InfoWithoutWarning(grid);
    EXPECT_NE(gridInfo.find("Pixel Size = (128.0"), std::string::npos) << gridInfo;
    EXPECT_NE(gridInfo.find("Overviews: 38x38"), std::string::npos) << gridInfo;

    const std::string pictureInfo = InfoWithoutWarning(folder.File("picture.tif"));
    EXPECT_NE(pictureInfo.find("WGS 84 / UTM zone 50N"), std::string::npos) << pictureInfo;
    EXPECT_NE(pictureInfo.find("Pixel Size = (32.0"), std::string::npos) << pictureInfo;
    InfoWithoutWarning(folder.File("picture.png"));
    EXPECT_EQ(ReadBand(folder.File("picture.tif"), 1), ReadBand(scene, 1));
    EXPECT_EQ(ReadBand(folder.File("picture.tif"), 3), Pixels(90000, 7.0));

    // The polygons cover the images without gap or overlap.
    InfoWithoutWarning(part);
    const auto [partCount, partArea] = FeaturesWithoutWarning(folder.File("part.gpkg"));
    EXPECT_GT(partCount, 100);
    EXPECT_EQ(partArea, 60.0 * 32.0 * 60.0 * 32.0);
    const auto [gridCount, gridArea] = FeaturesWithoutWarning(folder.File("grid.shp"));
    EXPECT_EQ(gridCount, 1);
    EXPECT_EQ(gridArea, 9600.0 * 9600.0);
}
