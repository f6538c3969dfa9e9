#include "tests/raster/TestBand.h"

#include <array>

using zelto::test::TestBand;

namespace {

GDALColorTable TwoColours() {
    GDALColorTable table;
    const GDALColorEntry red{255, 0, 0, 255};
    const GDALColorEntry teal{0, 128, 127, 255};
    table.SetColorEntry(0, &red);
    table.SetColorEntry(1, &teal);
    return table;
}

} // namespace

TEST(RasterBandColorTable, IsFoundAtConstruction) {
    TestBand band({.width = 2, .height = 1}, {0, 1}, GDAL_OF_UPDATE);
    GDALColorTable table = TwoColours();
    ASSERT_EQ(band->SetColorTable(&table), GIS_SUCCESS);
    EXPECT_NE(band->GetColorTable(), nullptr) << "the pointer is read again";
    EXPECT_NE(band->GetColorTable(), &table) << "GDAL keeps a copy";
    EXPECT_FALSE(band->IsHaveColorTable()) << "the flag is that of construction";
    band.Open(GDAL_OF_READONLY);
    EXPECT_TRUE(band->IsHaveColorTable());
    ASSERT_NE(band->GetColorTable(), nullptr);
    EXPECT_EQ(band->GetColorTable()->GetColorEntry(1)->c2, 128);
}

TEST(RasterBandColorTable, NullAndRefusedTablesFail) {
    TestBand band({.width = 2, .height = 1, .type = GDT_Float32}, {0, 1}, GDAL_OF_UPDATE);
    EXPECT_EQ(band->SetColorTable(static_cast<GDALColorTable*>(nullptr)), GIS_FAILED);
    GDALColorTable table = TwoColours();
    tagColorEntry entry;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_EQ(band->SetColorTable(&table), GIS_FAILED) << "no colour tables on Float32";
    EXPECT_EQ(band->SetColorTable(&entry, 1), GIS_FAILED);
    CPLPopErrorHandler();
    EXPECT_EQ(band->GetColorTable(), nullptr);
    EXPECT_EQ(band->SetColorTable(nullptr, 1), GIS_FAILED);
}

TEST(RasterBandColorTable, RecordsBecomeEntriesWithoutRefreshingThePointer) {
    TestBand band({.width = 2, .height = 1}, {0, 1}, GDAL_OF_UPDATE);
    std::array<tagColorEntry, 3> records{};
    records[1] = {10, 20, 30, 40};
    records[2] = {50, 60, 70, 80};
    EXPECT_EQ(band->SetColorTable(records.data(), 3), GIS_SUCCESS);
    EXPECT_EQ(band->GetColorTable(), nullptr);
    EXPECT_FALSE(band->IsHaveColorTable());
    const GDALColorTable* written = band.Gdal()->GetColorTable();
    ASSERT_NE(written, nullptr);
    EXPECT_EQ(written->GetColorEntry(1)->c1, 10);
    EXPECT_EQ(written->GetColorEntry(2)->c2, 60);
    EXPECT_EQ(written->GetColorEntry(2)->c3, 70);
    EXPECT_EQ(written->GetColorEntry(2)->c4, 80);
}
