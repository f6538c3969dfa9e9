// Whatever is decoded on several threads must come out as on one, to the last bit.

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/ZonalStatistics.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/vector/VectorLayer.h"

#include "tests/support/BlockCacheOf.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <array>
#include <bit>
#include <functional>
#include <random>

using zelto::test::Pixels;
using zelto::test::RasterSpec;

namespace {

using Answers = std::vector<std::uint64_t>;

void Note(Answers& answers, double value) {
    answers.push_back(std::bit_cast<std::uint64_t>(value));
}

/// A scene that is large enough for threads, in one of the ways files store their samples.
class Threads : public testing::Test {
  protected:
    static constexpr int WIDTH = 2300;
    static constexpr int HEIGHT = 800;
    static constexpr int BANDS = 3;

    Threads() { CGISDataSource::RegisterGDAL(); }
    ~Threads() override { CGISDataSource::DestroyGDAL(); }

    /// @param noise range of what is added to every pixel
    std::string Write(GDALDataType type, const std::vector<std::string>& options,
                      unsigned noise = 20) {
        RasterSpec spec{.width = WIDTH,
                        .height = HEIGHT,
                        .type = type,
                        .geoTransform = zelto::test::NorthUp(0, HEIGHT, 1),
                        .options = options};
        spec.options.insert(spec.options.end(), {"COMPRESS=DEFLATE", "ZLEVEL=1"});
        if (m_random() % 2 == 0)
            spec.noData = 17.0;
        std::vector<Pixels> bands;
        for (int b = 0; b < BANDS; ++b)
            bands.push_back(zelto::test::MakePixels(WIDTH, HEIGHT, [&](int x, int y) {
                return static_cast<double>((x / 70 + y / 50 + b * 40) % 200 + m_random() % noise);
            }));
        return zelto::test::WriteRaster(m_folder.File("scene.tif"), spec, bands);
    }

    /// Runs the work with one, two and five threads and expects the same answers.
    static void ExpectSame(const std::function<Answers()>& work) {
        std::vector<Answers> found;
        for (const char* threads : {"1", "2", "5"}) {
            const CPLConfigOptionSetter number("GDAL_NUM_THREADS", threads, false);
            found.push_back(work());
        }
        EXPECT_FALSE(found[0].empty());
        EXPECT_EQ(found[0], found[1]);
        EXPECT_EQ(found[0], found[2]);
    }

    using SourceWork = std::function<Answers(CRasterSource& source)>;

    /// Does so for every way of storing samples.
    /// @param change is made to every file before it is opened
    void ForEveryLayout(
        const SourceWork& work,
        const std::function<void(const std::string& path)>& change = [](const std::string&) {}) {
        const std::vector<std::pair<GDALDataType, std::vector<std::string>>> layouts = {
            {GDT_UInt16, {"INTERLEAVE=PIXEL", "TILED=YES"}},
            {GDT_UInt16, {"INTERLEAVE=BAND", "TILED=YES"}},
            {GDT_Float32, {"INTERLEAVE=PIXEL"}},
            {GDT_Int32, {"INTERLEAVE=BAND"}}};
        for (const auto& [type, options] : layouts) {
            SCOPED_TRACE(options.front());
            const std::string path = Write(type, options);
            change(path);
            ExpectSame([&] {
                CRasterSource source;
                source.SetForDisplay(true);
                // The threads of GDAL's own that a handle would have are another matter.
                {
                    const CPLConfigOptionSetter none("GDAL_NUM_THREADS", "1", false);
                    EXPECT_EQ(source.Open(zelto::test::Wide(path).c_str(), GIS_READONLY, true),
                              GIS_SUCCESS);
                }
                return work(source);
            });
        }
    }

    /// Makes a block from the middle of the first band unreadable.
    void DamageABlock(const std::string& path) {
        std::string place;
        {
            const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
            GDALRasterBand& band = *dataset->GetRasterBand(1);
            int width = 0;
            int height = 0;
            band.GetBlockSize(&width, &height);
            const int columns = (WIDTH + width - 1) / width;
            const int row = HEIGHT / height / 2;
            const std::string item = "BLOCK_OFFSET_" +
                                     std::to_string(m_random() % static_cast<unsigned>(columns)) +
                                     '_' + std::to_string(row);
            place = band.GetMetadataItem(item.c_str(), "TIFF");
        }
        std::string bytes = zelto::test::ReadFile(path);
        bytes.replace(std::stoul(place), 64, 64, '\xFF');
        zelto::test::WriteFile(path, bytes);
    }

    const unsigned m_seed = std::random_device{}();
    const testing::ScopedTrace m_trace{__FILE__, __LINE__, m_seed};
    std::mt19937 m_random{m_seed};
    zelto::test::TemporaryFolder m_folder;
};

Answers AnswersOf(CRegionStatistics& statistics) {
    Answers answers;
    EXPECT_EQ(statistics.ComputePercentiles(2, 98, nullptr), GIS_SUCCESS);
    for (const CRegionStatistics::Band& band : statistics.GetBands()) {
        answers.push_back(static_cast<std::uint64_t>(band.count));
        for (const double value : {band.minimum, band.maximum, band.mean, band.standardDeviation,
                                   band.lowPercentile, band.highPercentile})
            Note(answers, value);
    }
    for (const double value : statistics.GetCovariance())
        Note(answers, value);
    std::vector<__int64> counts(64);
    EXPECT_EQ(statistics.ComputeHistogram(1, 0.0, 4.0, counts, nullptr), GIS_SUCCESS);
    answers.insert(answers.end(), counts.begin(), counts.end());
    return answers;
}

} // namespace

TEST_F(Threads, ChangeNoStatisticsOfARegion) {
    ForEveryLayout([](CRasterSource& source) {
        CRegionStatistics statistics(&source);
        CAOISource area;
        auto* polygon = new CDrawPolygon;
        for (const auto& [x, y] : {std::pair(100, 100), std::pair(2200, 300), std::pair(900, 750)})
            polygon->AddVertex(CPoint2D(x, y));
        polygon->m_complete = true;
        EXPECT_TRUE(area.AddDrawShape(polygon));
        statistics.SetAOI(&area);
        EXPECT_EQ(statistics.ComputeWithCovariance(nullptr), GIS_SUCCESS);
        Answers answers = AnswersOf(statistics);
        statistics.SetAOI(nullptr);
        EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        EXPECT_EQ(statistics.ComputeCovariance(nullptr), GIS_SUCCESS);
        const Answers whole = AnswersOf(statistics);
        answers.insert(answers.end(), whole.begin(), whole.end());
        return answers;
    });
}

TEST_F(Threads, ChangeNoSumsOfARegion) {
    ForEveryLayout([](CRasterSource& source) {
        CRegionStatistics statistics(&source);
        statistics.SetBox(CBoundingBox(17, 790, 2290, 8));
        std::vector<CRegionStatistics::Sums> sums;
        EXPECT_EQ(statistics.ComputeSums(sums, nullptr), GIS_SUCCESS);
        Answers answers;
        for (const auto& ofBand : sums) {
            answers.insert(answers.end(), ofBand.sum.begin(), ofBand.sum.end());
            answers.insert(answers.end(), ofBand.squares.begin(), ofBand.squares.end());
        }
        return answers;
    });
}

TEST_F(Threads, ChangeNoZone) {
    ForEveryLayout([](CRasterSource& source) {
        Answers answers;
        for (const auto weights :
             {CZonalStatistics::Weights::Center, CZonalStatistics::Weights::Coverage}) {
            CZonalStatistics statistics(&source);
            statistics.SetWeights(weights);
            EXPECT_TRUE(statistics.SetQuantiles({0.1, 0.5}));
            for (const double left : {10.5, 100.25, 2000.0}) {
                OGRLinearRing ring;
                for (const auto& [x, y] : {std::pair(0.0, 20.0), std::pair(150.0, 400.5),
                                           std::pair(200.0, 780.0), std::pair(0.0, 20.0)})
                    ring.addPoint(left + x, y);
                OGRPolygon zone;
                zone.addRing(&ring);
                EXPECT_TRUE(statistics.AddZone(&zone));
            }
            EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
            for (int zone = 0; zone < statistics.GetZoneCount(); ++zone)
                for (const CZonalStatistics::Band& band : statistics.GetZone(zone)) {
                    for (const double value :
                         {band.weight, band.minimum, band.maximum, band.sum, band.mean,
                          band.standardDeviation, band.quantiles[0], band.quantiles[1]})
                        Note(answers, value);
                }
        }
        return answers;
    });
}

TEST_F(Threads, ChangeNoReasonOfAFailure) {
    const auto damage = [this](const std::string& path) { DamageABlock(path); };
    ForEveryLayout(
        [](CRasterSource& source) {
            CRegionStatistics statistics(&source);
            zelto::test::RecordingProgress progress;
            EXPECT_EQ(statistics.Compute(&progress), GIS_FAILED);
            const std::string reason = CGISDataSource::GetLastErrorText();
            EXPECT_FALSE(reason.empty());
            Answers answers(reason.begin(), reason.end());
            answers.push_back(progress.m_steps.size());
            // Of the sample a pixel may be wanted that cannot be read, or none.
            for (int b = 0; b < BANDS; ++b)
                Note(answers, source.GetRasterBand(b)->GetMean());
            return answers;
        },
        damage);
}

TEST_F(Threads, ChangeNoStepOfACancelledWork) {
    ForEveryLayout([](CRasterSource& source) {
        Answers answers;
        for (const int steps : {0, 1, 7}) {
            CRegionStatistics statistics(&source);
            zelto::test::RecordingProgress progress(steps);
            EXPECT_EQ(statistics.ComputeWithCovariance(&progress), GIS_FAILED);
            EXPECT_EQ(progress.m_steps.size(), static_cast<std::size_t>(steps) + 1);
            for (const auto& [percent, message] : progress.m_steps)
                answers.push_back(static_cast<std::uint64_t>(percent));
        }
        return answers;
    });
}

TEST_F(Threads, ChangeNoStatisticsUnderAShape) {
    ForEveryLayout([](CRasterSource& source) {
        CDrawPolygon polygon;
        for (const auto& [x, y] : {std::pair(50, 60), std::pair(2250, 40), std::pair(1200, 780)})
            polygon.AddVertex(CPoint2D(x, y));
        polygon.m_complete = true;
        __int64 count = 0;
        std::array<std::array<double, BANDS>, 3> found{};
        std::array<double, std::size_t{BANDS} * BANDS> covariance{};
        EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromDrawshape(
            &source, &polygon, count, found[0].data(), found[1].data(), found[2].data(),
            covariance.data(), nullptr));
        Answers answers = {static_cast<std::uint64_t>(count)};
        for (const auto& values : found)
            for (const double value : values)
                Note(answers, value);
        for (const double value : covariance)
            Note(answers, value);
        return answers;
    });
}

TEST_F(Threads, ChangeNoStatisticsOfASample) {
    // Of images that GDAL's cache cannot keep.
    const zelto::test::BlockCacheOf cache(GIntBig{5} << 20);
    ForEveryLayout([](CRasterSource& source) {
        Answers answers;
        for (int b = 0; b < BANDS; ++b)
            for (const double value :
                 {source.GetRasterBand(b)->GetMinimum(), source.GetRasterBand(b)->GetMaximum(),
                  source.GetRasterBand(b)->GetMean(),
                  source.GetRasterBand(b)->GetStandardDeviation()})
                Note(answers, value);
        return answers;
    });
}

TEST_F(Threads, ChangeNoStatisticsAndHistogramsOfABand) {
    ForEveryLayout([](CRasterSource& source) {
        Answers answers;
        CRasterBand& band = *source.GetRasterBand(1);
        std::array<double, 4> found{};
        EXPECT_TRUE(
            band.ComputeStatics(&found[0], &found[1], &found[2], &found[3], false, nullptr));
        for (const double value : found)
            Note(answers, value);
        std::array<int, 100> counts{};
        EXPECT_TRUE(band.GetHistogram(0, 220, 100, counts.data(), false, false, nullptr));
        answers.insert(answers.end(), counts.begin(), counts.end());
        return answers;
    });
}

TEST_F(Threads, ChangeNoView) {
    ForEveryLayout([](CRasterSource& source) {
        Answers answers;
        // Windows that the cache cannot keep are read together.
        for (const GIntBig bytes : {GIntBig{5} << 20, GIntBig{256} << 20}) {
            const zelto::test::BlockCacheOf cache(bytes);
            for (CBoundingBox box : {source.GetExtent(), CBoundingBox(13, 790, 2211, 5)}) {
                std::vector<unsigned char> image(std::size_t{400} * 174 * 4);
                EXPECT_TRUE(source.GetShowData(&box, 400, 174, image.data(), true));
                answers.insert(answers.end(), image.begin(), image.end());
                unsigned char* planes[] = {image.data(), image.data() + 400 * 174,
                                           image.data() + 2 * 400 * 174};
                EXPECT_TRUE(source.GetShowData(&box, 400, 174, 3, planes, nullptr, false));
                answers.insert(answers.end(), image.begin(), image.end());
            }
        }
        return answers;
    });
}

TEST_F(Threads, ChangeNoPyramid) {
    for (const char* resampling : {"NEAREST", "AVERAGE"})
        for (const GISDataAccess access : {GIS_READONLY, GIS_UPDATE}) {
            const std::string path = Write(GDT_UInt16, {"INTERLEAVE=PIXEL", "TILED=YES"});
            const std::string original = zelto::test::ReadFile(path);
            ExpectSame([&] {
                const zelto::test::TemporaryFolder folder;
                zelto::test::WriteFile(folder.Path() / "a.tif", original);
                {
                    CRasterSource source;
                    EXPECT_EQ(source.Open(folder.WideFile("a.tif").c_str(), access, true),
                              GIS_SUCCESS);
                    EXPECT_EQ(source.BuildOverviews(resampling, 0, nullptr, nullptr), GIS_SUCCESS);
                }
                Answers answers;
                for (const std::string& name : folder.Names()) {
                    const std::string bytes = zelto::test::ReadFile(folder.Path() / name);
                    answers.push_back(std::hash<std::string>{}(name));
                    answers.push_back(std::hash<std::string>{}(bytes));
                }
                return answers;
            });
        }
}

TEST_F(Threads, ChangeNoPolygon) {
    const std::string path = Write(GDT_Byte, {"INTERLEAVE=PIXEL", "TILED=YES"}, 1);
    ExpectSame([&] {
        CRasterSource source;
        EXPECT_EQ(source.Open(zelto::test::Wide(path).c_str(), GIS_READONLY, true), GIS_SUCCESS);
        const GDALDatasetUniquePtr memory(GetGDALDriverManager()->GetDriverByName("Memory")->Create(
            "", 0, 0, 0, GDT_Unknown, nullptr));
        OGRLayer* layer = memory->CreateLayer("polygons", nullptr, wkbPolygon, nullptr);
        OGRFieldDefn field("value", OFTInteger);
        EXPECT_EQ(layer->CreateField(&field), OGRERR_NONE);
        CVectorLayer target(layer);
        EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source.GetRasterBand(0), nullptr, &target, 0,
                                                     nullptr, nullptr, L""),
                  GIS_SUCCESS);
        Answers answers = {static_cast<std::uint64_t>(layer->GetFeatureCount())};
        std::uint64_t sum = 0;
        for (const auto& feature : *layer)
            sum = sum * 31 + static_cast<std::uint64_t>(feature->GetFieldAsInteger(0)) +
                  static_cast<std::uint64_t>(feature->GetGeometryRef()->WkbSize());
        answers.push_back(sum);
        return answers;
    });
}
