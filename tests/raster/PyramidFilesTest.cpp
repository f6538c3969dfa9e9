#include "zelto/raster/internal/PyramidFiles.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::Pixels;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

namespace {

namespace fs = std::filesystem;
using Paths = std::vector<fs::path>;

constexpr int STEM_IMAGE_SIDE = 300;

class PyramidFiles : public testing::Test {
  protected:
    PyramidFiles() { GDALAllRegister(); }

    fs::path Path(const std::string& name) const { return m_folder.Path() / name; }
    void Write(const std::string& name, const char* driver) const {
        const auto pixels = std::size_t{STEM_IMAGE_SIDE} * STEM_IMAGE_SIDE;
        zelto::test::WriteRaster(
            m_folder.File(name),
            {.width = STEM_IMAGE_SIDE, .height = STEM_IMAGE_SIDE, .driver = driver},
            {Pixels(pixels, 1.0)});
    }
    /// Gives an image levels in "stem.rrd": with an index "stem.aux", or its own in an ERDAS
    /// Imagine file.
    void BuildByStem(const std::string& name) const {
        const CPLConfigOptionSetter index("USE_RRD", "YES", false);
        const CPLConfigOptionSetter levels("HFA_USE_RRD", "YES", false);
        const bool isImagine = fs::path(name).extension() == ".img";
        const GDALDatasetUniquePtr image(GDALDataset::Open(
            Path(name).c_str(), GDAL_OF_RASTER | (isImagine ? GDAL_OF_UPDATE : GDAL_OF_READONLY)));
        int factor = 2;
        ASSERT_EQ(image->BuildOverviews("NEAREST", 1, &factor, 0, nullptr, nullptr, nullptr),
                  CE_None);
    }

    const TemporaryFolder m_folder;
};

} // namespace

TEST_F(PyramidFiles, AnIndexIsThatOfTheImageThatItNames) {
    Write("s.tif", "GTiff");
    EXPECT_FALSE(zelto::HasForeignIndex(Path("s.tif"))) << "there is none";
    BuildByStem("s.tif");
    Write("s.bmp", "BMP");
    EXPECT_FALSE(zelto::HasForeignIndex(Path("s.tif")));
    EXPECT_TRUE(zelto::HasForeignIndex(Path("s.bmp")));
    EXPECT_EQ(zelto::PyramidFilesBeside(Path("s.tif")), (Paths{Path("s.aux"), Path("s.rrd")}));
    EXPECT_EQ(zelto::PyramidFilesBeside(Path("s.bmp")), Paths{});
    EXPECT_EQ(zelto::ForeignPyramidFiles(Path("s.tif")), Paths{});
    EXPECT_EQ(zelto::ForeignPyramidFiles(Path("s.bmp")),
              (Paths{Path("s.aux"), Path("s.rrd"), Path("s.rde")}));
}

TEST_F(PyramidFiles, AnIndexOfAnImageThatIsGoneOrOfAnotherStemCameAlong) {
    Write("s.tif", "GTiff");
    BuildByStem("s.tif");
    fs::rename(Path("s.tif"), Path("s.TIFF"));
    EXPECT_FALSE(zelto::HasForeignIndex(Path("s.TIFF"))) << "what it names is gone";
    for (const char* extension : {".aux", ".rrd"})
        fs::rename(Path(std::string("s") + extension), Path(std::string("t") + extension));
    Write("s.tif", "GTiff");
    Write("t.tif", "GTiff");
    EXPECT_FALSE(zelto::HasForeignIndex(Path("t.tif"))) << "it names another stem";
}

TEST_F(PyramidFiles, AnIndexOfTheSameFileUnderAnotherNameIsTheImages) {
    Write("s.tif", "GTiff");
    BuildByStem("s.tif");
    fs::create_symlink(Path("s.tif"), Path("s.tiff"));
    EXPECT_FALSE(zelto::HasForeignIndex(Path("s.tiff")));
    EXPECT_EQ(zelto::PyramidFilesBeside(Path("s.tiff")), (Paths{Path("s.aux"), Path("s.rrd")}));
}

TEST_F(PyramidFiles, AnIndexWithoutLevelsIsNoPyramid) {
    Write("s.tif", "GTiff");
    BuildByStem("s.tif");
    fs::remove(Path("s.rrd"));
    EXPECT_EQ(zelto::PyramidFilesBeside(Path("s.tif")), Paths{});
}

TEST_F(PyramidFiles, LevelsThatAnImagineFileMeansAreNotTheImages) {
    Write("s.img", "HFA");
    BuildByStem("s.img");
    Write("s.tif", "GTiff");
    fs::create_directory(Path("t"));
    fs::rename(Path("s.img"), Path("t/s.img"));
    fs::rename(Path("s.rrd"), Path("t/s.rrd"));
    BuildByStem("s.tif");
    EXPECT_FALSE(zelto::SharesLevels(Path("s.tif")));
    // The ERDAS Imagine file comes back, with its levels in place of the others.
    fs::rename(Path("t/s.img"), Path("s.img"));
    EXPECT_TRUE(zelto::SharesLevels(Path("s.img")));
    EXPECT_TRUE(zelto::HasForeignIndex(Path("s.tif"))) << "its levels may be the other's";
    EXPECT_EQ(zelto::PyramidFilesBeside(Path("s.tif")), Paths{});
    fs::remove(Path("s.rrd"));
    EXPECT_FALSE(zelto::HasForeignIndex(Path("s.tif"))) << "there are none to share";
    EXPECT_FALSE(zelto::SharesLevels(Path("s.img")));
}

TEST_F(PyramidFiles, WhatIsCalledAsAnImagineFileAndIsNoneClaimsNothing) {
    Write("s.tif", "GTiff");
    BuildByStem("s.tif");
    WriteFile(Path("s.img"), "some text");
    EXPECT_FALSE(zelto::HasForeignIndex(Path("s.tif")));
    EXPECT_FALSE(zelto::SharesLevels(Path("s.img")));
    EXPECT_TRUE(zelto::IsStemTaken(Path("s.tif"))) << "all the same, a new pyramid stays apart";
}

TEST_F(PyramidFiles, AnImagineFileHasNoIndexBesideIt) {
    Write("s.tif", "GTiff");
    BuildByStem("s.tif");
    fs::remove(Path("s.tif"));
    Write("t.img", "HFA");
    fs::rename(Path("t.img"), Path("s.img"));
    EXPECT_FALSE(zelto::HasForeignIndex(Path("s.img")));
    EXPECT_EQ(zelto::PyramidFilesBeside(Path("s.img")), Paths{});
}

TEST_F(PyramidFiles, AStemIsTakenByFilesThatAreNotTheImages) {
    Write("s.tif", "GTiff");
    EXPECT_FALSE(zelto::IsStemTaken(Path("s.tif")));
    WriteFile(Path("s.rrd"), "anything");
    EXPECT_TRUE(zelto::IsStemTaken(Path("s.tif")));
    fs::rename(Path("s.rrd"), Path("s.aux"));
    EXPECT_TRUE(zelto::IsStemTaken(Path("s.tif")));
    fs::remove(Path("s.aux"));
    BuildByStem("s.tif");
    EXPECT_FALSE(zelto::IsStemTaken(Path("s.tif")));
    Write("t.img", "HFA");
    EXPECT_FALSE(zelto::IsStemTaken(Path("t.img"))) << "by itself it is not";
    fs::rename(Path("t.img"), Path("s.IMG"));
    EXPECT_TRUE(zelto::IsStemTaken(Path("s.tif")));
}

TEST_F(PyramidFiles, OfAnImageWithoutAnExtensionHaveTheNamesOfItsStem) {
    Write("s", "ENVI");
    BuildByStem("s");
    EXPECT_EQ(zelto::PyramidFilesBeside(Path("s")), (Paths{Path("s.aux"), Path("s.rrd")}));
}

TEST_F(PyramidFiles, AreLookedForInTheWorkingFolderWhereThePathNamesNone) {
    Write("s.tif", "GTiff");
    BuildByStem("s.tif");
    Write("s.bmp", "BMP");
    const fs::path former = fs::current_path();
    fs::current_path(m_folder.Path());
    EXPECT_TRUE(zelto::HasForeignIndex("s.bmp"));
    EXPECT_FALSE(zelto::HasForeignIndex("s.tif"));
    const CPLStringList names = zelto::FolderWithoutIndex("s.bmp");
    fs::current_path(former);
    EXPECT_EQ(names.FindString("s.aux"), -1);
    EXPECT_GE(names.FindString("s.rrd"), 0);
    const CPLStringList other = zelto::FolderWithoutIndex(Path("t.bmp"));
    EXPECT_GE(other.FindString("s.aux"), 0) << "that of another stem";
}
