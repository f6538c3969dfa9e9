#include "zelto/algorithm/ZonalStatistics.h"
#include "zelto/display/ComposedRaster.h"

#include "tests/algorithm/RegionFixture.h"
#include "tests/algorithm/RegionOperations.h"

using namespace zelto::test;

namespace {

class UnusableSources : public RegionTest {
  protected:
    /// The area that is asked: a rectangle and an ellipse over the raster.
    UnusableSources() : m_area(Area(Rectangle(1, 7, 7, 1), Ellipse(2, 8, 6, 0))) {}

    std::unique_ptr<CRasterSource> OpenThreeBands() {
        const auto pixels = MakePixels(8, 8, [](int c, int r) { return 1.0 + c + 8 * r; });
        return Open(UnitSpec(8, 8), {pixels, pixels, pixels});
    }

    void ExpectAllRefuse(CRasterSource* source) {
        for (const RegionOperation& operation : RegionOperations()) {
            CGISDataSource::ClearLastErrorText();
            EXPECT_FALSE(operation.run(source, *m_area)) << operation.name;
            EXPECT_NE(CGISDataSource::GetLastErrorText(), "") << operation.name;
        }
    }
    void ExpectReportsFail(CRegionStatistics& statistics) {
        std::vector<__int64> counts(4);
        EXPECT_EQ(statistics.Compute(nullptr), GIS_FAILED);
        EXPECT_EQ(statistics.ComputeCovariance(nullptr), GIS_FAILED);
        EXPECT_EQ(statistics.ComputePercentiles(2, 98, nullptr), GIS_FAILED);
        EXPECT_EQ(statistics.ComputeHistogram(0, 0, 1, counts, nullptr), GIS_FAILED);
        EXPECT_EQ(statistics.ComputeWithCovariance(nullptr), GIS_FAILED);
        std::vector<CRegionStatistics::Sums> sums(1);
        EXPECT_EQ(statistics.ComputeSums(sums, nullptr), GIS_FAILED);
        EXPECT_EQ(sums.size(), 1U);
        CRegionStatistics::Products products;
        EXPECT_EQ(statistics.ComputeProducts(products, nullptr), GIS_FAILED);
        EXPECT_TRUE(products.sums.empty());
        unsigned char inside[8] = {7};
        EXPECT_EQ(statistics.FillMask(0, 1, inside), GIS_FAILED);
        EXPECT_EQ(inside[0], 7);
        EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
    }

    std::unique_ptr<CAOISource> m_area;
};

} // namespace

TEST_F(UnusableSources, AnOpenOneIsUsedByEveryOperation) {
    const auto source = OpenThreeBands();
    for (const RegionOperation& operation : RegionOperations())
        EXPECT_TRUE(operation.run(source.get(), *m_area)) << operation.name;
}

TEST_F(UnusableSources, NullIsRefused) {
    ExpectAllRefuse(nullptr);
    CRegionStatistics statistics(nullptr);
    ExpectReportsFail(statistics);
}

TEST_F(UnusableSources, ClosedOnesCountBandsThatAreGone) {
    const auto source = OpenThreeBands();
    CRegionStatistics before(source.get());
    source->Close();
    ASSERT_EQ(source->GetBandCount(), 3);
    ExpectAllRefuse(source.get());
    ExpectReportsFail(before);
    EXPECT_NE(CGISDataSource::GetLastErrorText().find(m_path), std::string::npos)
        << CGISDataSource::GetLastErrorText();
}

TEST_F(UnusableSources, OnesThatFailedToReopenCountBandsThatAreGone) {
    const auto source = OpenThreeBands();
    std::filesystem::remove(m_path);
    ASSERT_NE(source->Reopen(GIS_READONLY, false), GIS_SUCCESS);
    ExpectAllRefuse(source.get());
    CRegionStatistics statistics(source.get());
    ExpectReportsFail(statistics);
}

TEST_F(UnusableSources, ACompositionThatFailedCountsThreeBandsItDoesNotHave) {
    const auto here = OpenThreeBands();
    RasterSpec farAway = UnitSpec(8, 8);
    farAway.geoTransform = NorthUp(1000, 1000, 1);
    const auto there = Open(farAway, {Pixels(64, 1.0)});
    CComposedRaster composed;
    ASSERT_NE(composed.CreateRaster(here.get(), here->GetRasterBand(0), there.get(),
                                    there->GetRasterBand(0), here.get(), here->GetRasterBand(1)),
              GIS_SUCCESS);
    ASSERT_EQ(composed.GetBandCount(), 3);
    ExpectAllRefuse(&composed);
    CRegionStatistics statistics(&composed);
    ExpectReportsFail(statistics);
}

TEST_F(UnusableSources, OnesNeverOpenedDoNoHarm) {
    CRasterSource never;
    CRasterSource failed;
    failed.Open(m_folder.WideFile("missing.tif").c_str(), GIS_READONLY, false);
    for (CRasterSource* source : {&never, &failed}) {
        for (const RegionOperation& operation : RegionOperations())
            EXPECT_FALSE(operation.run(source, *m_area)) << operation.name;
        CRegionStatistics statistics(source);
        EXPECT_TRUE(statistics.GetBands().empty());
        statistics.Compute(nullptr);
        CRasterAOI aoi(source, m_area.get());
        aoi.Initialize();
        EXPECT_FALSE(aoi.IsInAOI(4, 4));
        aoi.GetExtent();
    }
}

TEST_F(UnusableSources, OnesReopenedWithFewerBandsAreRefusedForThoseThatAreGone) {
    const auto source = OpenThreeBands();
    CRegionStatistics before(source.get());
    CZonalStatistics zones(source.get());
    ASSERT_TRUE(zones.AddZone(nullptr));
    std::filesystem::remove(m_path);
    WriteRaster(m_path, UnitSpec(8, 8), {Pixels(64, 1.0)});
    ASSERT_EQ(source->Reopen(GIS_READONLY, false), GIS_SUCCESS);
    ASSERT_EQ(source->GetBandCount(), 1);
    ExpectReportsFail(before);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_path + ": the raster has fewer bands than before");
    CGISDataSource::ClearLastErrorText();
    EXPECT_EQ(zones.Compute(nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_path + ": the raster has fewer bands than before");
    EXPECT_FALSE(zones.AddZone(nullptr));
    EXPECT_EQ(zones.GetZoneCount(), 1);
    CRegionStatistics after(source.get());
    EXPECT_EQ(after.Compute(nullptr), GIS_SUCCESS);
}

TEST_F(UnusableSources, ClosedOnesHaveNoBandsForZones) {
    const auto source = OpenThreeBands();
    source->Close();
    CZonalStatistics zones(source.get());
    EXPECT_FALSE(zones.AddZone(nullptr));
    EXPECT_EQ(zones.Compute(nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), m_path + ": the raster is not open");
}

TEST_F(UnusableSources, OnesThatHoldNoBandsAreRefused) {
    m_path = m_folder.File("none.vrt");
    WriteFile(m_path, "<VRTDataset rasterXSize='8' rasterYSize='8'>"
                      "<GeoTransform>0,1,0,8,0,-1</GeoTransform></VRTDataset>");
    CRasterSource source;
    source.SetForDisplay(false);
    ASSERT_NE(source.Open(m_folder.WideFile("none.vrt").c_str(), GIS_READONLY, false), GIS_SUCCESS);
    ExpectAllRefuse(&source);
}
