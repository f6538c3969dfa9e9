#include "zelto/aoi/internal/RasterAoiRows.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/raster/RasterSource.h"

#include "tests/aoi/Shapes.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <numeric>
#include <random>
#include <thread>

namespace {

using namespace zelto::test;
using Bytes = std::vector<unsigned char>;

/// 40 × 30 pixels of half a ground unit, random polygons, rectangles and ellipses on them.
class RasterAoiRows : public testing::Test {
  protected:
    RasterAoiRows() {
        WriteRaster(m_folder.File("i.tif"),
                    {.width = 40, .height = 30, .geoTransform = NorthUp(50, 80, 0.5)},
                    {MakePixels(40, 30, [](int, int) { return 1; })});
        EXPECT_EQ(m_raster.Open(m_folder.WideFile("i.tif").c_str(), GIS_READONLY, true),
                  GIS_SUCCESS);
    }
    void AddRandomShapes(unsigned seed) {
        std::mt19937 engine(seed);
        std::uniform_real_distribution<double> x(45, 75);
        std::uniform_real_distribution<double> y(60, 85);
        const auto point = [&] { return CPoint2D(x(engine), y(engine)); };
        auto rectangle = Drag(point(), point());
        auto ellipse = Drag<CDrawEllipse>(point(), point());
        rectangle.UpdateExtent();
        ellipse.UpdateExtent();
        m_aoi.AddDrawShape(new CDrawRectangle(rectangle));
        m_aoi.AddDrawShape(new CDrawEllipse(ellipse));
        std::vector<CPoint2D> points;
        for (unsigned i = 0; i < 3 + seed % 9; ++i)
            points.push_back(point());
        m_aoi.AddDrawShape(new CDrawPolygon(MakePolygon(points)));
    }
    std::unique_ptr<CRasterAOI> MakeArea() {
        auto area = std::make_unique<CRasterAOI>(&m_raster, &m_aoi);
        EXPECT_TRUE(area->Initialize());
        return area;
    }

    TemporaryFolder m_folder;
    CRasterSource m_raster;
    CAOISource m_aoi;
};

TEST_F(RasterAoiRows, AnswerAsTheQuestionsForSinglePixels) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        m_aoi.Close();
        AddRandomShapes(seed);
        const auto area = MakeArea();
        const zelto::RasterAoiRows rows(*area);
        zelto::RasterAoiRows::Scratch scratch;
        for (const double step : {1.0, 0.37}) {
            std::vector<double> columns;
            for (double column = -3; column < 45; column += step)
                columns.push_back(column);
            Bytes inside(columns.size());
            for (double row = -3; row < 35; row += step) {
                rows.Row(row, columns, inside, scratch);
                for (std::size_t i = 0; i < columns.size(); ++i) {
                    ASSERT_EQ(inside[i] != 0, area->IsdfInAOI(columns[i], row));
                    if (step == 1.0) {
                        ASSERT_EQ(inside[i] != 0, area->IsInAOI(int(columns[i]), int(row)));
                    }
                }
            }
        }
    }
}

/// Rows and single pixels asked by several threads at once, as the rendering loops do.
TEST_F(RasterAoiRows, MayBeAskedFromSeveralThreads) {
    AddRandomShapes(5);
    const auto area = MakeArea();
    const zelto::RasterAoiRows rows(*area);
    std::vector<double> columns(40);
    std::iota(columns.begin(), columns.end(), 0.0);
    std::atomic<int> differences = 0;
    const auto ask = [&] {
        zelto::RasterAoiRows::Scratch scratch;
        Bytes inside(columns.size());
        for (int row = 0; row < 30; ++row) {
            rows.Row(row, columns, inside, scratch);
            for (int column = 0; column < 40; ++column)
                differences += (inside[std::size_t(column)] != 0) != area->IsdfInAOI(column, row);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(ask);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(differences, 0);
}

TEST_F(RasterAoiRows, AnAreaThatIsNotInitialisedHoldsNothing) {
    AddRandomShapes(1);
    const CRasterAOI area(&m_raster, &m_aoi);
    const zelto::RasterAoiRows rows(area);
    zelto::RasterAoiRows::Scratch scratch;
    const std::vector<double> columns = {0, 1, 2};
    Bytes inside(3, 1);
    rows.Row(0, columns, inside, scratch);
    EXPECT_EQ(inside, Bytes(3, 0));
    EXPECT_EQ(rows.PixelRect().left, 40);
    EXPECT_FALSE(area.IsInitialized());
}

TEST_F(RasterAoiRows, TheBufferHoldsThePixelRectangle) {
    AddRandomShapes(7);
    const auto area = MakeArea();
    const CRect rect = area->GetRect();
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    Bytes buffer(std::size_t(width) * height, 9);
    ASSERT_TRUE(zelto::RasterAoiRows(*area).ToBuffer(buffer.data(), width, height, nullptr));
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            ASSERT_EQ(int(buffer[std::size_t(row * width + column)]),
                      int(area->IsInAOI(column + rect.left, row + rect.top)));
}

TEST_F(RasterAoiRows, TheBufferReportsEveryPixelAndStopsWhenTold) {
    AddRandomShapes(7);
    const auto area = MakeArea();
    const zelto::RasterAoiRows rows(*area);
    Bytes buffer(4 * 3);
    RecordingProgress progress;
    EXPECT_TRUE(rows.ToBuffer(buffer.data(), 4, 3, &progress));
    ASSERT_EQ(progress.m_stages.size(), 1U);
    EXPECT_EQ(progress.m_stages[0].first, L"正在处理感兴趣区域...");
    EXPECT_EQ(progress.m_stages[0].second, 12);
    ASSERT_EQ(progress.m_steps.size(), 12U);
    EXPECT_EQ(progress.m_steps[0].first, 1);
    EXPECT_EQ(progress.m_steps[0].second, L"处理中...");
    EXPECT_EQ(progress.m_steps[11].first, 12);
    RecordingProgress cancelled(5);
    EXPECT_FALSE(rows.ToBuffer(buffer.data(), 4, 3, &cancelled));
    EXPECT_EQ(cancelled.m_steps.size(), 6U);
}

TEST_F(RasterAoiRows, TheBufferOfAnAreaThatIsNotInitialisedHoldsNothing) {
    AddRandomShapes(7);
    const CRasterAOI area(&m_raster, &m_aoi);
    Bytes buffer(4 * 3, 9);
    EXPECT_TRUE(zelto::RasterAoiRows(area).ToBuffer(buffer.data(), 4, 3, nullptr));
    EXPECT_EQ(buffer, Bytes(4 * 3, 0));
}

TEST_F(RasterAoiRows, TheMapOfAnAreaIsThatOfItsShapes) {
    AddRandomShapes(7);
    const auto area = MakeArea();
    m_aoi.Close();
    EXPECT_TRUE(area->ConvertToRasterMap(nullptr, nullptr));
    Bytes before(40 * 30);
    Bytes after(40 * 30);
    EXPECT_TRUE(zelto::RasterAoiRows(*area).ToBuffer(before.data(), 40, 30, nullptr));
    EXPECT_GT(std::count(before.begin(), before.end(), 1), 0) << "not converted anew";
    CRasterAOI later(&m_raster, &m_aoi);
    EXPECT_TRUE(later.ConvertToRasterMap(nullptr, nullptr));
    EXPECT_TRUE(later.IsInitialized());
    EXPECT_TRUE(zelto::RasterAoiRows(later).ToBuffer(after.data(), 40, 30, nullptr));
    EXPECT_EQ(after, Bytes(40 * 30, 0));
}

TEST_F(RasterAoiRows, BuffersWithoutASizeAreLeftAlone) {
    AddRandomShapes(7);
    const auto area = MakeArea();
    const zelto::RasterAoiRows rows(*area);
    EXPECT_FALSE(rows.ToBuffer(nullptr, 4, 3, nullptr));
    Bytes buffer(4, 9);
    EXPECT_TRUE(rows.ToBuffer(buffer.data(), 0, 3, nullptr));
    EXPECT_TRUE(rows.ToBuffer(buffer.data(), 4, -1, nullptr));
    EXPECT_EQ(buffer, Bytes(4, 9));
}

TEST_F(RasterAoiRows, TheFileIsGeoreferencedAndGoesWithItsArea) {
    AddRandomShapes(7);
    auto area = MakeArea();
    const CRect rect = area->GetRect();
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    const std::wstring path = m_folder.WideFile("mask.tif");
    ASSERT_TRUE(zelto::RasterAoiRows::ToFile(*area, path.c_str(), width, height, nullptr));
    Bytes buffer(std::size_t(width) * height);
    ASSERT_TRUE(zelto::RasterAoiRows(*area).ToBuffer(buffer.data(), width, height, nullptr));
    EXPECT_TRUE(std::filesystem::exists(m_folder.File("mask.tif")));
    const CRasterAOI copy(*area);
    RecordingProgress cancelled(3);
    EXPECT_FALSE(zelto::RasterAoiRows::ToFile(*area, path.c_str(), width, height, &cancelled));
    EXPECT_FALSE(zelto::RasterAoiRows::ToFile(*area, nullptr, width, height, nullptr));
    EXPECT_FALSE(zelto::RasterAoiRows::ToFile(*area, path.c_str(), 0, height, nullptr));
    EXPECT_FALSE(zelto::RasterAoiRows::ToFile(*area, path.c_str(), width, 0, nullptr));
    CRasterAOI ofNone(nullptr, &m_aoi);
    EXPECT_FALSE(zelto::RasterAoiRows::ToFile(ofNone, path.c_str(), width, height, nullptr));
    EXPECT_FALSE(zelto::RasterAoiRows::ToFile(*area, m_folder.WideFile("no/mask.tif").c_str(),
                                              width, height, nullptr));
    area.reset();
    EXPECT_EQ(m_folder.Names(), std::vector<std::string>{"i.tif"});
}

} // namespace
