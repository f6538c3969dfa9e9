#include "zelto/aoi/AOISource.h"

#include "tests/aoi/AoiFileBytes.h"
#include "tests/aoi/Shapes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <random>
#include <sys/resource.h>

namespace {

using namespace zelto::test;

class AOIFile : public testing::Test {
  protected:
    std::wstring Path(const std::string& name) { return m_folder.WideFile(name); }
    GISError Save(CAOISource& source, const std::string& name) {
        return source.SaveAs(Path(name).c_str(), VDF_AOI);
    }
    GISError Open(CAOISource& source, const std::string& name) {
        return source.Open(Path(name).c_str(), GIS_READONLY, false);
    }
    std::string Read(const std::string& name) { return ReadFile(m_folder.File(name)); }
    void Write(const std::string& name, const std::string& bytes) {
        WriteFile(m_folder.File(name), bytes);
    }

    TemporaryFolder m_folder;
};

TEST_F(AOIFile, ARectangleComesBackFrom1617Bytes) {
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({10, 20}, {15, 16})));
    source.SetSpatialReferenceWKT("LOCAL_CS[\"grid\"]");
    ASSERT_EQ(Save(source, "r.aif"), GIS_SUCCESS);
    EXPECT_EQ(Read("r.aif").size(), 1584U + 1 + 32);

    CAOISource back;
    ASSERT_EQ(Open(back, "r.aif"), GIS_SUCCESS);
    EXPECT_EQ(back.GetFilePath(), Path("r.aif"));
    EXPECT_EQ(back.GetFileName(), L"AOI_r");
    EXPECT_FALSE(back.IsShapeFile());
    EXPECT_EQ(back.GetSpatialReferenceWKT(), "LOCAL_CS[\"grid\"]");
    ASSERT_EQ(back.GetDrawShapeCount(), 1);
    const auto& rectangle = dynamic_cast<CDrawRectangle&>(*back.GetDrawShape(0));
    EXPECT_EQ(rectangle.m_topLeft, CPoint2D(10, 20));
    EXPECT_EQ(rectangle.m_width, 5);
    EXPECT_EQ(rectangle.m_height, 4);
    EXPECT_TRUE(rectangle.m_complete);
    EXPECT_EQ(rectangle.m_useMark, 4);
    EXPECT_EQ(rectangle.m_vertices.size(), 2U);
    const CBoundingBox extent = back.GetExtent();
    EXPECT_EQ(extent.m_left, 10);
    EXPECT_EQ(extent.m_top, 20);
    EXPECT_EQ(extent.m_right, 15);
    EXPECT_EQ(extent.m_bottom, 16);
}

TEST_F(AOIFile, ARectangleKeepsTheSizeThatTheFileSays) {
    // Taken from the corners it would be off: 1000000.1 − 1000000 is not 0.1.
    Write("a.aif", AoiHeaderBytes(1) + RectangleBytes('\4', 1e6, 1e6, 0.1, 0.3));
    CAOISource source;
    ASSERT_EQ(Open(source, "a.aif"), GIS_SUCCESS);
    const auto& rectangle = dynamic_cast<CDrawRectangle&>(*source.GetDrawShape(0));
    EXPECT_EQ(rectangle.m_width, 0.1);
    EXPECT_EQ(rectangle.m_height, 0.3);
}

TEST_F(AOIFile, EveryByteOfASavedFileHasItsPlace) {
    CAOISource source;
    source.AddDrawShape(new CDrawEllipse(Drag<CDrawEllipse>({0, 4}, {6, 0})));
    source.AddDrawShape(new CDrawPolygon(MakePolygon({{0, 0}, {1, 1}, {2, 4}})));
    source.SetSpatialReferenceWKT("wkt");
    ASSERT_EQ(Save(source, "a.aif"), GIS_SUCCESS);
    std::string expected = AoiHeaderBytes(2, "wkt");
    expected.resize(1544);
    expected += Bytes(0.0) + Bytes(4.0) + Bytes(6.0) + Bytes(0.0) + Bytes(std::int64_t{2});
    expected += RectangleBytes('\5', 0, 4, 6, 4);
    const std::string polygon = PolygonBytes(3, 3);
    EXPECT_EQ(polygon.size(), 53U);
    EXPECT_TRUE(Read("a.aif") == expected + polygon);
}

TEST_F(AOIFile, ShapesOfEveryKindComeBackInOrder) {
    Write("a.aif", AoiHeaderBytes(4) + RectangleBytes('\5', 1, 2, 3, 4) + '\2' +
                       PolygonBytes(4, 4) + RectangleBytes('\4', 5, 6, 7, 8));
    CAOISource source;
    ASSERT_EQ(Open(source, "a.aif"), GIS_SUCCESS);
    ASSERT_EQ(source.GetDrawShapeCount(), 3) << "a line has no record and is left out";
    EXPECT_NE(dynamic_cast<CDrawEllipse*>(source.GetDrawShape(0)), nullptr);
    EXPECT_EQ(source.GetDrawShape(1)->m_vertices.size(), 4U);
    EXPECT_TRUE(source.GetDrawShape(1)->m_complete);
    EXPECT_EQ(source.GetDrawShape(1)->m_useMark, 4);
    EXPECT_EQ(source.GetDrawShape(2)->m_shapeKind, SHAPE_RECTANGLE);
    EXPECT_EQ(source.GetExtent().m_right, 12) << "the stored extent is not read";
}

TEST_F(AOIFile, IsTheSameByteForByteAfterLoadingAndSaving) {
    SCOPED_TRACE("seed 31");
    std::mt19937 engine(31);
    std::uniform_real_distribution<double> c(-1e6, 1e6);
    CAOISource source;
    for (int i = 0; i < 50; ++i) {
        const auto point = [&] { return CPoint2D(c(engine), c(engine)); };
        CDrawShape* shape = nullptr;
        if (i % 3 == 0) {
            shape = new CDrawPolygon(MakePolygon({point(), point(), point(), point()}));
        } else {
            auto* box = i % 3 == 1 ? new CDrawRectangle : new CDrawEllipse;
            box->AddVertex(point());
            box->AddVertex(point());
            box->UpdateExtent();
            shape = box;
        }
        ASSERT_TRUE(source.AddDrawShape(shape));
    }
    source.SetSpatialReferenceWKT("EPSG:32650");
    ASSERT_EQ(Save(source, "first.aif"), GIS_SUCCESS);
    CAOISource back;
    ASSERT_EQ(Open(back, "first.aif"), GIS_SUCCESS);
    ASSERT_EQ(Save(back, "second.aif"), GIS_SUCCESS);
    EXPECT_TRUE(Read("second.aif") == Read("first.aif"));
}

TEST_F(AOIFile, AnEmptySourceIsAHeader) {
    CAOISource source;
    ASSERT_EQ(Save(source, "e.aif"), GIS_SUCCESS);
    EXPECT_EQ(Read("e.aif").size(), 1584U);
    CAOISource back;
    EXPECT_EQ(Open(back, "e.aif"), GIS_SUCCESS);
    EXPECT_EQ(back.GetDrawShapeCount(), 0);
}

TEST_F(AOIFile, ALongReferenceTextIsCutSoThatItsEndFits) {
    CAOISource source;
    const std::string text(1022, 'x');
    source.SetSpatialReferenceWKT((text + "abc").c_str());
    ASSERT_EQ(Save(source, "w.aif"), GIS_SUCCESS);
    CAOISource back;
    ASSERT_EQ(Open(back, "w.aif"), GIS_SUCCESS);
    EXPECT_EQ(back.GetSpatialReferenceWKT(), text + "a");
    // Two bytes for one letter: it does not fit whole and goes whole.
    source.SetSpatialReferenceWKT((text + "\xC3\xA9").c_str());
    ASSERT_EQ(Save(source, "w.aif"), GIS_SUCCESS);
    ASSERT_EQ(Open(back, "w.aif"), GIS_SUCCESS);
    EXPECT_EQ(back.GetSpatialReferenceWKT(), text);
    // Middles of letters only: there is no place to cut at.
    source.SetSpatialReferenceWKT(std::string(2000, '\x80').c_str());
    ASSERT_EQ(Save(source, "w.aif"), GIS_SUCCESS);
    ASSERT_EQ(Open(back, "w.aif"), GIS_SUCCESS);
    EXPECT_EQ(back.GetSpatialReferenceWKT(), "");
}

TEST_F(AOIFile, OpeningAUsedSourceStartsFromAnEmptyList) {
    Write("a.aif", AoiHeaderBytes(1) + RectangleBytes('\4', 5, 6, 7, 8));
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({100, 200}, {150, 160})));
    ASSERT_EQ(Open(source, "a.aif"), GIS_SUCCESS);
    ASSERT_EQ(source.GetDrawShapeCount(), 1);
    EXPECT_EQ(source.GetExtent().m_left, 5);
}

TEST_F(AOIFile, TheExtensionIsComparedLetterByLetter) {
    const std::string bytes = AoiHeaderBytes(1) + RectangleBytes('\4', 5, 6, 7, 8);
    for (const std::string name : {"a.AIF", "a.aiff", "a.ai", "a"}) {
        Write(name, bytes);
        CAOISource source;
        EXPECT_EQ(Open(source, name), GIS_FAILED) << name;
    }
}

TEST_F(AOIFile, AnExtensionInCapitalsNamesAVectorFile) {
    Write("a.AIF", R"({"type":"Polygon","coordinates":[[[0,0],[0,9],[9,9],[0,0]]]})");
    CAOISource source;
    ASSERT_EQ(Open(source, "a.AIF"), GIS_SUCCESS);
    EXPECT_TRUE(source.IsShapeFile());
    EXPECT_EQ(source.GetFileName(), L"a.AIF");
    ASSERT_EQ(source.GetDrawShapeCount(), 1);
    EXPECT_EQ(source.GetDrawShape(0)->m_vertices.size(), 4U);
}

TEST_F(AOIFile, UnknownFormatsAndPlacesFail) {
    CAOISource source;
    EXPECT_EQ(source.SaveAs(Path("a.aif").c_str(), VectorDataFormat(0)), GIS_FAILED);
    EXPECT_EQ(source.SaveAs(Path("a.aif").c_str(), VectorDataFormat(3)), GIS_FAILED);
    EXPECT_EQ(source.SaveAs(nullptr, VDF_AOI), GIS_FAILED);
    EXPECT_EQ(source.SaveAs(nullptr, VDF_SHAPEFILE), GIS_FAILED);
    EXPECT_EQ(Save(source, "missing/a.aif"), GIS_FAILED);
    EXPECT_EQ(Open(source, "missing.aif"), GIS_FAILED);
    EXPECT_EQ(source.Open(nullptr, GIS_READONLY, false), GIS_FAILED);
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(AOIFile, OpeningByInfoTakesTheSameRoad) {
    Write("a.aif", AoiHeaderBytes(1) + RectangleBytes('\4', 5, 6, 7, 8));
    CAOISource source;
    EXPECT_EQ(source.Open(CDatasetOpenInfo(Path("a.aif").c_str(), GIS_READONLY)), GIS_SUCCESS);
    EXPECT_EQ(source.GetDrawShapeCount(), 1);
}

/// No file may grow beyond `bytes` while this lives, as on a full disk.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : m_signal(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit m_before{};
    void (*m_signal)(int);
};

TEST_F(AOIFile, AFailedSaveLeavesThePreviousFileAndNothingElse) {
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({0, 1}, {1, 0})));
    ASSERT_EQ(Save(source, "a.aif"), GIS_SUCCESS);
    ASSERT_EQ(source.SaveAs(Path("a.shp").c_str(), VDF_SHAPEFILE), GIS_SUCCESS);
    const auto names = m_folder.Names();
    std::vector<std::string> before;
    for (const std::string& name : names)
        before.push_back(Read(name));
    source.AddDrawShape(new CDrawPolygon(MakePolygon(std::vector<CPoint2D>(50000, {1, 2}))));
    source.SetTempFilePath(Path("unused.aif").c_str());
    {
        const FileSizeLimit full(100000);
        EXPECT_EQ(Save(source, "a.aif"), GIS_FAILED);
        EXPECT_EQ(source.SaveAs(Path("a.shp").c_str(), VDF_SHAPEFILE), GIS_FAILED);
    }
    EXPECT_EQ(m_folder.Names(), names);
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_TRUE(Read(names[i]) == before[i]) << names[i];
}

} // namespace
