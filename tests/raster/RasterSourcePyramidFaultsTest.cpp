#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/CopiedProcess.h"
#include "tests/support/DisturbedProcess.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>

using zelto::test::Disturb;
using zelto::test::Disturbance;
using zelto::test::DisturbedRun;
using zelto::test::EndCopy;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RecordingProgress;
using zelto::test::SmallDisk;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;
using Names = std::vector<std::string>;
using Sizes = std::vector<std::pair<int, int>>;

namespace {

constexpr int PYRAMID_SIDE = 600;

/// A format, and whether the host lets pyramids go to reduced-resolution files.
struct Place {
    const char* name; ///< of the image
    RasterDataFormat format;
    bool reducedFiles;
    bool keepsOld; ///< whether a failure leaves the former pyramid
};

void PrintTo(const Place& place, std::ostream* out) {
    *out << place.name << (place.reducedFiles ? " with" : " without") << " reduced files";
}

/// An image of the value 1 everywhere, in every place of a pyramid.
class PyramidFaults : public testing::TestWithParam<Place> {
  protected:
    PyramidFaults() {
        CGISDataSource::RegisterGDAL();
        const char* on = GetParam().reducedFiles ? "YES" : "NO";
        m_reducedFiles.emplace("USE_RRD", on, false);
        m_reducedImagineFiles.emplace("HFA_USE_RRD", on, false);
        CRasterSource source;
        EXPECT_EQ(source.CreateRaster(GetParam().format, Path().c_str(), PYRAMID_SIDE, PYRAMID_SIDE,
                                      1, PDT_Byte, nullptr, nullptr, nullptr),
                  GIS_SUCCESS);
        Write(source, 1.0);
        source.Close();
        m_imageFiles = m_folder.Names();
    }
    ~PyramidFaults() override { CGISDataSource::DestroyGDAL(); }

    std::wstring Path() const { return m_folder.WideFile(GetParam().name); }

    static void Write(CRasterSource& source, double value) {
        Pixels pixels(static_cast<std::size_t>(PYRAMID_SIDE) * PYRAMID_SIDE, value);
        ASSERT_EQ(source.GetRasterBand(0)->WriteBlock(0, 0, PYRAMID_SIDE, PYRAMID_SIDE,
                                                      pixels.data(), PYRAMID_SIDE, PYRAMID_SIDE,
                                                      PDT_Float64, 0, 0),
                  GIS_SUCCESS);
    }

    GISError Build(CDataProgress* progress = nullptr) {
        CRasterSource source;
        EXPECT_EQ(source.Open(Path().c_str(), GIS_UPDATE, false), GIS_SUCCESS);
        return source.BuildOverviews("AVERAGE", 0, nullptr, progress);
    }

    /// The levels of the image, and that each holds the value 1 all over.
    Sizes WholeLevels() const {
        const GDALDatasetUniquePtr dataset(
            GDALDataset::Open(m_folder.File(GetParam().name).c_str(), GDAL_OF_RASTER));
        Sizes sizes;
        GDALRasterBand* band = dataset->GetRasterBand(1);
        for (int i = 0; i < band->GetOverviewCount(); ++i) {
            GDALRasterBand* level = band->GetOverview(i);
            sizes.emplace_back(level->GetXSize(), level->GetYSize());
            double range[2] = {0.0, 0.0};
            EXPECT_EQ(level->ComputeRasterMinMax(FALSE, range), CE_None);
            EXPECT_EQ(range[0], 1.0);
            EXPECT_EQ(range[1], 1.0);
        }
        return sizes;
    }

    Sizes Levels() const {
        if (GetParam().format == RDF_PCIDSK)
            return {{300, 300}, {150, 150}};
        return {{300, 300}, {150, 150}, {75, 75}, {38, 38}};
    }

    bool ImageIsUnchanged() const {
        return ReadBand(m_folder.File(GetParam().name), 1) ==
               Pixels(PYRAMID_SIDE * PYRAMID_SIDE, 1.0);
    }

    TemporaryFolder m_folder;
    std::optional<CPLConfigOptionSetter> m_reducedFiles;
    std::optional<CPLConfigOptionSetter> m_reducedImagineFiles;
    Names m_imageFiles;
};

} // namespace

TEST_P(PyramidFaults, ACancelledFirstPyramidLeavesNone) {
    RecordingProgress cancelling(1);
    EXPECT_EQ(Build(&cancelling), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_folder.File(GetParam().name) + ": the build of its pyramid was cancelled");
    EXPECT_EQ(WholeLevels(), Sizes{});
    EXPECT_EQ(m_folder.Names(), m_imageFiles);
    EXPECT_TRUE(ImageIsUnchanged());

    EXPECT_EQ(Build(), GIS_SUCCESS);
    EXPECT_EQ(WholeLevels(), Levels());
}

TEST_P(PyramidFaults, ARebuildIsToldAsDoneOnlyWhereItIs) {
    const bool isTiff = GetParam().format == RDF_GTiff || GetParam().format == RDF_ENVI;
    if (!isTiff || GetParam().reducedFiles)
        GTEST_SKIP() << "GDAL's driver does not tell of every write that fails";
    ASSERT_EQ(Build(), GIS_SUCCESS);
    std::map<std::string, std::string> former;
    for (const std::string& name : m_folder.Names())
        former[name] = ReadFile(m_folder.File(name));
    DisturbedRun run{DisturbedRun::Ending::Disturbed};
    for (int number = 1; run.ending == DisturbedRun::Ending::Disturbed; ++number) {
        SCOPED_TRACE("refused call " + std::to_string(number));
        for (const auto& [name, bytes] : former)
            WriteFile(m_folder.File(name), bytes);
        run = Disturb(number, Disturbance::FullDisk,
                      [&] { EndCopy(Build() == GIS_SUCCESS ? 0 : 1); });
        if (run.ending == DisturbedRun::Ending::CannotWatch)
            GTEST_SKIP() << "this user may not watch processes";
        ASSERT_GE(run.exitStatus, 0);
        if (run.exitStatus == 0) {
            EXPECT_EQ(WholeLevels(), Levels());
        }
    }
    EXPECT_EQ(run.exitStatus, 0);
}

TEST_P(PyramidFaults, ACancelledRebuildLeavesTheFormerPyramidOrNone) {
    ASSERT_EQ(Build(), GIS_SUCCESS);
    ASSERT_EQ(WholeLevels(), Levels());
    const Names files = m_folder.Names();
    for (const int steps : {0, 1}) {
        SCOPED_TRACE(steps);
        RecordingProgress cancelling(steps);
        EXPECT_EQ(Build(&cancelling), GIS_FAILED);
        EXPECT_EQ(WholeLevels(), GetParam().keepsOld ? Levels() : Sizes{});
        EXPECT_EQ(m_folder.Names(), files);
        EXPECT_TRUE(ImageIsUnchanged());
    }
    EXPECT_EQ(Build(), GIS_SUCCESS);
    EXPECT_EQ(WholeLevels(), Levels());
    EXPECT_EQ(m_folder.Names(), files);
}

TEST_P(PyramidFaults, UnusableArgumentsLeaveTheFormerPyramid) {
    ASSERT_EQ(Build(), GIS_SUCCESS);
    const Names files = m_folder.Names();
    {
        CRasterSource source;
        ASSERT_EQ(source.Open(Path().c_str(), GIS_UPDATE, false), GIS_SUCCESS);
        EXPECT_EQ(source.BuildOverviews("FOO", 0, nullptr, nullptr), GIS_FAILED);
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  m_folder.File(GetParam().name) +
                      ": no resampling for pyramids is called \"FOO\"");
        int band = 2;
        EXPECT_EQ(source.BuildOverviews("NEAREST", 1, &band, nullptr), GIS_FAILED);
        EXPECT_EQ(source.BuildOverviews("NEAREST", 1, nullptr, nullptr), GIS_FAILED);
    }
    EXPECT_EQ(WholeLevels(), Levels());
    EXPECT_EQ(m_folder.Names(), files);
}

TEST_P(PyramidFaults, AnOpenSourceSeesTheNewPyramidAtOnce) {
    ASSERT_EQ(Build(), GIS_SUCCESS);
    CRasterSource source;
    ASSERT_EQ(source.Open(Path().c_str(), GIS_UPDATE, false), GIS_SUCCESS);
    Write(source, 200.0);
    ASSERT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
    GDALRasterBand* band = source.GetGDALDataset()->GetRasterBand(1);
    ASSERT_EQ(band->GetOverviewCount(), static_cast<int>(Levels().size()));
    double value = 0.0;
    ASSERT_EQ(band->GetOverview(1)->RasterIO(GF_Read, 149, 149, 1, 1, &value, 1, 1, GDT_Float64, 0,
                                             0, nullptr),
              CE_None);
    EXPECT_EQ(value, 200.0);
}

TEST(PyramidInside, ThatCannotBeRemovedComesBackWhenItsRebuildIsCancelled) {
    const TemporaryFolder folder;
    CRasterSource source; // holds GDAL
    const CPLConfigOptionSetter inside("USE_RRD", "NO", false);
    const std::string path = WriteRaster(
        folder.File("a.pix"),
        {.width = PYRAMID_SIDE, .height = PYRAMID_SIDE, .driver = "PCIDSK", .overviews = {2}},
        {Pixels(PYRAMID_SIDE * PYRAMID_SIDE, 1.0)});
    RecordingProgress cancelling(0);
    ASSERT_EQ(source.Open(folder.WideFile("a.pix").c_str(), GIS_UPDATE, false), GIS_SUCCESS);
    EXPECT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, &cancelling), GIS_FAILED);
    source.Close();
    const GDALDatasetUniquePtr image(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(image->GetRasterBand(1)->GetOverviewCount(), 1);
    double range[2] = {};
    EXPECT_EQ(image->GetRasterBand(1)->GetOverview(0)->ComputeRasterMinMax(FALSE, range), CE_None);
    EXPECT_EQ(range[0], 1.0);
    EXPECT_EQ(range[1], 1.0);
    EXPECT_EQ(folder.Names(), Names{"a.pix"});
}

namespace {

/// An image on a disk that has no room for its pyramid; none where no disk may be mounted.
class FullDisk : public testing::Test {
  protected:
    FullDisk() : m_disk(m_folder.Path() / "disk") { CGISDataSource::RegisterGDAL(); }
    ~FullDisk() override { CGISDataSource::DestroyGDAL(); }

    void SetUp() override {
        if (!m_disk.IsMounted())
            GTEST_SKIP() << "this user may not mount a small file system";
    }

    /// A GeoTIFF of one band and value 3.
    void WriteImage(int width, int height, const std::vector<int>& overviews = {}) {
        WriteRaster(m_path, {.width = width, .height = height, .overviews = overviews},
                    {Pixels(static_cast<std::size_t>(width) * height, 3.0)});
    }

    GISError Build() {
        CRasterSource source;
        EXPECT_EQ(source.Open(m_folder.WideFile("disk/a.tif").c_str(), GIS_UPDATE, true),
                  GIS_SUCCESS);
        return source.BuildOverviews("NEAREST", 0, nullptr, nullptr);
    }

    int LevelCount() const {
        const GDALDatasetUniquePtr file(GDALDataset::Open(m_path.c_str(), GDAL_OF_RASTER));
        return file->GetRasterBand(1)->GetOverviewCount();
    }

    /// The names on the disk.
    Names OnDisk() const {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path() / "disk"))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    const TemporaryFolder m_folder;
    const SmallDisk m_disk;
    const std::string m_path = m_folder.File("disk/a.tif");
};

void ExpectFullDiskAsReason(const std::string& path) {
    const std::string reason = CGISDataSource::GetLastErrorText();
    EXPECT_EQ(reason.find(path + ": "), 0U) << reason;
    EXPECT_NE(reason.find("No space left on device"), std::string::npos) << reason;
}

} // namespace

TEST_F(FullDisk, ARebuildInsideAGeoTiffFails) {
    const CPLConfigOptionSetter inside("USE_RRD", "NO", false);
    WriteImage(800, 1000, {16});
    EXPECT_EQ(Build(), GIS_FAILED);
    ExpectFullDiskAsReason(m_path);
    EXPECT_EQ(LevelCount(), 0);
    EXPECT_EQ(ReadBand(m_path, 1), Pixels(800000, 3.0));
    EXPECT_EQ(OnDisk(), Names{"a.tif"});
}

TEST_F(FullDisk, APyramidBesideTheImageFailsAndLeavesNothing) {
    for (const char* reducedFiles : {"YES", "NO"}) {
        SCOPED_TRACE(reducedFiles);
        const CPLConfigOptionSetter reduced("USE_RRD", reducedFiles, false);
        const CPLConfigOptionSetter beside("TIFF_USE_OVR", "YES", false);
        WriteImage(950, 1000);
        EXPECT_EQ(Build(), GIS_FAILED);
        EXPECT_EQ(CGISDataSource::GetLastErrorText().find(m_path + ": "), 0U)
            << CGISDataSource::GetLastErrorText();
        EXPECT_EQ(LevelCount(), 0);
        EXPECT_EQ(ReadBand(m_path, 1), Pixels(950000, 3.0));
        EXPECT_EQ(OnDisk(), Names{"a.tif"});
    }
}

TEST_F(FullDisk, ARebuildBesideTheImageLeavesTheFormerPyramid) {
    WriteImage(700, 900);
    ASSERT_EQ(Build(), GIS_SUCCESS);
    const Names names = OnDisk();
    const std::string levels = ReadFile(m_folder.Path() / "disk/a.rrd");
    EXPECT_EQ(Build(), GIS_FAILED);
    EXPECT_EQ(OnDisk(), names);
    EXPECT_EQ(ReadFile(m_folder.Path() / "disk/a.rrd"), levels);
    EXPECT_EQ(LevelCount(), 4);
}

INSTANTIATE_TEST_SUITE_P(
    Places, PyramidFaults,
    testing::Values(Place{"a.tif", RDF_GTiff, true, true}, Place{"a.tif", RDF_GTiff, false, false},
                    Place{"a.img", RDF_HFA, true, true}, Place{"a.img", RDF_HFA, false, true},
                    Place{"a.pix", RDF_PCIDSK, true, true}, Place{"a.pix", RDF_PCIDSK, false, true},
                    Place{"a", RDF_ENVI, true, true}, Place{"a", RDF_ENVI, false, true},
                    Place{"a.bmp", RDF_BMP, true, true}),
    [](const auto& place) { return "Place" + std::to_string(place.index); });
