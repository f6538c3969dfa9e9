// Files that somebody cuts off or removes while they are open.

#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace {

using namespace zelto::test;

constexpr int SIDE = 600;

struct Format {
    const char* driver;
    const char* name;
};

void PrintTo(const Format& format, std::ostream* out) {
    *out << format.driver;
}

class ShrinkingFile : public testing::TestWithParam<Format> {
  protected:
    ShrinkingFile() {
        CGISDataSource::RegisterGDAL();
        RasterSpec spec = {.width = SIDE, .height = SIDE};
        spec.driver = GetParam().driver;
        spec.geoTransform = NorthUp(0.0, SIDE, 1.0);
        WriteRaster(Path(), spec,
                    {MakePixels(SIDE, SIDE, [](int x, int y) { return (x * 7 + y * 3) % 251; })});
        m_source.SetForDisplay(true);
        EXPECT_EQ(m_source.Open(m_folder.WideFile(GetParam().name).c_str(), GIS_READONLY, false),
                  GIS_SUCCESS);
    }
    ~ShrinkingFile() override {
        m_source.Close();
        CGISDataSource::DestroyGDAL();
    }

    std::string Path() const { return m_folder.File(GetParam().name); }
    /// The picture of all of it; empty where it cannot be drawn.
    std::vector<unsigned char> Picture() {
        CBoundingBox box(0.0, SIDE, SIDE, 0.0);
        std::vector<unsigned char> picture(std::size_t{4} * SIDE * SIDE);
        if (!m_source.GetShowData(&box, SIDE, SIDE, picture.data(), true))
            picture.clear();
        return picture;
    }
    /// Its mean; none where it cannot be measured.
    std::optional<double> Mean() {
        double range[4] = {};
        if (!m_source.GetRasterBand(0)->ComputeStatics(&range[0], &range[1], &range[2], &range[3],
                                                       false, nullptr))
            return std::nullopt;
        return range[2];
    }

    const TemporaryFolder m_folder;
    CRasterSource m_source;
};

} // namespace

TEST_P(ShrinkingFile, ThatIsCutWhileItIsOpenGivesItsOwnPixelsOrNone) {
    const std::vector<unsigned char> picture = Picture();
    const std::optional<double> mean = Mean();
    ASSERT_FALSE(picture.empty());
    for (const std::uintmax_t size :
         {std::filesystem::file_size(Path()) / 2, std::uintmax_t{16}, std::uintmax_t{0}}) {
        SCOPED_TRACE(size);
        std::filesystem::resize_file(Path(), size);
        // What GDAL still holds in memory may be shown.
        const std::vector<unsigned char> now = Picture();
        EXPECT_TRUE(now == picture || (now.empty() && !CGISDataSource::GetLastErrorText().empty()));
        const std::optional<double> meanNow = Mean();
        EXPECT_TRUE(!meanNow || meanNow == mean);
        m_source.GetRasterBand(0)->GetGDALBand()->FlushCache(true);
        EXPECT_TRUE(Picture().empty());
        EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
        EXPECT_FALSE(Mean().has_value());
    }
    EXPECT_EQ(m_source.Reopen(GIS_READONLY, false), GIS_OPEN_FAILED);
}

TEST_P(ShrinkingFile, ThatIsRemovedWhileItIsOpenIsReadOn) {
    const std::vector<unsigned char> picture = Picture();
    ASSERT_FALSE(picture.empty());
    std::filesystem::remove(Path());
    EXPECT_EQ(Picture(), picture);
    EXPECT_EQ(m_source.Reopen(GIS_READONLY, false), GIS_OPEN_FAILED);
    EXPECT_TRUE(Picture().empty());
}

// GDAL's drivers of ERDAS Imagine files and of plain pixels show zeros where a file ends.
INSTANTIATE_TEST_SUITE_P(Formats, ShrinkingFile,
                         testing::Values(Format{"GTiff", "a.tif"}, Format{"BMP", "a.bmp"}));
