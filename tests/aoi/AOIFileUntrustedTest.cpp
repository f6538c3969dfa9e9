#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawRectangle.h"

#include "tests/aoi/AoiFileBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace zelto::test;

constexpr std::int64_t INT32_MAXIMUM = std::numeric_limits<std::int32_t>::max();

class UntrustedAOIFile : public testing::Test {
  protected:
    GISError Open(const std::string& bytes) {
        WriteFile(m_folder.File("a.aif"), bytes);
        return m_source.Open(m_folder.WideFile("a.aif").c_str(), GIS_READONLY, false);
    }
    int Count() const { return m_source.GetDrawShapeCount(); }

    TemporaryFolder m_folder;
    CAOISource m_source;
};

TEST_F(UntrustedAOIFile, EveryOtherTagIsRefused) {
    const std::string shape = RectangleBytes('\4', 0, 1, 1, 1);
    for (const std::string tag : {"", "ZELTO_AO", "ZELTO_AOI2", "zelto_aoi", "ZELTO_AOI ", "AOI"})
        EXPECT_EQ(Open(AoiHeaderBytes(1, "", tag) + shape), GIS_NOT_SUPPORTED) << tag;
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(Open("ZELTO_AOI" + std::string(2000, '\0')), GIS_NOT_SUPPORTED) << "one byte each";
    std::string unterminated = AoiHeaderBytes(1);
    for (int i = 18; i < 512; i += 2)
        unterminated[std::size_t(i)] = 'x';
    EXPECT_EQ(Open(unterminated), GIS_NOT_SUPPORTED);
}

TEST_F(UntrustedAOIFile, BytesBehindTheTagsTerminatorDoNotCount) {
    std::string bytes = AoiHeaderBytes(1) + RectangleBytes('\4', 0, 1, 1, 1);
    for (int i = 20; i < 512; ++i)
        bytes[std::size_t(i)] = char(0xCC);
    EXPECT_EQ(Open(bytes), GIS_SUCCESS);
    EXPECT_EQ(Count(), 1);
}

TEST_F(UntrustedAOIFile, VersionPaddingAndExtentDoNotCount) {
    std::string bytes = AoiHeaderBytes(1) + RectangleBytes('\4', 0, 1, 1, 1);
    for (int i = 512; i < 516; ++i)
        bytes[std::size_t(i)] = char(0xFF);
    for (int i = 1540; i < 1576; ++i)
        bytes[std::size_t(i)] = char(0xFF);
    EXPECT_EQ(Open(bytes), GIS_SUCCESS);
    EXPECT_EQ(m_source.GetExtent().m_top, 1);
}

TEST_F(UntrustedAOIFile, EveryTruncationGivesTheShapesBeforeIt) {
    const std::string whole = AoiHeaderBytes(3) + RectangleBytes('\4', 0, 1, 1, 1) +
                              PolygonBytes(3, 3) + RectangleBytes('\5', 0, 1, 1, 1);
    const std::size_t ends[] = {1584 + 33, 1584 + 33 + 53, whole.size()};
    // Within the header every length is refused alike; behind it every byte counts.
    for (std::size_t size = 0; size <= whole.size();
         size += size < 480 || (size >= 540 && size < 1500) ? 60 : 1) {
        const GISError error = Open(whole.substr(0, size));
        if (size < 1584) {
            ASSERT_EQ(error, GIS_NOT_SUPPORTED) << size;
            continue;
        }
        ASSERT_EQ(error, GIS_SUCCESS) << size;
        ASSERT_EQ(Count(), (size >= ends[0]) + (size >= ends[1]) + (size >= ends[2])) << size;
    }
}

TEST_F(UntrustedAOIFile, AReferenceTextWithoutTerminatorEndsWithItsField) {
    EXPECT_EQ(Open(AoiHeaderBytes(0, std::string(1024, 'w'))), GIS_SUCCESS);
    EXPECT_EQ(m_source.GetSpatialReferenceWKT(), std::string(1024, 'w'));
    EXPECT_FALSE(m_source.IsGeographic());
}

TEST_F(UntrustedAOIFile, NegativeAndZeroCountsReadNothing) {
    const std::string shape = RectangleBytes('\4', 0, 1, 1, 1);
    for (std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, INT32_MAXIMUM + 1,
                               std::numeric_limits<std::int64_t>::min()})
        EXPECT_EQ(Open(AoiHeaderBytes(count) + shape), GIS_SUCCESS) << count;
    EXPECT_EQ(Count(), 0);
}

TEST_F(UntrustedAOIFile, TheLowHalfOfTheCountIsUsed) {
    const std::string shape = RectangleBytes('\4', 0, 1, 1, 1);
    EXPECT_EQ(Open(AoiHeaderBytes((std::int64_t{7} << 32) + 1) + shape + shape), GIS_SUCCESS);
    EXPECT_EQ(Count(), 1);
}

TEST_F(UntrustedAOIFile, AHugeCountEndsWithTheFile) {
    const std::string shape = RectangleBytes('\4', 0, 1, 1, 1);
    EXPECT_EQ(Open(AoiHeaderBytes(INT32_MAXIMUM) + shape + shape), GIS_SUCCESS);
    EXPECT_EQ(Count(), 2);
}

TEST_F(UntrustedAOIFile, AHugeVertexCountTakesNoMemory) {
    EXPECT_EQ(Open(AoiHeaderBytes(2) + RectangleBytes('\4', 0, 1, 1, 1) +
                   PolygonBytes(std::int32_t(INT32_MAXIMUM), 10)),
              GIS_SUCCESS);
    EXPECT_EQ(Count(), 1);
}

TEST_F(UntrustedAOIFile, AShortPolygonsVerticesAreReadAsRecords) {
    // Two vertices announced and skipped: their bytes are 0 0 0 0 0 0 0 0 … up to the next
    // record, each byte a record without a shape until a byte that names a kind comes.
    const std::string shape = RectangleBytes('\4', 10, 20, 5, 4);
    const std::string record = PolygonBytes(2, 0) + std::string(32, '\0');
    EXPECT_EQ(Open(AoiHeaderBytes(2) + record + shape), GIS_SUCCESS);
    EXPECT_EQ(Count(), 0) << "the second record is the first of the skipped bytes";
    EXPECT_EQ(Open(AoiHeaderBytes(1 + 32 + 1) + record + shape), GIS_SUCCESS);
    EXPECT_EQ(Count(), 1);
    for (std::int32_t count : {0, 1, -1, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(Open(AoiHeaderBytes(2) + PolygonBytes(count, 0) + shape), GIS_SUCCESS);
        EXPECT_EQ(Count(), 1) << count;
    }
}

TEST_F(UntrustedAOIFile, UndefinedAndInvertedNumbersAreTakenAsTheyAre) {
    const double nan = std::nan("");
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Open(AoiHeaderBytes(4) + RectangleBytes('\4', nan, nan, nan, nan) +
                   RectangleBytes('\5', infinite, 0, infinite, 1) +
                   RectangleBytes('\4', 10, 20, -5, -4) + RectangleBytes('\5', 0, 0, 0, 0)),
              GIS_SUCCESS);
    ASSERT_EQ(Count(), 4);
    const auto& inverted = dynamic_cast<CDrawRectangle&>(*m_source.GetDrawShape(2));
    EXPECT_EQ(inverted.m_topLeft, CPoint2D(5, 24)) << "drawn from (10, 20) to (5, 24)";
    EXPECT_EQ(inverted.m_width, 5);
    EXPECT_EQ(inverted.m_height, 4);
    m_source.TopoRelationWithPoint(1, 1);
    m_source.GetOGRGeometries();
    m_source.RecomputeExtent();
    EXPECT_EQ(m_source.SaveAs(m_folder.WideFile("b.aif").c_str(), VDF_AOI), GIS_SUCCESS);
}

TEST_F(UntrustedAOIFile, RandomBytesBehindAHeaderDoNoHarm) {
    SCOPED_TRACE("seed 32");
    std::mt19937 engine(32);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> kind(0, 8);
    for (int i = 0; i < 300; ++i) {
        std::string bytes = AoiHeaderBytes(INT32_MAXIMUM);
        for (int k = 0; k < 500; ++k)
            bytes += char(k % 7 == 0 ? kind(engine) : byte(engine));
        ASSERT_EQ(Open(bytes), GIS_SUCCESS);
        m_source.TopoRelationWithPoint(0, 0);
    }
}

TEST_F(UntrustedAOIFile, AFolderNamedLikeAFileIsRefused) {
    EXPECT_NE(m_source.Open((m_folder.WideFile("") + L"/../").c_str(), GIS_READONLY, false),
              GIS_SUCCESS);
    EXPECT_EQ(Open(""), GIS_NOT_SUPPORTED);
}

} // namespace
