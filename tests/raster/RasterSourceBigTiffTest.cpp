#include "zelto/raster/RasterSource.h"

#include "tests/support/TemporaryFolder.h"

#include <cpl_string.h>
#include <gtest/gtest.h>

#include <fstream>

using zelto::test::TemporaryFolder;

namespace {

constexpr int CLASSIC = 0x2a;
constexpr int BIG = 0x2b;

/// The version in the header of a GeoTIFF created with this layout. Only tags are written: the
/// files are sparse.
int TiffVersion(int width, int height, int bands, PixelDataType type, char** options = nullptr) {
    const TemporaryFolder folder;
    CRasterSource source;
    EXPECT_EQ(source.CreateRaster(RDF_GTiff, folder.WideFile("a.tif").c_str(), width, height, bands,
                                  type, nullptr, nullptr, options),
              GIS_SUCCESS);
    source.Close();
    std::ifstream file(folder.File("a.tif"), std::ios::binary);
    char header[4] = {};
    file.read(header, sizeof(header));
    return header[2];
}

} // namespace

TEST(BigTiff, StartsBeyondTwoThousandEightHundredSixtySevenPointTwoMegabytes) {
    // The limit is 3006477107.2 bytes.
    EXPECT_EQ(TiffVersion(50000, 60129, 1, PDT_Byte), CLASSIC); // 3006450000
    EXPECT_EQ(TiffVersion(50000, 60130, 1, PDT_Byte), BIG);     // 3006500000
}

TEST(BigTiff, CountsBandsAndBits) {
    EXPECT_EQ(TiffVersion(40000, 40000, 3, PDT_Byte), BIG);     // 4577.6 megabytes
    EXPECT_EQ(TiffVersion(30000, 30000, 3, PDT_Byte), CLASSIC); // 2574.9 megabytes
    EXPECT_EQ(TiffVersion(25000, 60129, 1, PDT_Int16), CLASSIC);
    EXPECT_EQ(TiffVersion(25000, 60130, 1, PDT_Int16), BIG);
    EXPECT_EQ(TiffVersion(12500, 30065, 1, PDT_Float64), BIG); // 8 bytes each: 3006500000
}

TEST(BigTiff, TheCallersWordCounts) {
    CPLStringList options;
    options.SetNameValue("BIGTIFF", "NO");
    EXPECT_EQ(TiffVersion(50000, 60130, 1, PDT_Byte, options.List()), CLASSIC);
    options.SetNameValue("BIGTIFF", "YES");
    EXPECT_EQ(TiffVersion(50, 60, 1, PDT_Byte, options.List()), BIG);
    CPLStringList others;
    others.SetNameValue("COMPRESS", "LZW");
    EXPECT_EQ(TiffVersion(50000, 60130, 1, PDT_Byte, others.List()), BIG);
}
