#include "zelto/aoi/AOIMask.h"
#include "zelto/aoi/AOISource.h"

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"
#include "tests/support/VectorFile.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>

namespace {

using namespace zelto::test;
using Rings = std::vector<std::vector<CPoint2D>>;

void CollectRings(const OGRGeometry& geometry, Rings& rings) {
    const auto type = wkbFlatten(geometry.getGeometryType());
    if (type == wkbPolygon) {
        for (const OGRLinearRing* ring : *geometry.toPolygon()) {
            rings.emplace_back();
            for (const OGRPoint& p : *ring)
                rings.back().emplace_back(p.getX(), p.getY());
            if (rings.back().size() < 3)
                rings.pop_back();
        }
    } else if (type == wkbMultiPolygon || type == wkbGeometryCollection) {
        for (const OGRGeometry* member : *geometry.toGeometryCollection())
            CollectRings(*member, rings);
    }
}

/// All polygon rings of a file, read by GDAL alone; nothing when it does not open.
Rings ReadRings(const std::string& path) {
    Rings rings;
    GDALAllRegister();
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    for (int i = 0; dataset && i < dataset->GetLayerCount(); ++i)
        for (const auto& feature : *dataset->GetLayer(i))
            if (const OGRGeometry* geometry = feature->GetGeometryRef())
                CollectRings(*geometry, rings);
    return rings;
}

Rings ShapesOf(const CAOISource& source) {
    Rings rings;
    for (int i = 0; i < source.GetDrawShapeCount(); ++i)
        rings.push_back(source.GetDrawShape(i)->m_vertices);
    return rings;
}

bool AreSame(const Rings& a, const Rings& b) {
    // Letter by letter: a coordinate that is not a number equals itself here.
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](auto& p, auto& q) {
               return p.size() == q.size() &&
                      std::memcmp(p.data(), q.data(), p.size() * sizeof(CPoint2D)) == 0;
           });
}

double RingArea(const std::vector<CPoint2D>& ring) {
    double twice = 0;
    for (std::size_t i = 0; i < ring.size(); ++i)
        twice += ring[i] ^ ring[(i + 1) % ring.size()];
    return std::abs(twice) / 2;
}

class AOIRealFiles : public testing::Test {
  protected:
    AOIRealFiles() { CGISDataSource::RegisterGDAL(); }
    ~AOIRealFiles() override { CGISDataSource::DestroyGDAL(); }

    /// Saves as the engine's own file, reads it back and saves again.
    void ExpectOwnFileRoundTrip(CAOISource& source) {
        const std::wstring first = m_folder.WideFile("first.aif");
        const std::wstring second = m_folder.WideFile("second.aif");
        ASSERT_EQ(source.SaveAs(first.c_str(), VDF_AOI), GIS_SUCCESS);
        CAOISource back;
        ASSERT_EQ(back.Open(first.c_str(), GIS_READONLY, false), GIS_SUCCESS);
        EXPECT_TRUE(AreSame(ShapesOf(back), ShapesOf(source)));
        ASSERT_EQ(back.SaveAs(second.c_str(), VDF_AOI), GIS_SUCCESS);
        // Without shapes the extent is that of the vector file's other geometries, which a
        // reader does not take from the header.
        if (source.GetDrawShapeCount() > 0) {
            EXPECT_TRUE(ReadFile(m_folder.File("second.aif")) ==
                        ReadFile(m_folder.File("first.aif")));
        }
    }

    /// Saves as a shapefile and reads that with GDAL: as many polygons, of the same areas.
    void ExpectShapefileRoundTrip(CAOISource& source) {
        ASSERT_EQ(source.SaveAs(m_folder.WideFile("out.shp").c_str(), VDF_SHAPEFILE), GIS_SUCCESS);
        const Rings back = ReadRings(m_folder.File("out.shp"));
        const Rings shapes = ShapesOf(source);
        ASSERT_EQ(back.size(), shapes.size());
        for (std::size_t i = 0; i < back.size(); ++i) {
            EXPECT_EQ(back[i].size(), shapes[i].size() + 1) << "closed once more";
            EXPECT_NEAR(RingArea(back[i]), RingArea(shapes[i]), 1e-9 * RingArea(shapes[i]) + 1e-12);
        }
    }

    TemporaryFolder m_folder;
};

TEST_F(AOIRealFiles, EveryVectorFileBecomesItsRingsAndComesBack) {
    ZELTO_REQUIRE_TEST_DATA();
    int files = 0;
    std::size_t largest = 0;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(TestDataFile("vector"))) {
        const std::string path = entry.path().string();
        SCOPED_TRACE(path);
        CAOISource source;
        if (!entry.is_regular_file() ||
            source.Open(Wide(path).c_str(), GIS_READONLY, false) != GIS_SUCCESS)
            continue;
        ++files;
        const Rings shapes = ShapesOf(source);
        EXPECT_TRUE(AreSame(shapes, ReadRings(path)));
        for (const auto& ring : shapes)
            largest = std::max(largest, ring.size());
        ExpectOwnFileRoundTrip(source);
        if (path.find("corrupt") == std::string::npos &&
            path.find("invalid") == std::string::npos && !shapes.empty())
            ExpectShapefileRoundTrip(source);
    }
    EXPECT_GT(files, 60);
    EXPECT_EQ(largest, 5001U) << "5,000 vertices and the closing one";
}

TEST_F(AOIRealFiles, MasksOfInvalidShapesHoldWhatTheHitTestsHoldAndOnePixelAround) {
    ZELTO_REQUIRE_TEST_DATA();
    constexpr int SIZE = 300;
    CAOISource source;
    ASSERT_EQ(source.Open(Wide(TestDataFile("vector/invalid_self_intersecting.shp")).c_str(),
                          GIS_READONLY, false),
              GIS_SUCCESS);
    CBoundingBox box = source.GetExtent();
    // Pixel centres beside the round numbers of the outlines.
    box.SetBoundingBox(box.m_left - 101.3, box.m_top + 103.7, box.m_right + 107.9,
                       box.m_bottom - 109.1);
    const CAOIMask mask(&source, box, SIZE, SIZE);
    std::vector<unsigned char> held(std::size_t(SIZE) * SIZE);
    for (int row = 0; row < SIZE; ++row)
        for (int column = 0; column < SIZE; ++column)
            held[std::size_t(row) * SIZE + std::size_t(column)] =
                source.TopoRelationWithPoint(
                    box.m_left + (column + 0.5) * (box.m_right - box.m_left) / SIZE,
                    box.m_top - (row + 0.5) * (box.m_top - box.m_bottom) / SIZE) == TOPO_CONTAIN;
    EXPECT_GT(std::count(held.begin(), held.end(), 1), 5000);
    for (int row = 1; row < SIZE - 1; ++row)
        for (int column = 1; column < SIZE - 1; ++column) {
            bool expected = false;
            for (int k = 0; k < 9; ++k)
                expected |=
                    held[std::size_t(row + k / 3 - 1) * SIZE + std::size_t(column + k % 3 - 1)] !=
                    0;
            ASSERT_EQ(mask.IsPointIn(column, row), expected) << column << ", " << row;
        }
}

TEST_F(AOIRealFiles, KnownFilesHaveTheirRings) {
    ZELTO_REQUIRE_TEST_DATA();
    const std::pair<const char*, int> known[] = {{"vector/polygons_with_holes.geojson", 2 + 3},
                                                 {"vector/multipolygon.shp", 3 + 1},
                                                 {"vector/geometry_collection.geojson", 1},
                                                 {"vector/polygons_25d.shp", 3},
                                                 {"vector/empty_layer.shp", 0},
                                                 {"vector/polygon_5000.shp", 1},
                                                 {"vector/lines_over_l7.geojson", 0},
                                                 {"vector/training_l7.geojson", 9}};
    for (const auto& [name, count] : known) {
        CAOISource source;
        ASSERT_EQ(source.Open(Wide(TestDataFile(name)).c_str(), GIS_READONLY, false), GIS_SUCCESS);
        EXPECT_EQ(source.GetDrawShapeCount(), count) << name;
    }
}

} // namespace
