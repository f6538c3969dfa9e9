#include "zelto/raster/internal/FragileFiles.h"

#include "tests/raster/BareDataset.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

namespace {

enum class Order { LITTLE, BIG };

/// Bytes that a test writes one integer after the other.
class Bytes {
  public:
    explicit Bytes(Order order) : m_order(order) {}

    Bytes& Text(const std::string& text) {
        m_bytes += text;
        return *this;
    }
    Bytes& Integer(std::uint64_t value, int size) {
        std::string field;
        for (int i = 0; i < size; ++i)
            field += static_cast<char>(value >> 8U * static_cast<unsigned>(i) & 0xFFU);
        if (m_order == Order::BIG)
            std::reverse(field.begin(), field.end());
        m_bytes += field;
        return *this;
    }
    const std::string& All() const { return m_bytes; }

  private:
    Order m_order;
    std::string m_bytes;
};

/// What stands before the first directory of a TIFF; that follows right after it.
Bytes TiffHeader(Order order, bool isBig) {
    Bytes bytes(order);
    bytes.Text(order == Order::BIG ? "MM" : "II");
    if (isBig)
        bytes.Integer(43, 2).Integer(8, 2).Integer(0, 2).Integer(16, 8);
    else
        bytes.Integer(42, 2).Integer(8, 4);
    return bytes;
}

struct Entry {
    int tag;
    int type;
};
constexpr int WIDTH_TAG = 256;
constexpr int STRIPS_TAG = 273;
constexpr int SHORT = 3;
constexpr int NO_TYPE = 127;

void AddDirectory(Bytes& bytes, bool isBig, const std::vector<Entry>& entries, std::uint64_t next) {
    const int width = isBig ? 8 : 4;
    bytes.Integer(entries.size(), isBig ? 8 : 2);
    for (const Entry& entry : entries)
        bytes.Integer(static_cast<std::uint64_t>(entry.tag), 2)
            .Integer(static_cast<std::uint64_t>(entry.type), 2)
            .Integer(1, width)
            .Integer(1, width);
    bytes.Integer(next, width);
}

bool SurvivesChangeOf(const std::string& bytes) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a.tif", bytes);
    return zelto::SurvivesChange(folder.File("a.tif"));
}

bool SurvivesOpeningOf(const std::string& bytes) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a.nc", bytes);
    return zelto::SurvivesOpening(folder.File("a.nc"));
}

/// A NetCDF header of two dimensions, an attribute of the file and a variable with an attribute.
/// @param type of the file's attribute, of one value in four bytes
std::string NetcdfHeader(int version, int type) {
    const int count = version == 5 ? 8 : 4;
    const int offset = version == 1 ? 4 : 8;
    Bytes bytes(Order::BIG);
    bytes.Text("CDF").Integer(static_cast<std::uint64_t>(version), 1).Integer(0, count);
    bytes.Integer(10, 4).Integer(2, count);
    bytes.Integer(1, count).Text(std::string("x\0\0\0", 4)).Integer(2, count);
    bytes.Integer(5, count).Text(std::string("width\0\0\0", 8)).Integer(3, count);
    bytes.Integer(12, 4).Integer(1, count);
    bytes.Integer(1, count).Text(std::string("a\0\0\0", 4)).Integer(static_cast<unsigned>(type), 4);
    bytes.Integer(1, count).Text(std::string("\1\0\0\0", 4));
    bytes.Integer(11, 4).Integer(1, count);
    bytes.Integer(1, count).Text(std::string("v\0\0\0", 4));
    bytes.Integer(2, count).Integer(0, count).Integer(1, count);
    bytes.Integer(12, 4).Integer(1, count);
    bytes.Integer(1, count).Text(std::string("b\0\0\0", 4)).Integer(6, 4); // a double
    bytes.Integer(1, count).Integer(0, 8);
    bytes.Integer(4, 4).Integer(24, count).Integer(300, offset);
    return bytes.All();
}

} // namespace

TEST(FragileFiles, AListOfStripsWithoutATypeIsFoundInEveryKindOfTiff) {
    for (const Order order : {Order::LITTLE, Order::BIG})
        for (const bool isBig : {false, true})
            for (const int tag : {273, 279, 324, 325}) {
                SCOPED_TRACE(tag);
                Bytes sound = TiffHeader(order, isBig);
                Bytes fragile = sound;
                AddDirectory(sound, isBig, {{WIDTH_TAG, NO_TYPE}, {tag, SHORT}}, 0);
                EXPECT_TRUE(SurvivesChangeOf(sound.All()));
                AddDirectory(fragile, isBig, {{WIDTH_TAG, SHORT}, {tag, NO_TYPE}}, 0);
                EXPECT_FALSE(SurvivesChangeOf(fragile.All()));
            }
}

TEST(FragileFiles, TheDirectoriesOfThePyramidCountToo) {
    for (const int type : {SHORT, NO_TYPE}) {
        Bytes bytes = TiffHeader(Order::LITTLE, false);
        AddDirectory(bytes, false, {{STRIPS_TAG, SHORT}}, 8 + 2 + 12 + 4);
        AddDirectory(bytes, false, {{STRIPS_TAG, type}}, 0);
        EXPECT_EQ(SurvivesChangeOf(bytes.All()), type == SHORT);
    }
}

TEST(FragileFiles, WhatIsNoTiffIsLeftToItsDriver) {
    for (const bool isBig : {false, true}) {
        Bytes bytes = TiffHeader(Order::LITTLE, isBig);
        AddDirectory(bytes, isBig, {{STRIPS_TAG, NO_TYPE}}, 0);
        std::string other = bytes.All();
        other[2] = 44; // no version that there is
        EXPECT_TRUE(SurvivesChangeOf(other));
        other = bytes.All();
        other[0] = 'M'; // no byte order that there is
        EXPECT_TRUE(SurvivesChangeOf(other));
    }
    EXPECT_TRUE(SurvivesChangeOf(""));
    EXPECT_TRUE(SurvivesChangeOf("II"));
}

TEST(FragileFiles, ADirectoryThatTheFileCutsOffIsLeftToItsDriver) {
    Bytes bytes = TiffHeader(Order::LITTLE, false);
    AddDirectory(bytes, false, {{WIDTH_TAG, SHORT}, {STRIPS_TAG, NO_TYPE}}, 0);
    EXPECT_FALSE(SurvivesChangeOf(bytes.All()));
    EXPECT_TRUE(SurvivesChangeOf(bytes.All().substr(0, 8 + 2 + 12 + 4)));
    Bytes beyond(Order::LITTLE);
    EXPECT_TRUE(SurvivesChangeOf(beyond.Text("II").Integer(42, 2).Integer(1000, 4).All()));
}

TEST(FragileFiles, DirectoriesThatLeadBackToThemselvesComeToAnEnd) {
    Bytes one = TiffHeader(Order::LITTLE, false);
    AddDirectory(one, false, {{STRIPS_TAG, SHORT}}, 8);
    EXPECT_TRUE(SurvivesChangeOf(one.All()));
    Bytes empty = TiffHeader(Order::LITTLE, false);
    AddDirectory(empty, false, {}, 8);
    EXPECT_TRUE(SurvivesChangeOf(empty.All()));
}

TEST(FragileFiles, AWholeNetcdfHeaderIsOpenedAndNoneThatIsCut) {
    for (const int version : {1, 2, 5}) {
        SCOPED_TRACE(version);
        const std::string whole = NetcdfHeader(version, 1);
        EXPECT_TRUE(SurvivesOpeningOf(whole));
        for (std::size_t length = 4; length < whole.size(); ++length)
            EXPECT_FALSE(SurvivesOpeningOf(whole.substr(0, length))) << length;
    }
}

TEST(FragileFiles, AnAttributeOfAnUnknownTypeCountsItsBytes) {
    EXPECT_TRUE(SurvivesOpeningOf(NetcdfHeader(1, 12)));
    EXPECT_TRUE(SurvivesOpeningOf(NetcdfHeader(5, 1000)));
}

TEST(FragileFiles, OtherNetcdfFormatsAreLeftToTheirDriver) {
    EXPECT_TRUE(SurvivesOpeningOf(std::string("CDF\3\xFF\xFF\xFF\xFF", 8)));
    EXPECT_TRUE(SurvivesOpeningOf("\x89HDF"));
    EXPECT_TRUE(SurvivesOpeningOf("CD"));
}

TEST(FragileFiles, OnlyAZippedElevationTileIsLookedForInItsArchive) {
    GDALAllRegister();
    const TemporaryFolder folder;
    constexpr int SIDE = 1201;
    const std::string tile = folder.File("N10W110.hgt");
    WriteFile(tile, std::string(std::size_t{SIDE} * SIDE * 2, '\1'));
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(tile.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(dataset, nullptr);
    ASSERT_STREQ(dataset->GetDriver()->GetDescription(), "SRTMHGT");
    EXPECT_TRUE(zelto::SurvivesReading(*dataset, tile));
    EXPECT_TRUE(zelto::SurvivesReading(*dataset, folder.File("a.zip"))) << "no tile's name";
    EXPECT_FALSE(zelto::SurvivesReading(*dataset, folder.File("N10W110.hgt.zip")));
    const std::string other = zelto::test::WriteRaster(folder.File("N10W110.tif"), {}, {{1.0}});
    const GDALDatasetUniquePtr image(GDALDataset::Open(other.c_str(), GDAL_OF_RASTER));
    EXPECT_TRUE(zelto::SurvivesReading(*image, folder.File("N10W110.hgt.zip")));
    zelto::test::BareDataset withoutDriver(1, 1, 1);
    EXPECT_TRUE(zelto::SurvivesReading(withoutDriver, folder.File("N10W110.hgt.zip")));
}
