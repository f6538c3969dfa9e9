// Eight threads with sources of their own, on files of their own or all on the same: every answer
// is the one that a single thread gets. `./dev tsan` runs this under the thread sanitizer.

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/display/ComposedRaster.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace {

using zelto::test::TemporaryFolder;

constexpr int THREADS = 8;

/// All answers of a piece of work, to be compared.
using Answers = std::vector<double>;

/// Lets eight threads do the work at the same time, as often as given.
/// @param work takes the number of its thread
/// @return each thread's last answers
std::vector<Answers> OnEight(const std::function<Answers(int)>& work, int times = 4) {
    std::vector<Answers> answers(THREADS);
    std::atomic<int> ready = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < THREADS; ++number)
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < THREADS)
                std::this_thread::yield();
            for (int i = 0; i < times; ++i)
                answers[number] = work(number);
        });
    for (std::thread& thread : threads)
        thread.join();
    return answers;
}

/// Eight images that differ, and eight areas.
class EightThreads : public testing::Test {
  public:
    static void SetUpTestSuite() {
        s_folder = std::make_unique<TemporaryFolder>();
        CGISDataSource::RegisterGDAL();
        for (int number = 0; number < THREADS; ++number) {
            WriteImage(number);
            WriteArea(number);
        }
        CGISDataSource::DestroyGDAL();
    }
    static void TearDownTestSuite() { s_folder.reset(); }

  protected:
    /// The same answers as those of one thread after the other, from the same file and from one
    /// for each.
    static void ExpectAsInTurn(const std::function<Answers(int)>& work) {
        Answers inTurn[THREADS];
        for (int number = 0; number < THREADS; ++number)
            inTurn[number] = work(number);
        ASSERT_FALSE(inTurn[0].empty());
        EXPECT_NE(inTurn[0], inTurn[1]); // or the files would be no different
        const std::vector<Answers> apart = OnEight(work);
        const std::vector<Answers> together = OnEight([&](int) { return work(0); });
        for (int number = 0; number < THREADS; ++number) {
            EXPECT_EQ(apart[number], inTurn[number]) << number;
            EXPECT_EQ(together[number], inTurn[0]) << number;
        }
    }

    static std::wstring Image(int number) {
        return s_folder->WideFile("image" + std::to_string(number) + ".tif");
    }
    static std::wstring Area(int number) {
        return s_folder->WideFile("area" + std::to_string(number) + ".aif");
    }

  private:
    static void WriteImage(int number) {
        constexpr int SIDE = 160;
        const auto value = [number](int column, int row) {
            return (column * (number + 3) + row * 7) % 251;
        };
        zelto::test::RasterSpec spec = {.width = SIDE, .height = SIDE};
        spec.geoTransform = zelto::test::NorthUp(500000.0, 4000000.0, 1.0);
        spec.srs = "EPSG:32650";
        zelto::test::WriteRaster(
            s_folder->File("image" + std::to_string(number) + ".tif"), spec,
            std::vector<zelto::test::Pixels>(3, zelto::test::MakePixels(SIDE, SIDE, value)));
    }
    static void WriteArea(int number) {
        CAOISource area;
        auto ellipse = std::make_unique<CDrawEllipse>();
        ellipse->AddVertex(CPoint2D(500010.0 + number, 3999990.0));
        ellipse->AddVertex(CPoint2D(500120.0, 3999880.0));
        ASSERT_TRUE(area.AddDrawShape(ellipse.get()));
        ellipse.release(); // the area's now
        ASSERT_EQ(area.SaveAs(Area(number).c_str(), VDF_AOI), GIS_SUCCESS);
    }

    static std::unique_ptr<TemporaryFolder> s_folder;
};

std::unique_ptr<TemporaryFolder> EightThreads::s_folder;

/// The bytes of a picture as answers.
Answers FromBytes(const std::vector<unsigned char>& bytes) {
    return {bytes.begin(), bytes.end()};
}

} // namespace

TEST_F(EightThreads, DrawTheSamePictures) {
    ExpectAsInTurn([](int number) {
        CRasterSource source;
        source.SetForDisplay(true);
        if (source.Open(Image(number).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            return Answers();
        source.SetStretchType(StretchLinear);
        CBoundingBox box(500000.0, 4000000.0, 500160.0, 3999840.0);
        constexpr int SIDE = 200;
        std::vector<unsigned char> picture(SIDE * SIDE * 4);
        if (!source.GetShowData(&box, SIDE, SIDE, picture.data(), true))
            return Answers();
        return FromBytes(picture);
    });
}

TEST_F(EightThreads, DrawTheSameMaskedPlanes) {
    ExpectAsInTurn([](int number) {
        CRasterSource source;
        source.SetForDisplay(true);
        CAOISource area;
        if (source.Open(Image(number).c_str(), GIS_READONLY, true) != GIS_SUCCESS ||
            area.Open(Area(number).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            return Answers();
        CRasterAOI region(&source, &area);
        CBoundingBox box(500000.0, 4000000.0, 500160.0, 3999840.0);
        constexpr int SIDE = 100;
        std::vector<unsigned char> planes(SIDE * SIDE * 3);
        unsigned char* pointers[] = {planes.data(), planes.data() + SIDE * SIDE,
                                     planes.data() + SIDE * SIDE * 2};
        if (!source.GetShowData(&box, SIDE, SIDE, 3, pointers, &region, false))
            return Answers();
        return FromBytes(planes);
    });
}

TEST_F(EightThreads, ComposeTheSamePictures) {
    ExpectAsInTurn([](int number) {
        CRasterSource red;
        CRasterSource blue;
        if (red.Open(Image(number).c_str(), GIS_READONLY, true) != GIS_SUCCESS ||
            blue.Open(Image((number + 1) % THREADS).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            return Answers();
        CComposedRaster composed;
        if (composed.CreateRaster(&red, red.GetRasterBand(0), &red, red.GetRasterBand(1), &blue,
                                  blue.GetRasterBand(0)) != GIS_SUCCESS)
            return Answers();
        CBoundingBox box = composed.GetExtent();
        constexpr int SIDE = 120;
        std::vector<unsigned char> picture(SIDE * SIDE * 4);
        if (!composed.GetShowData(&box, SIDE, SIDE, picture.data(), true))
            return Answers();
        return FromBytes(picture);
    });
}

TEST_F(EightThreads, FindTheSameStatistics) {
    ExpectAsInTurn([](int number) {
        CRasterSource source;
        CAOISource area;
        if (source.Open(Image(number).c_str(), GIS_READONLY, true) != GIS_SUCCESS ||
            area.Open(Area(number).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            return Answers();
        CRasterAOI region(&source, &area);
        __int64 count = 0;
        double min[3] = {};
        double max[3] = {};
        double mean[3] = {};
        double covariance[9] = {};
        CRasterAlgorithm::ComputeStaticsFromAOI(&source, &region, count, min, max, mean, covariance,
                                                true, nullptr);
        Answers answers = {static_cast<double>(count)};
        answers.insert(answers.end(), min, min + 3);
        answers.insert(answers.end(), max, max + 3);
        answers.insert(answers.end(), mean, mean + 3);
        answers.insert(answers.end(), covariance, covariance + 9);
        for (int band = 0; band < 3; ++band)
            answers.push_back(source.GetRasterBand(band)->GetStandardDeviation());
        return answers;
    });
}

TEST_F(EightThreads, HitTheSameShapes) {
    ExpectAsInTurn([](int number) {
        CAOISource area;
        if (area.Open(Area(number).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            return Answers();
        Answers answers;
        for (int i = 0; i < 400; ++i)
            answers.push_back(area.TopoRelationWithPoint(500005.0 + 0.3 * i, 3999935.0));
        return answers;
    });
}

TEST_F(EightThreads, TransformTheSamePoints) {
    ExpectAsInTurn([](int number) {
        const std::string zone = "EPSG:" + std::to_string(32645 + number);
        CCoordinateTransformation* const way =
            CCoordinateTransformation::CreateCoordinateTransformation(zone.c_str(), "EPSG:4326",
                                                                      nullptr);
        if (way == nullptr)
            return Answers();
        Answers x;
        Answers y;
        for (int i = 0; i < 200; ++i) {
            x.push_back(400000.0 + 1000.0 * i);
            y.push_back(3500000.0 + 500.0 * i);
        }
        way->Transform(static_cast<int>(x.size()), x.data(), y.data(), nullptr, nullptr);
        CCoordinateTransformation::DestroyCoordinateTransformation(way);
        x.insert(x.end(), y.begin(), y.end());
        return x;
    });
}

// Nothing keeps GDAL registered around this: every round has a first source and a last one.
TEST_F(EightThreads, BeginAndEndTheEngineAtTheSameTime) {
    const auto open = [](int number) {
        CRasterSource source;
        const bool opened = source.Open(Image(number).c_str(), GIS_READONLY, true) == GIS_SUCCESS;
        return Answers{opened ? source.GetRasterBand(0)->GetMaximum() : -1.0};
    };
    constexpr int ROUNDS = 20;
    for (int round = 0; round < ROUNDS; ++round) {
        const std::vector<Answers> answers = OnEight(open, 3);
        for (int number = 0; number < THREADS; ++number)
            ASSERT_EQ(answers[number], Answers{250.0}) << number << " in round " << round;
    }
}
