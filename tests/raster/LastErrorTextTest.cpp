#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace zelto::test;

namespace {

std::string Reason() {
    return CGISDataSource::GetLastErrorText();
}

void ExpectReason(const std::string& path, const std::string& words) {
    EXPECT_EQ(Reason().rfind(path + ": ", 0), 0U) << Reason();
    EXPECT_NE(Reason().find(words), std::string::npos) << Reason();
    EXPECT_EQ(Reason().find(path, path.size()), std::string::npos) << "named once: " << Reason();
}

/// An image that cannot be shown north-up: it has no extent.
void WriteFlatImage(const TemporaryFolder& folder) {
    WriteFile(folder.Path() / "flat.vrt", "<VRTDataset rasterXSize='20' rasterYSize='10'>"
                                          "<GeoTransform>1000,0,0,2000,0,10</GeoTransform>"
                                          "<VRTRasterBand dataType='Byte' band='1'/></VRTDataset>");
}

} // namespace

TEST(LastErrorText, TellsWhyAFileDoesNotOpen) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "text.tif", "this is no image");
    CRasterSource source;
    for (const GISDataAccess access : {GIS_READONLY, GIS_UPDATE}) {
        EXPECT_EQ(source.Open(folder.WideFile("none.tif").c_str(), access, true), GIS_OPEN_FAILED);
        ExpectReason(folder.File("none.tif"), "No such file");
        EXPECT_EQ(source.OpenSimple(folder.WideFile("none.tif").c_str(), access, true),
                  GIS_OPEN_FAILED);
        ExpectReason(folder.File("none.tif"), "No such file");
        EXPECT_EQ(source.OpenAsDataset(folder.WideFile("none.tif").c_str(), access),
                  GIS_OPEN_FAILED);
        ExpectReason(folder.File("none.tif"), "No such file");
    }
    EXPECT_EQ(source.Open(folder.WideFile("text.tif").c_str(), GIS_READONLY, true),
              GIS_OPEN_FAILED);
    EXPECT_NE(Reason().find("text.tif"), std::string::npos);
    EXPECT_NE(Reason().find("not recognized"), std::string::npos);
    EXPECT_EQ(source.Reopen(GIS_READONLY, true), GIS_OPEN_FAILED);
    EXPECT_NE(Reason().find("not recognized"), std::string::npos);
}

TEST(LastErrorText, IsForgottenWhenTheNextOperationBegins) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 7.0)});
    CRasterSource source;
    EXPECT_EQ(source.Open(folder.WideFile("none.tif").c_str(), GIS_READONLY, true),
              GIS_OPEN_FAILED);
    EXPECT_NE(Reason(), "");
    EXPECT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(Reason(), "");
}

TEST(LastErrorText, FallingBackToReadingAndAMissingAssistantFileAreNoReasons) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 7.0)});
    {
        const GDALDatasetUniquePtr image(GDALDataset::Open(folder.File("a.tif").c_str()));
        GDALClose(GDALDataset::ToHandle(GetGDALDriverManager()->GetDriverByName("PNG")->CreateCopy(
            folder.File("a.png").c_str(), image.get(), FALSE, nullptr, nullptr, nullptr)));
    }
    CRasterSource source;
    source.SetForDisplay(true);
    EXPECT_EQ(source.Open(folder.WideFile("a.png").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetAccess(), GIS_READONLY);
    EXPECT_EQ(Reason(), "");
}

TEST(LastErrorText, TellsOfAFailedViewAlsoWhereTheFileOpensAllTheSame) {
    const TemporaryFolder folder;
    WriteFlatImage(folder);
    CRasterSource source;
    EXPECT_EQ(source.Open(folder.WideFile("flat.vrt").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(Reason().rfind(folder.File("flat.vrt") + ": ", 0), 0U) << Reason();
}

TEST(LastErrorText, TellsOfAReferenceThatIsNone) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 7.0)});
    CRasterSource source;
    EXPECT_EQ(source.OpenAndWarped(folder.WideFile("a.tif").c_str(), GIS_READONLY, "nowhere"),
              GIS_OPEN_FAILED);
    ExpectReason(folder.File("a.tif"), "'nowhere'");
    EXPECT_EQ(source.OpenAndWarped(folder.WideFile("a.tif").c_str(), GIS_READONLY, "EPSG:4326"),
              GIS_OPEN_FAILED);
    EXPECT_EQ(Reason().rfind(folder.File("a.tif") + ": ", 0), 0U) << Reason();
    EXPECT_EQ(Reason().find("nowhere"), std::string::npos);
}

TEST(LastErrorText, KeepsTheReasonOfASubFileThatIsLeftOut) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 7.0)});
    CDatasetOpenInfo info(folder.WideFile("a.tif").c_str(), GIS_READONLY);
    info.AddSubFileNames(folder.WideFile("none.tif").c_str());
    info.AddSubFileNames(folder.WideFile("a.tif").c_str());
    CRasterSource source;
    EXPECT_EQ(source.Open(info), GIS_SUCCESS);
    ExpectReason(folder.File("none.tif"), "No such file");
}

TEST(LastErrorText, TellsWhichPixelIsOutsideAndWhatWasNotWritten) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4}, {Pixels(16, 7.0)});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    unsigned char value = 0;
    EXPECT_EQ(source.GetPixel(&value, 4, 2, PDT_Unknown), GIS_FAILED);
    ExpectReason(folder.File("a.tif"), "column 4, row 2");
    EXPECT_EQ(source.GetPixel(nullptr, 0, 0, PDT_Unknown), GIS_FAILED);
    ExpectReason(folder.File("a.tif"), "no buffer");
    EXPECT_EQ(source.SetPixel(&value, 0, 0), GIS_SUCCESS) << "a fixed answer";
    EXPECT_EQ(Reason().rfind(folder.File("a.tif") + ": ", 0), 0U) << Reason();
    EXPECT_EQ(source.GetPixel(&value, 0, 0, PDT_Unknown), GIS_SUCCESS);
    EXPECT_EQ(Reason(), "");
}
