#include "zelto/datasource/DatasetOpenInfo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

TEST(DatasetOpenInfo, StartsEmpty) {
    const CDatasetOpenInfo info;
    EXPECT_EQ(info.m_fileName, L"");
    EXPECT_EQ(info.m_access, GIS_READONLY);
    EXPECT_FALSE(info.m_mergeBands);
    EXPECT_EQ(static_cast<int>(info.m_dataSourceType), 0);
    EXPECT_EQ(info.GetSubFileCount(), 0);
}

TEST(DatasetOpenInfo, TakesTheKindFromTheFileName) {
    EXPECT_EQ(CDatasetOpenInfo(L"/data/a.shp", GIS_READONLY).m_dataSourceType, DS_VECTOR);
    EXPECT_EQ(CDatasetOpenInfo(L"/data/a.tif", GIS_READONLY).m_dataSourceType, DS_RASTER);
    EXPECT_EQ(CDatasetOpenInfo(L"/data/a.SHP", GIS_READONLY).m_dataSourceType, DS_RASTER);
    const CDatasetOpenInfo none(nullptr, GIS_UPDATE);
    EXPECT_EQ(none.m_fileName, L"");
    EXPECT_EQ(none.m_dataSourceType, DS_RASTER);
}

TEST(DatasetOpenInfo, ListsSubFilesInTheOrderAdded) {
    CDatasetOpenInfo info(L"/data/主文件.tif", GIS_UPDATE);
    info.AddSubFileNames(L"/data/一.tif");
    info.AddSubFileNames(L"/data/b.tif");
    info.AddSubFileNames(nullptr);
    EXPECT_EQ(info.m_fileName, L"/data/主文件.tif");
    EXPECT_EQ(info.m_access, GIS_UPDATE);
    EXPECT_FALSE(info.m_mergeBands);
    ASSERT_EQ(info.GetSubFileCount(), 3);
    EXPECT_EQ(info.GetSubFileName(0), L"/data/一.tif");
    EXPECT_EQ(info.GetSubFileName(1), L"/data/b.tif");
    EXPECT_EQ(info.GetSubFileName(2), L"");
}

TEST(DatasetOpenInfo, NamesOutsideTheListAreEmpty) {
    CDatasetOpenInfo info;
    info.AddSubFileNames(L"a");
    EXPECT_EQ(info.GetSubFileName(-1), L"");
    EXPECT_EQ(info.GetSubFileName(info.GetSubFileCount()), L"");
}

TEST(DatasetOpenInfo, MembersStandInTheirOrder) {
    const CDatasetOpenInfo info;
    const std::vector<const void*> members = {&info.m_fileName, &info.m_access, &info.m_mergeBands,
                                              &info.m_dataSourceType, &info.m_subFileNames};
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end(), std::less<>()));
}

TEST(DatasetOpenInfo, CopiesCarryEverything) {
    CDatasetOpenInfo info(L"/data/a.shp", GIS_UPDATE);
    info.m_mergeBands = true;
    info.AddSubFileNames(L"b");
    std::vector<CDatasetOpenInfo> copies = {info, CDatasetOpenInfo()};
    copies[1] = info;
    for (const CDatasetOpenInfo& copy : copies) {
        EXPECT_EQ(copy.m_fileName, L"/data/a.shp");
        EXPECT_EQ(copy.m_access, GIS_UPDATE);
        EXPECT_TRUE(copy.m_mergeBands);
        EXPECT_EQ(copy.m_dataSourceType, DS_VECTOR);
        EXPECT_EQ(copy.GetSubFileName(0), L"b");
    }
}
