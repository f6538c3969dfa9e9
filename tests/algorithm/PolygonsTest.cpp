#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/vector/VectorLayer.h"

#include "tests/algorithm/RegionFixture.h"
#include "tests/support/NamedPipe.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/Text.h"

#include <ogrsf_frmts.h>

#include <filesystem>

using namespace zelto::test;

namespace {

struct Feature {
    std::string image, imageName, wkt;

    bool operator==(const Feature&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Feature& feature) {
    return stream << feature.image << " / " << feature.imageName << " / " << feature.wkt;
}

std::vector<Feature> ReadFeatures(const std::string& path) {
    std::vector<Feature> features;
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    EXPECT_NE(dataset, nullptr);
    if (!dataset)
        return features;
    for (const auto& feature : *dataset->GetLayer(0)) {
        std::string wkt;
        if (feature->GetGeometryRef() != nullptr)
            wkt = feature->GetGeometryRef()->exportToWkt();
        features.push_back(
            {feature->GetFieldAsString("Image"), feature->GetFieldAsString("IMAGE_NAME"), wkt});
    }
    return features;
}

OGRGeometryUniquePtr Wkt(const char* text) {
    OGRGeometry* geometry = nullptr;
    EXPECT_EQ(OGRGeometryFactory::createFromWkt(text, nullptr, &geometry), OGRERR_NONE);
    return OGRGeometryUniquePtr(geometry);
}

/// Whether the geometries cover the same area, wherever their rings start.
bool CoverTheSame(const OGRGeometry& a, const OGRGeometry& b) {
    const OGRGeometryUniquePtr difference(a.SymDifference(&b));
    return difference != nullptr && difference->IsEmpty();
}

class Polygons : public RegionTest {
  protected:
    OGRGeometryUniquePtr Intersection(const char* a, const char* b) {
        return OGRGeometryUniquePtr(CRasterAlgorithm::IntersectionPro(Wkt(a).get(), Wkt(b).get()));
    }
};

/// A memory layer with one integer field.
struct MemoryLayer {
    MemoryLayer() {
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("Memory");
        dataset.reset(driver->Create("", 0, 0, 0, GDT_Unknown, nullptr));
        layer = dataset->CreateLayer("polygons", nullptr, wkbPolygon, nullptr);
        OGRFieldDefn field("value", OFTInteger);
        EXPECT_EQ(layer->CreateField(&field), OGRERR_NONE);
    }
    std::vector<int> Values() {
        std::vector<int> values;
        for (const auto& feature : *layer)
            values.push_back(feature->GetFieldAsInteger(0));
        std::sort(values.begin(), values.end());
        return values;
    }

    GDALDatasetUniquePtr dataset;
    OGRLayer* layer = nullptr;
};

/// Left column 1, the rest 2, one 3 in the corner.
const Pixels THREE_AREAS = {1, 2, 2, 1, 2, 2, 1, 2, 3};

} // namespace

TEST_F(Polygons, PolygonizeMakesAPolygonPerArea) {
    auto source = Open(UnitSpec(3, 3), {THREE_AREAS});
    MemoryLayer memory;
    CVectorLayer layer(memory.layer);
    RecordingProgress progress;
    EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source->GetRasterBand(0), nullptr, &layer, 0,
                                                 nullptr, &progress, L""),
              GIS_SUCCESS);
    EXPECT_EQ(memory.Values(), (std::vector<int>{1, 2, 3}));
    ASSERT_EQ(progress.m_stages.size(), 1U);
    EXPECT_EQ(progress.m_stages[0].first, L"栅格矢量化");
    EXPECT_EQ(progress.m_stages[0].second, 100);
    EXPECT_FALSE(progress.m_steps.empty());
}

TEST_F(Polygons, PolygonizeNeverTellsMoreThanTheWhole) {
    auto source = Open(UnitSpec(3, 3), {THREE_AREAS});
    MemoryLayer memory;
    CVectorLayer layer(memory.layer);
    RecordingProgress progress;
    EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source->GetRasterBand(0), nullptr, &layer, 0,
                                                 nullptr, &progress, L""),
              GIS_SUCCESS);
    ASSERT_FALSE(progress.m_steps.empty());
    int former = 0;
    for (const auto& [percent, message] : progress.m_steps) {
        EXPECT_GE(percent, former);
        EXPECT_LE(percent, 100);
        former = percent;
    }
    EXPECT_EQ(former, 100);
}

TEST_F(Polygons, PolygonizeTakesTheCallersTitleAndRunsWithoutProgress) {
    auto source = Open(UnitSpec(3, 3), {THREE_AREAS});
    MemoryLayer memory;
    CVectorLayer layer(memory.layer);
    RecordingProgress progress;
    EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source->GetRasterBand(0), nullptr, &layer, -1,
                                                 nullptr, &progress, L"areas"),
              GIS_SUCCESS);
    EXPECT_EQ(progress.m_stages[0].first, L"areas");
    EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source->GetRasterBand(0), nullptr, &layer, 0,
                                                 nullptr, nullptr, L""),
              GIS_SUCCESS);
    EXPECT_EQ(memory.layer->GetFeatureCount(), 6);
}

TEST_F(Polygons, PolygonizeLeavesOutWhatTheMaskHides) {
    auto source = Open(UnitSpec(3, 3), {THREE_AREAS, {1, 0, 0, 1, 0, 0, 1, 0, 1}});
    MemoryLayer memory;
    CVectorLayer layer(memory.layer);
    EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source->GetRasterBand(0), source->GetRasterBand(1),
                                                 &layer, 0, nullptr, nullptr, L""),
              GIS_SUCCESS);
    EXPECT_EQ(memory.Values(), (std::vector<int>{1, 3}));
}

TEST_F(Polygons, PolygonizePassesGdalsOptionsOn) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 2, 1}});
    MemoryLayer four, eight;
    CVectorLayer fourLayer(four.layer), eightLayer(eight.layer);
    char option[] = "8CONNECTED=8";
    char* options[] = {option, nullptr};
    CRasterBand* band = source->GetRasterBand(0);
    CRasterAlgorithm::RasterPolygonize(band, nullptr, &fourLayer, 0, nullptr, nullptr, L"");
    CRasterAlgorithm::RasterPolygonize(band, nullptr, &eightLayer, 0, options, nullptr, L"");
    EXPECT_EQ(four.layer->GetFeatureCount(), 4);
    EXPECT_EQ(eight.layer->GetFeatureCount(), 2);
}

TEST_F(Polygons, PolygonizeFailsWhenCancelledOrWithoutItsArguments) {
    auto source = Open(UnitSpec(3, 3), {THREE_AREAS});
    MemoryLayer memory;
    CVectorLayer layer(memory.layer);
    RecordingProgress progress(0);
    EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source->GetRasterBand(0), nullptr, &layer, 0,
                                                 nullptr, &progress, L""),
              GIS_FAILED);
    EXPECT_EQ(
        CRasterAlgorithm::RasterPolygonize(nullptr, nullptr, &layer, 0, nullptr, nullptr, L""),
        GIS_FAILED);
    EXPECT_EQ(CRasterAlgorithm::RasterPolygonize(source->GetRasterBand(0), nullptr, nullptr, 0,
                                                 nullptr, nullptr, L""),
              GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "no open band, mask or layer is given");
}

TEST_F(Polygons, PolygonizeDoesNotTakeAMaskOrALayerThatIsGoneForNone) {
    auto source = Open(UnitSpec(3, 3), {THREE_AREAS});
    CRasterBand* const band = source->GetRasterBand(0);
    CRasterBand gone(false, nullptr);
    MemoryLayer memory;
    CVectorLayer layer(memory.layer);
    CVectorLayer layerGone(nullptr);
    const auto run = [](CRasterBand* pixels, CRasterBand* mask, CVectorLayer* target) {
        CGISDataSource::ClearLastErrorText();
        const GISError answer =
            CRasterAlgorithm::RasterPolygonize(pixels, mask, target, 0, nullptr, nullptr, L"");
        EXPECT_EQ(CGISDataSource::GetLastErrorText(), "no open band, mask or layer is given");
        return answer;
    };
    EXPECT_EQ(run(&gone, nullptr, &layer), GIS_FAILED);
    EXPECT_EQ(run(band, &gone, &layer), GIS_FAILED);
    EXPECT_EQ(run(band, nullptr, &layerGone), GIS_FAILED);
    EXPECT_EQ(memory.layer->GetFeatureCount(), 0);
}

TEST_F(Polygons, ANetKeepsEachPolygonsOwnNameAcrossNullEntries) {
    const auto first = Wkt("POLYGON ((0 0,0 1,1 1,0 0))");
    const auto third = Wkt("POLYGON ((5 0,5 1,6 1,5 0))");
    const std::wstring path = m_folder.WideFile("网.shp");
    EXPECT_TRUE(CRasterAlgorithm::SavePolygonNet(path.c_str(), {first.get(), nullptr, third.get()},
                                                 {L"a.tif", L"b.tif", L"影像.tif"}));
    EXPECT_EQ(ReadFeatures(m_folder.File("网.shp")),
              (std::vector<Feature>{{"a.tif", "a.tif", "POLYGON ((0 0,0 1,1 1,0 0))"},
                                    {"影像.tif", "影像.tif", "POLYGON ((5 0,5 1,6 1,5 0))"}}));
}

TEST_F(Polygons, ANetReplacesAnExistingFile) {
    const auto geometry = Wkt("POLYGON ((0 0,0 1,1 1,0 0))");
    const std::wstring path = m_folder.WideFile("net.shp");
    EXPECT_TRUE(CRasterAlgorithm::SavePolygonNet(
        path.c_str(), {geometry.get(), geometry.get(), geometry.get()}, {L"1", L"2", L"3"}));
    EXPECT_TRUE(CRasterAlgorithm::SavePolygonNet(path.c_str(), {geometry.get()}, {L"4"}));
    const auto features = ReadFeatures(m_folder.File("net.shp"));
    ASSERT_EQ(features.size(), 1U);
    EXPECT_EQ(features[0].image, "4");
}

TEST_F(Polygons, ANetHasTwoTextFieldsAndNoReference) {
    const auto geometry = Wkt("POLYGON ((0 0,0 1,1 1,0 0))");
    EXPECT_TRUE(CRasterAlgorithm::SavePolygonNet(m_folder.WideFile("net.shp").c_str(),
                                                 {geometry.get()}, {L"1"}));
    GDALDatasetUniquePtr dataset(
        GDALDataset::Open(m_folder.File("net.shp").c_str(), GDAL_OF_VECTOR));
    const OGRFeatureDefn* definition = dataset->GetLayer(0)->GetLayerDefn();
    ASSERT_EQ(definition->GetFieldCount(), 2);
    EXPECT_STREQ(definition->GetFieldDefn(0)->GetNameRef(), "Image");
    EXPECT_STREQ(definition->GetFieldDefn(1)->GetNameRef(), "IMAGE_NAME");
    EXPECT_EQ(definition->GetFieldDefn(0)->GetType(), OFTString);
    EXPECT_EQ(definition->GetFieldDefn(0)->GetWidth(), 254); // 320, cut by the format
    EXPECT_EQ(dataset->GetLayer(0)->GetSpatialRef(), nullptr);
}

TEST_F(Polygons, ANetWithFewerNamesThanPolygonsLeavesTheRestUnnamed) {
    const auto geometry = Wkt("POLYGON ((0 0,0 1,1 1,0 0))");
    EXPECT_TRUE(CRasterAlgorithm::SavePolygonNet(m_folder.WideFile("net.shp").c_str(),
                                                 {geometry.get(), geometry.get()}, {L"1"}));
    EXPECT_EQ(ReadFeatures(m_folder.File("net.shp"))[1].image, "");
}

TEST_F(Polygons, ANetThatCannotBeCreatedAnswersFalse) {
    EXPECT_FALSE(CRasterAlgorithm::SavePolygonNet(nullptr, {}, {}));
    WriteFile(m_folder.File("plain"), "a file, not a folder");
    EXPECT_FALSE(
        CRasterAlgorithm::SavePolygonNet(m_folder.WideFile("plain/net.shp").c_str(), {}, {}));
}

TEST_F(Polygons, ANetThatTheDiskCannotHoldAnswersFalseAndTellsWhy) {
    const SmallDisk disk(m_folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "no file system can be mounted here";
    // One polygon of 30,000 points takes half of the disk.
    OGRLinearRing ring;
    for (int i = 0; i < 30000; ++i)
        ring.addPoint(std::cos(i * 6.283185307179586 / 30000), i / 30000.0);
    ring.closeRings();
    OGRPolygon polygon;
    polygon.addRing(&ring);
    const std::vector<OGRGeometry*> polygons(4, &polygon);
    CGISDataSource::ClearLastErrorText();
    EXPECT_FALSE(
        CRasterAlgorithm::SavePolygonNet(m_folder.WideFile("disk/net.shp").c_str(), polygons, {}));
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("net.shp: "), std::string::npos)
        << CGISDataSource::GetLastErrorText();
}

TEST_F(Polygons, ANetThatTheDiskCannotHoldLeavesTheOneThatWasThere) {
    const SmallDisk disk(m_folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "no file system can be mounted here";
    const std::wstring path = m_folder.WideFile("disk/net.shp");
    const auto small = Wkt("POLYGON ((0 0,0 1,1 1,0 0))");
    ASSERT_TRUE(CRasterAlgorithm::SavePolygonNet(path.c_str(), {small.get()}, {L"old"}));
    OGRLinearRing ring;
    for (int i = 0; i < 30000; ++i)
        ring.addPoint(std::cos(i * 6.283185307179586 / 30000), i / 30000.0);
    ring.closeRings();
    OGRPolygon large;
    large.addRing(&ring);
    EXPECT_FALSE(CRasterAlgorithm::SavePolygonNet(path.c_str(),
                                                  std::vector<OGRGeometry*>(4, &large), {L"new"}));
    const auto features = ReadFeatures(m_folder.File("disk/net.shp"));
    ASSERT_EQ(features.size(), 1U);
    EXPECT_EQ(features[0].image, "old");
}

TEST_F(Polygons, ANetDoesNotReplaceVectorDataOfAnotherName) {
    const std::string table = "x,y\n1,2\n";
    WriteFile(m_folder.File("net.csv"), table);
    const auto polygon = Wkt("POLYGON ((0 0,0 1,1 1,0 0))");
    EXPECT_FALSE(CRasterAlgorithm::SavePolygonNet(m_folder.WideFile("net.csv").c_str(),
                                                  {polygon.get()}, {L"1"}));
    EXPECT_EQ(ReadFile(m_folder.File("net.csv")), table);
}

TEST_F(Polygons, ANetLeavesOutWhatItsFileCannotHoldAndTellsSo) {
    const auto polygon = Wkt("POLYGON ((0 0,0 1,1 1,0 0))");
    const auto point = Wkt("POINT (5 5)");
    CGISDataSource::ClearLastErrorText();
    EXPECT_TRUE(CRasterAlgorithm::SavePolygonNet(m_folder.WideFile("net.shp").c_str(),
                                                 {polygon.get(), point.get(), polygon.get()},
                                                 {L"1", L"2", L"3"}));
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("net.shp: "), std::string::npos);
    const auto features = ReadFeatures(m_folder.File("net.shp"));
    ASSERT_EQ(features.size(), 2U);
    EXPECT_EQ(features[1].image, "3");
}

TEST_F(Polygons, AnIntersectionGdalCannotMakeIsNullAndTold) {
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    CGISDataSource::ClearLastErrorText();
    // A bow tie has no inside to cut.
    EXPECT_EQ(Intersection("POLYGON ((0 0,2 2,2 0,0 2,0 0))", "POLYGON ((0 0,0 1,9 1,9 0,0 0))"),
              nullptr);
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
}

TEST_F(Polygons, AnIntersectionWithMembersThatCannotBeMergedIsNullAndTold) {
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    CGISDataSource::ClearLastErrorText();
    // The second member crosses itself, which ends the merging before the third.
    EXPECT_EQ(Intersection("MULTIPOLYGON (((0 0,0 4,4 4,4 0,0 0)),((1 1,3 3,3 1,1 3,1 1)),"
                           "((8 0,8 4,9 4,8 0)))",
                           "POLYGON ((0 0,0 1,9 1,9 0,0 0))"),
              nullptr);
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
}

TEST_F(Polygons, TextPolygonsAreANamePairsAndAnEnd) {
    WriteFile(m_folder.File("net.txt"), "one\n0 0\n0 2\n2 2\nend\ntwo 5.5 0 5.5 1 6 1 end\n");
    EXPECT_TRUE(CRasterAlgorithm::SaveGemetryFromTxt(m_folder.File("net.txt")));
    EXPECT_EQ(ReadFeatures(m_folder.File("net.shp")),
              (std::vector<Feature>{{"one", "one", "POLYGON ((0 0,0 2,2 2,0 0))"},
                                    {"two", "two", "POLYGON ((5.5 0.0,5.5 1.0,6 1,5.5 0.0))"}}));
}

TEST_F(Polygons, TextPolygonsIgnoreAnXWithoutItsYAndWhatIsNotEnded) {
    WriteFile(m_folder.File("net.txt"), "one 0 0 0 2 2 2 9 end two 0 0 0 2 2 2 ending");
    EXPECT_TRUE(CRasterAlgorithm::SaveGemetryFromTxt(m_folder.File("net.txt")));
    EXPECT_EQ(ReadFeatures(m_folder.File("net.shp")),
              (std::vector<Feature>{{"one", "one", "POLYGON ((0 0,0 2,2 2,0 0))"}}));
}

TEST_F(Polygons, TextThatIsMissingAnswersFalse) {
    EXPECT_FALSE(CRasterAlgorithm::SaveGemetryFromTxt(m_folder.File("none.txt")));
    EXPECT_FALSE(std::filesystem::exists(m_folder.File("none.shp")));
}

TEST_F(Polygons, TextThatIsAFolderOrAPipeAnswersFalseAndMakesNothing) {
    const EndsSoon endsSoon;
    std::filesystem::create_directory(m_folder.File("folder.txt"));
    MakePipe(m_folder.File("pipe.txt"));
    for (const std::string name : {"folder", "pipe"}) {
        EXPECT_FALSE(CRasterAlgorithm::SaveGemetryFromTxt(m_folder.File(name + ".txt"))) << name;
        EXPECT_FALSE(std::filesystem::exists(m_folder.File(name + ".shp"))) << name;
        EXPECT_EQ(CGISDataSource::GetLastErrorText().rfind(m_folder.File(name + ".txt: "), 0), 0U)
            << CGISDataSource::GetLastErrorText();
    }
}

TEST_F(Polygons, TextThatCannotBeReadToItsEndAnswersFalseAndTellsSo) {
    // A regular file whose first byte is never mapped.
    EXPECT_FALSE(CRasterAlgorithm::SaveGemetryFromTxt("/proc/self/mem"));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "/proc/self/mem: cannot be read to its end");
}

TEST_F(Polygons, IntersectionOfAPolygonIsGdals) {
    const auto result =
        Intersection("POLYGON ((0 0,0 4,4 4,4 0,0 0))", "POLYGON ((2 2,2 6,6 6,6 2,2 2))");
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(CoverTheSame(*result, *Wkt("POLYGON ((2 2,2 4,4 4,4 2,2 2))")));
}

TEST_F(Polygons, IntersectionMergesAMultiPolygonFirst) {
    // Overlapping members would make the overlay itself fail.
    const auto result = Intersection(
        "MULTIPOLYGON (((0 0,0 4,4 4,4 0,0 0)),((2 0,2 4,8 4,8 0,2 0)),((20 0,20 1,21 1,20 0)))",
        "POLYGON ((1 1,1 3,6 3,6 1,1 1))");
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(CoverTheSame(*result, *Wkt("POLYGON ((1 1,1 3,6 3,6 1,1 1))")));
}

TEST_F(Polygons, IntersectionOfOtherTypesAndOfNullIsNull) {
    EXPECT_EQ(Intersection("LINESTRING (0 0,5 5)", "POLYGON ((0 0,0 4,4 4,4 0,0 0))"), nullptr);
    EXPECT_EQ(Intersection("MULTIPOLYGON EMPTY", "POLYGON ((0 0,0 4,4 4,4 0,0 0))"), nullptr);
    const auto polygon = Wkt("POLYGON ((0 0,0 4,4 4,4 0,0 0))");
    EXPECT_EQ(CRasterAlgorithm::IntersectionPro(nullptr, polygon.get()), nullptr);
    EXPECT_EQ(CRasterAlgorithm::IntersectionPro(polygon.get(), nullptr), nullptr);
}

TEST_F(Polygons, IntersectionAcceptsPolygonsWithHeights) {
    const auto result = Intersection("POLYGON Z ((0 0 1,0 4 1,4 4 1,4 0 1,0 0 1))",
                                     "POLYGON ((2 2,2 6,6 6,6 2,2 2))");
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(wkbFlatten(result->getGeometryType()), wkbPolygon);
}
