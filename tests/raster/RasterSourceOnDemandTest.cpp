#include "zelto/display/ComposedRaster.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>

namespace fs = std::filesystem;

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::TemporaryFolder;

namespace {

/// A source and everything it answered, as bits.
struct Host {
    CRasterSource source;
    std::vector<std::uint64_t> answers;

    void Note(double value) { answers.push_back(std::bit_cast<std::uint64_t>(value)); }
    void NoteStatistics(const CRasterBand& band) {
        Note(band.GetMinimum());
        Note(band.GetMaximum());
        Note(band.GetMean());
        Note(band.GetStandardDeviation());
        Note(band.GetStdDevLowerBound());
        Note(band.GetStdDevUpperBound());
    }
};

/// One call of a host, chosen by number, with arguments from `random`.
void Act(Host& host, int action, std::mt19937 random) {
    CRasterSource& source = host.source;
    CRasterBand* band =
        source.GetRasterBand(static_cast<int>(random() % std::max(source.GetBandCount(), 1)));
    if (band == nullptr)
        return;
    const auto stretch = static_cast<StretchType>(random() % 10);
    double values[4] = {};
    std::array<int, 32> counts{};
    CBoundingBox box = source.GetExtent();
    std::vector<unsigned char> picture(std::size_t{24} * 24 * 4);
    switch (action) {
    case 0:
        host.Note(band->GetMean());
        break;
    case 1:
        host.NoteStatistics(*band);
        break;
    case 2:
        band->SetNoDataValue(static_cast<double>(random() % 200), false);
        break;
    case 3:
        band->ClearNoDataValue(false);
        break;
    case 4:
        host.Note(band->ComputeMinMax(&values[0], &values[1], random() % 2 == 0));
        host.Note(values[0]);
        host.Note(values[1]);
        break;
    case 5:
        band->StoreMinMax(-3.0, 1000.0);
        break;
    case 6:
        host.Note(band->ComputeStatics(&values[0], &values[1], &values[2], &values[3],
                                       random() % 2 == 0, nullptr));
        for (const double value : values)
            host.Note(value);
        break;
    case 7:
        host.Note(band->EnableHistogramEqualize());
        break;
    case 8:
        band->SetStretchType(stretch);
        host.Note(band->Convert2ShowValue(static_cast<double>(random() % 300)));
        break;
    case 9:
        host.Note(band->Convert2Byte(static_cast<double>(random() % 300)));
        break;
    case 10:
        source.SetStretchType(stretch);
        host.Note(source.GetShowData(&box, 24, 24, picture.data(), true));
        host.answers.insert(host.answers.end(), picture.begin(), picture.end());
        break;
    case 11:
        host.Note(band->GetHistogram(0.0, 255.0, 32, counts.data(), false, true, nullptr));
        host.answers.insert(host.answers.end(), counts.begin(), counts.end());
        break;
    case 12:
        for (int i = 0; i < band->GetOverviewCount(); ++i)
            host.NoteStatistics(*band->GetOverview(i));
        break;
    case 13:
        host.Note(source.Reopen(GIS_READONLY, random() % 2 == 0));
        break;
    case 14: {
        CRasterSource other;
        other.CopyDisplaySetting(&source);
        host.Note(other.GetStretchType());
        break;
    }
    case 15: {
        CComposedRaster composed;
        CRasterBand* other = source.GetRasterBand(source.GetBandCount() - 1);
        host.Note(composed.CreateRaster(&source, band, &source, other, &source, band));
        host.Note(composed.GetShowData(&box, 24, 24, picture.data(), random() % 2 == 0));
        host.answers.insert(host.answers.end(), picture.begin(), picture.end());
        break;
    }
    default:
        host.Note(band->SetNoDataValue(static_cast<double>(random() % 200), true));
        break;
    }
}

constexpr int ACTIONS = 17;

enum class Opening { Display, Plain, Simple, Warped };

bool OpenAs(CRasterSource& source, const std::string& path, Opening opening) {
    source.SetForDisplay(opening != Opening::Plain);
    const std::wstring wide = zelto::test::Wide(path);
    if (opening == Opening::Simple)
        return source.OpenSimple(wide.c_str(), GIS_READONLY, true) == GIS_SUCCESS;
    if (opening == Opening::Warped)
        return source.OpenAndWarped(wide.c_str(), GIS_READONLY, "EPSG:3857") == GIS_SUCCESS;
    return source.Open(wide.c_str(), GIS_READONLY, true) == GIS_SUCCESS;
}

/// Both ways of opening, the same calls in the same order, the same answers. Each has a folder
/// of its own, because a no-data value may be written beside the file.
void ExpectSameAnswers(const std::string& eagerPath, const std::string& path, unsigned seed) {
    for (const Opening opening :
         {Opening::Display, Opening::Plain, Opening::Simple, Opening::Warped}) {
        Host eager;
        Host host;
        eager.source.SetSampleAtOpening(true);
        if (!OpenAs(eager.source, eagerPath, opening))
            continue;
        ASSERT_TRUE(OpenAs(host.source, path, opening));
        std::mt19937 random(seed);
        for (int step = 0; step < 12; ++step) {
            const int action = static_cast<int>(random() % ACTIONS);
            const std::mt19937 arguments(random());
            Act(eager, action, arguments);
            Act(host, action, arguments);
            ASSERT_EQ(eager.answers, host.answers)
                << path << ", opening " << static_cast<int>(opening) << ", step " << step
                << ", action " << action << ", seed " << seed;
        }
        for (int i = 0; i < host.source.GetBandCount(); ++i) {
            eager.NoteStatistics(*eager.source.GetRasterBand(i));
            host.NoteStatistics(*host.source.GetRasterBand(i));
        }
        EXPECT_EQ(eager.answers, host.answers) << path << ", seed " << seed;
    }
}

class StatisticsOnDemand : public testing::Test {
  protected:
    StatisticsOnDemand() { CGISDataSource::RegisterGDAL(); }
    ~StatisticsOnDemand() override { CGISDataSource::DestroyGDAL(); }

    std::wstring Write(const std::string& name, const zelto::test::RasterSpec& spec,
                       const std::vector<Pixels>& bands) {
        return zelto::test::Wide(zelto::test::WriteRaster(m_folder.File(name), spec, bands));
    }
    /// The directory stays, the compressed samples of a block become rubbish.
    void Damage(const std::string& name, const char* block) {
        GDALDatasetUniquePtr dataset(
            GDALDataset::Open(m_folder.File(name).c_str(), GDAL_OF_RASTER));
        const char* offset = dataset->GetRasterBand(1)->GetMetadataItem(block, "TIFF");
        ASSERT_NE(offset, nullptr);
        std::fstream file(m_folder.Path() / name, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(std::stoll(offset));
        file << std::string(64, '\xFF');
    }

    TemporaryFolder m_folder;
};

int s_errors = 0;

void CPL_STDCALL CountErrors(CPLErr severity, CPLErrorNum /*number*/, const char* /*message*/) {
    s_errors += severity >= CE_Failure ? 1 : 0;
}

const Pixels RAMP = MakePixels(90, 70, [](int c, int r) { return (c * 7 + r * 13) % 251; });

} // namespace

TEST_F(StatisticsOnDemand, OpeningForReadingReadsNoPixels) {
    const std::wstring path = Write("broken.tif",
                                    {.width = 90,
                                     .height = 70,
                                     .type = GDT_Int16,
                                     .options = {"COMPRESS=DEFLATE", "BLOCKYSIZE=70"}},
                                    {RAMP});
    Damage("broken.tif", "BLOCK_OFFSET_0_0");
    const CPLErrorHandlerPusher counting(CountErrors);
    s_errors = 0;
    CRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(s_errors, 0) << "nothing has been read";
    EXPECT_EQ(source.GetRasterBand(0)->GetMinimum(), -32768.0);
    EXPECT_GT(s_errors, 0);
    EXPECT_EQ(source.GetRasterBand(0)->GetMaximum(), 32768.0);
    EXPECT_EQ(source.GetRasterBand(0)->GetMean(), 0.0);

    s_errors = 0;
    CRasterSource eager;
    eager.SetSampleAtOpening(true);
    ASSERT_EQ(eager.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_GT(s_errors, 0) << "the bands are sampled at opening";
}

TEST_F(StatisticsOnDemand, BytesStretchedBetweenBoundsNeedNone) {
    const std::wstring path =
        Write("half.tif",
              {.width = 128,
               .height = 64,
               .geoTransform = zelto::test::NorthUp(0, 64, 1),
               .options = {"COMPRESS=DEFLATE", "TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}},
              {MakePixels(128, 64, [](int c, int r) { return (c * 7 + r * 13) % 251; })});
    Damage("half.tif", "BLOCK_OFFSET_1_0");
    const CPLErrorHandlerPusher counting(CountErrors);
    CRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    source.SetStretchType(StretchZoomLinear002);
    source.GetRasterBand(0)->SetStretchData(StretchZoomLinear002, 0, 0, 20, 200, 0, 0);
    CBoundingBox box(16, 48, 32, 32);
    std::vector<unsigned char> picture(std::size_t{16} * 16 * 4);
    s_errors = 0;
    ASSERT_TRUE(source.GetShowData(&box, 16, 16, picture.data(), false));
    EXPECT_EQ(s_errors, 0) << "the other half was not read";
    source.SetStretchType(StretchLinear);
    source.GetShowData(&box, 16, 16, picture.data(), false);
    EXPECT_GT(s_errors, 0);
}

TEST_F(StatisticsOnDemand, ANoDataValueSetInMemoryComesTooLate) {
    const std::wstring path = Write("a.tif", {.width = 2, .height = 1, .noData = 4.0}, {{4, 20}});
    CRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    CRasterBand& band = *source.GetRasterBand(0);
    band.SetNoDataValue(20.0, false);
    EXPECT_EQ(band.GetMinimum(), 20.0);
    EXPECT_EQ(band.GetMean(), 20.0);
}

TEST_F(StatisticsOnDemand, APyramidBuiltLaterChangesNothing) {
    constexpr int SIDE = 3000;
    const std::wstring path =
        Write("large.tif", {.width = SIDE, .height = SIDE, .type = GDT_UInt16},
              {MakePixels(SIDE, SIDE, [](int c, int r) { return (c * 31 + r * 17) % 9973; })});
    CRasterSource eager;
    eager.SetSampleAtOpening(true);
    ASSERT_EQ(eager.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    const double mean = eager.GetRasterBand(0)->GetMean();
    eager.Close();
    CRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    ASSERT_EQ(source.BuildOverviews("AVERAGE", 0, nullptr, nullptr), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterBand(0)->GetMean(), mean);
}

TEST_F(StatisticsOnDemand, ASourceOpenForUpdateLooksAtOpening) {
    const std::wstring path = Write("a.tif", {.width = 2, .height = 1}, {{10, 20}});
    CRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    unsigned char value = 200;
    ASSERT_EQ(source.SetPixel(&value, 0, 0), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterBand(0)->GetMaximum(), 20.0);
}

TEST_F(StatisticsOnDemand, ReopeningForUpdateLooksAtOpeningToo) {
    const std::wstring path = Write("a.tif", {.width = 2, .height = 1}, {{10, 20}});
    CRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    ASSERT_EQ(source.Reopen(GIS_UPDATE, false), GIS_SUCCESS);
    EXPECT_EQ(source.GetAccess(), GIS_READONLY) << "the access of the first opening";
    unsigned char value = 200;
    ASSERT_EQ(source.SetPixel(&value, 0, 0), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterBand(0)->GetMaximum(), 20.0);
}

TEST_F(StatisticsOnDemand, ManyThreadsMayBeTheFirstToAsk) {
    const auto band = [](int b) {
        return MakePixels(400, 300,
                          [b](int c, int r) { return (c * 7 + r * 13 + b * 31) % 60000; });
    };
    const std::wstring path = Write("bands.tif",
                                    {.width = 400,
                                     .height = 300,
                                     .type = GDT_UInt16,
                                     .options = {"INTERLEAVE=PIXEL", "COMPRESS=DEFLATE"}},
                                    {band(0), band(1), band(2), band(3)});
    Host eager;
    eager.source.SetSampleAtOpening(true);
    ASSERT_EQ(eager.source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    for (int b = 0; b < 4; ++b)
        eager.NoteStatistics(*eager.source.GetRasterBand(b));
    eager.source.Close(); // What it found would be known to the others.
    for (int round = 0; round < 20; ++round) {
        Host host;
        ASSERT_EQ(host.source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
        std::array<std::vector<std::uint64_t>, 8> answers;
        {
            std::vector<std::jthread> threads;
            for (std::size_t t = 0; t < answers.size(); ++t)
                threads.emplace_back([&, t] {
                    for (std::size_t i = 0; i < 4; ++i)
                        answers[t].push_back(std::bit_cast<std::uint64_t>(
                            host.source.GetRasterBand(static_cast<int>((t + i) % 4))->GetMean()));
                });
        }
        for (int b = 0; b < 4; ++b)
            host.NoteStatistics(*host.source.GetRasterBand(b));
        EXPECT_EQ(host.answers, eager.answers);
        for (std::size_t t = 0; t < answers.size(); ++t)
            for (std::size_t i = 0; i < 4; ++i)
                EXPECT_EQ(answers[t][i], eager.answers[(t + i) % 4 * 6 + 2]);
    }
}

TEST_F(StatisticsOnDemand, OfAFileThatIsOpenAreTakenOnceForAllItsSources) {
    const std::wstring path = Write("twice.tif",
                                    {.width = 90,
                                     .height = 70,
                                     .type = GDT_Int16,
                                     .options = {"COMPRESS=DEFLATE", "BLOCKYSIZE=70"}},
                                    {RAMP});
    const fs::path file = m_folder.Path() / "twice.tif";
    const auto written = fs::last_write_time(file);
    CRasterSource first;
    ASSERT_EQ(first.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(first.GetRasterBand(0)->GetMaximum(), 250.0);

    // Whoever reads the pixels once more meets rubbish.
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    Damage("twice.tif", "BLOCK_OFFSET_0_0");
    fs::last_write_time(file, written);
    CRasterSource second;
    ASSERT_EQ(second.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    first.Close();
    EXPECT_EQ(second.GetRasterBand(0)->GetMaximum(), 250.0);

    second.Close();
    ASSERT_EQ(second.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(second.GetRasterBand(0)->GetMaximum(), 32768.0) << "of its type, for want of pixels";
}

TEST_F(StatisticsOnDemand, OfAFileThatWasChangedAreTakenAnew) {
    const zelto::test::RasterSpec spec{
        .width = 90, .height = 70, .type = GDT_Int16, .options = {"COMPRESS=DEFLATE"}};
    const std::wstring path = Write("changed.tif", spec, {RAMP});
    CRasterSource first;
    ASSERT_EQ(first.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(first.GetRasterBand(0)->GetMaximum(), 250.0);

    Write("other.tif", spec, {Pixels(RAMP.size(), 7.0)});
    fs::rename(m_folder.Path() / "other.tif", m_folder.Path() / "changed.tif");
    CRasterSource second;
    ASSERT_EQ(second.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(second.GetRasterBand(0)->GetMaximum(), 7.0);
    EXPECT_EQ(first.GetRasterBand(0)->GetMaximum(), 250.0);
}

TEST_F(StatisticsOnDemand, AnswersWhatSamplingAtOpeningAnswersInAnyOrder) {
    const unsigned seed = std::random_device{}();
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    for (const std::string name : {"plain.tif", "nodata.tif", "float.tif", "pyramid.tif"}) {
        zelto::test::RasterSpec spec{.width = 90, .height = 70, .type = GDT_UInt16};
        if (name == "nodata.tif")
            spec.noData = 3.0;
        if (name == "float.tif")
            spec.type = GDT_Float32;
        if (name == "pyramid.tif")
            spec.overviews = {2, 4};
        for (unsigned round = 0; round < 10; ++round) {
            const TemporaryFolder first;
            const TemporaryFolder second;
            ExpectSameAnswers(zelto::test::WriteRaster(first.File(name), spec, {RAMP, RAMP, RAMP}),
                              zelto::test::WriteRaster(second.File(name), spec, {RAMP, RAMP, RAMP}),
                              seed + round);
        }
    }
}

TEST_F(StatisticsOnDemand, AnswersTheSameForTheRealRasters) {
    ZELTO_REQUIRE_TEST_DATA();
    const unsigned seed = std::random_device{}();
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const TemporaryFolder first;
    const TemporaryFolder second;
    for (const auto* folder : {&first, &second})
        fs::copy(zelto::test::TestDataFile("raster"), folder->Path(), fs::copy_options::recursive);
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(first.Path()))
        if (entry.is_regular_file())
            names.push_back(fs::relative(entry.path(), first.Path()).string());
    std::sort(names.begin(), names.end());
    // All of them take minutes: every run has others.
    std::mt19937 random(seed);
    std::shuffle(names.begin(), names.end(), random);
    names.resize(std::min<std::size_t>(names.size(), 50));
    for (const std::string& name : names)
        ExpectSameAnswers(first.File(name), second.File(name), seed);
}
