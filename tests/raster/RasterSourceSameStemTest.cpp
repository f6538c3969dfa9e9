#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterFiles.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using zelto::test::Pixels;
using zelto::test::TemporaryFolder;
using Names = std::vector<std::string>;

namespace {

constexpr int STEM_SIDE = 300;

struct Image {
    const char* name;
    const char* driver;
    double value;
};

constexpr Image GTIFF = {"s.tif", "GTiff", 10.0};
constexpr Image IMAGINE = {"s.img", "HFA", 20.0};
constexpr Image BITMAP = {"s.bmp", "BMP", 30.0};
constexpr Image PCIDSK = {"s.pix", "PCIDSK", 40.0};
constexpr Image ENVI = {"s", "ENVI", 50.0};

/// Images of one size whose names differ in the extension alone. The engine's settings give
/// their pyramids the same name.
class SameStem : public testing::Test {
  protected:
    SameStem() { CGISDataSource::RegisterGDAL(); }
    ~SameStem() override { CGISDataSource::DestroyGDAL(); }

    void Write(const Image& image) {
        zelto::test::RasterSpec spec = {.width = STEM_SIDE, .height = STEM_SIDE};
        spec.driver = image.driver;
        zelto::test::WriteRaster(
            m_folder.File(image.name), spec,
            {Pixels(static_cast<std::size_t>(STEM_SIDE) * STEM_SIDE, image.value)});
    }

    void Build(const Image& image) {
        CRasterSource source;
        ASSERT_EQ(source.Open(m_folder.WideFile(image.name).c_str(), GIS_UPDATE, false),
                  GIS_SUCCESS);
        EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
    }

    /// Number of levels, after a look at what the image shows at every reduction.
    int LevelsOf(const Image& image) {
        CRasterSource source;
        EXPECT_EQ(source.Open(m_folder.WideFile(image.name).c_str(), GIS_READONLY, false),
                  GIS_SUCCESS);
        CRasterBand& band = *source.GetRasterBand(0);
        for (const int side : {150, 75, 38, 20}) {
            Pixels pixels(static_cast<std::size_t>(side) * side);
            EXPECT_EQ(band.ReadBlock(0, 0, STEM_SIDE, STEM_SIDE, pixels.data(), side, side,
                                     PDT_Float64, 0, 0),
                      GIS_SUCCESS);
            EXPECT_EQ(pixels, Pixels(pixels.size(), image.value)) << image.name << " at " << side;
        }
        EXPECT_EQ(band.GetMean(), image.value) << image.name;
        return band.GetOverviewCount();
    }

    const TemporaryFolder m_folder;
};

} // namespace

TEST_F(SameStem, PyramidsBuiltInAnyOrderStayApart) {
    std::vector<Image> images = {GTIFF, IMAGINE, BITMAP, PCIDSK, ENVI};
    const unsigned int seed = std::random_device()();
    std::mt19937 random(seed);
    for (const Image& image : images)
        Write(image);
    for (int round = 0; round < 3; ++round) {
        std::shuffle(images.begin(), images.end(), random);
        std::string order = "seed " + std::to_string(seed) + ":";
        for (const Image& image : images)
            order += std::string(" ") + image.name;
        SCOPED_TRACE(order);
        for (const Image& image : images)
            Build(image);
        for (const Image& image : images)
            EXPECT_EQ(LevelsOf(image), image.name == PCIDSK.name ? 1 : 3) << image.name;
    }
}

TEST_F(SameStem, AnImageWithoutAPyramidDoesNotShowTheOthers) {
    for (const Image& owner : {GTIFF, BITMAP, PCIDSK, ENVI}) {
        for (const Image& other : {GTIFF, IMAGINE, BITMAP, PCIDSK, ENVI}) {
            if (owner.name == other.name)
                continue;
            SCOPED_TRACE(std::string(owner.name) + " has one, " + other.name + " not");
            Write(owner);
            Build(owner);
            Write(other);
            EXPECT_EQ(LevelsOf(other), 0);
            // A new ERDAS Imagine file removes the levels of its stem; nothing wrong shows.
            const int levels = owner.name == PCIDSK.name ? 1 : 3;
            EXPECT_EQ(LevelsOf(owner), other.name == IMAGINE.name ? 0 : levels);
            std::filesystem::remove_all(m_folder.Path());
            std::filesystem::create_directory(m_folder.Path());
        }
    }
}

TEST_F(SameStem, AnImageWithMasksBesideDoesNotShowTheOthersPyramid) {
    for (const Image& other : {BITMAP, PCIDSK, ENVI}) {
        SCOPED_TRACE(other.name);
        Write(GTIFF);
        Build(GTIFF);
        Write(other);
        {
            const GDALDatasetUniquePtr image(
                GDALDataset::Open(m_folder.File(other.name).c_str(), GDAL_OF_RASTER));
            ASSERT_EQ(image->CreateMaskBand(GMF_PER_DATASET), CE_None);
            ASSERT_EQ(image->GetRasterBand(1)->GetMaskBand()->Fill(255.0), CE_None);
        }
        ASSERT_TRUE(std::filesystem::exists(m_folder.File(other.name) + ".msk"));
        EXPECT_EQ(LevelsOf(other), 0);
        EXPECT_EQ(LevelsOf(GTIFF), 3);
        std::filesystem::remove_all(m_folder.Path());
        std::filesystem::create_directory(m_folder.Path());
    }
}

TEST_F(SameStem, AFormatThatKeepsItsLevelsToItselfIsLeftAlone) {
    Write(GTIFF);
    Build(GTIFF);
    zelto::test::WriteRaster(m_folder.File("s.gpkg"),
                             {.width = STEM_SIDE,
                              .height = STEM_SIDE,
                              .driver = "GPKG",
                              .geoTransform = zelto::test::NorthUp(0.0, 300.0, 1.0),
                              .options = {"TILE_FORMAT=PNG"}},
                             {Pixels(static_cast<std::size_t>(STEM_SIDE) * STEM_SIDE, 60.0)});
    EXPECT_EQ(LevelsOf({"s.gpkg", "GPKG", 60.0}), 0);
}

TEST_F(SameStem, AnImagineFileThatIsPutBesideTakesNothingAway) {
    Write(GTIFF);
    Build(GTIFF);
    std::filesystem::create_directory(m_folder.Path() / "elsewhere");
    const Image elsewhere = {"elsewhere/s.img", "HFA", IMAGINE.value};
    Write(elsewhere);
    std::filesystem::rename(m_folder.File(elsewhere.name), m_folder.File(IMAGINE.name));
    EXPECT_EQ(LevelsOf(GTIFF), 3);
    EXPECT_EQ(LevelsOf(IMAGINE), 0);
    Build(IMAGINE);
    EXPECT_EQ(LevelsOf(GTIFF), 3);
    EXPECT_EQ(LevelsOf(IMAGINE), 3);
    Build(IMAGINE);
    Build(GTIFF);
    EXPECT_EQ(LevelsOf(GTIFF), 3);
    EXPECT_EQ(LevelsOf(IMAGINE), 3);
}

TEST_F(SameStem, APyramidGoesOnServingARenamedImage) {
    Write(GTIFF);
    Build(GTIFF);
    for (const char* extension : {".tif", ".aux", ".rrd"})
        std::filesystem::rename(m_folder.File(std::string("s") + extension),
                                m_folder.File(std::string("t") + extension));
    const Image renamed = {"t.tif", "GTiff", GTIFF.value};
    EXPECT_EQ(LevelsOf(renamed), 3);
    Write(GTIFF);
    EXPECT_EQ(LevelsOf(renamed), 3) << "an image of the former name is another matter";
}

TEST_F(SameStem, RemovingAnImageLeavesTheOthersPyramid) {
    Write(GTIFF);
    Build(GTIFF);
    Write(BITMAP);
    EXPECT_EQ(CRasterSource::DeleteFileW(m_folder.WideFile(BITMAP.name).c_str()), GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), (Names{"s.aux", "s.rrd", "s.tif"}));
    EXPECT_EQ(LevelsOf(GTIFF), 3);
}

TEST_F(SameStem, AFileThatIsNoPyramidStays) {
    Write(GTIFF);
    zelto::test::WriteFile(m_folder.Path() / "s.aux", "\\relax of a text\n");
    Build(GTIFF);
    EXPECT_EQ(m_folder.Names(), (Names{"s.aux", "s.tif", "s.tif.ovr"}));
    EXPECT_EQ(zelto::test::ReadFile(m_folder.Path() / "s.aux"), "\\relax of a text\n");
    EXPECT_EQ(LevelsOf(GTIFF), 3);
}

TEST_F(SameStem, APyramidThatIsLeftOverDoesNotCountForANewImage) {
    for (const bool replaces : {false, true}) {
        SCOPED_TRACE(replaces ? "over the old image" : "after the old image was removed");
        Write(GTIFF);
        Build(GTIFF);
        if (!replaces)
            std::filesystem::remove(m_folder.File(GTIFF.name));
        CRasterSource source;
        ASSERT_EQ(source.CreateRaster(RDF_GTiff, m_folder.WideFile(GTIFF.name).c_str(), STEM_SIDE,
                                      STEM_SIDE, 1, PDT_Byte, nullptr, nullptr, nullptr),
                  GIS_SUCCESS);
        source.Close();
        const Image created = {GTIFF.name, GTIFF.driver, 0.0};
        EXPECT_EQ(LevelsOf(created), 0);
        EXPECT_EQ(m_folder.Names(), Names{"s.tif"});
    }
}

TEST_F(SameStem, AnImagineFileThatMeansTheLevelsOfAnotherImageLeavesThemThere) {
    Write(GTIFF);
    Build(GTIFF);
    std::filesystem::create_directory(m_folder.Path() / "elsewhere");
    {
        const CPLConfigOptionSetter beside("HFA_USE_RRD", "YES", false);
        const Image elsewhere = {"elsewhere/s.img", "HFA", IMAGINE.value};
        Write(elsewhere);
        Build(elsewhere);
    }
    ASSERT_TRUE(std::filesystem::exists(m_folder.Path() / "elsewhere/s.rrd"));
    std::filesystem::rename(m_folder.File("elsewhere/s.img"), m_folder.File(IMAGINE.name));
    const std::string levels = zelto::test::ReadFile(m_folder.Path() / "s.rrd");
    Build(IMAGINE);
    EXPECT_EQ(zelto::test::ReadFile(m_folder.Path() / "s.rrd"), levels);
    EXPECT_EQ(LevelsOf(GTIFF), 3);
    EXPECT_EQ(LevelsOf(IMAGINE), 3);
}

TEST_F(SameStem, ThePyramidOfAnotherImageIsNeitherCopiedNorReplaced) {
    Write(GTIFF);
    Build(GTIFF);
    Write(BITMAP);
    EXPECT_EQ(CRasterFiles::Copy(m_folder.WideFile(BITMAP.name).c_str(),
                                 m_folder.WideFile("t.bmp").c_str(), false),
              GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), (Names{"s.aux", "s.bmp", "s.rrd", "s.tif", "t.bmp"}));
    // Its pyramid would take the place of that of s.tif.
    const Image other = {"u.tif", "GTiff", 60.0};
    Write(other);
    Build(other);
    EXPECT_EQ(CRasterFiles::Move(m_folder.WideFile("u.tif").c_str(),
                                 m_folder.WideFile(BITMAP.name).c_str(), true),
              GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_folder.File("s.aux") + ": it belongs to another image");
    EXPECT_EQ(LevelsOf(GTIFF), 3);
    EXPECT_EQ(LevelsOf(other), 3);
}

TEST_F(SameStem, AMovedImageKeepsItsPyramid) {
    Write(GTIFF);
    Build(GTIFF);
    const Image moved = {"t.tif", "GTiff", GTIFF.value};
    Write(moved);
    Build(moved);
    EXPECT_EQ(CRasterFiles::Move(m_folder.WideFile(GTIFF.name).c_str(),
                                 m_folder.WideFile(moved.name).c_str(), true),
              GIS_SUCCESS);
    EXPECT_EQ(m_folder.Names(), (Names{"t.aux", "t.rrd", "t.tif"}));
    EXPECT_EQ(LevelsOf(moved), 3);
}
