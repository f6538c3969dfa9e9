#include "host/report/RasterFacts.h"

#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

#include <gdal_priv.h>

#include <cmath>
#include <limits>
#include <memory>

namespace zelto::host {

namespace {

std::unique_ptr<CRasterSource> MakeSource() {
    auto source = std::make_unique<CRasterSource>();
    source->SetForDisplay(true); // keeps a rotation as it is and reads the classes
    return source;
}

/// Opens a file with control points without the warped view that its size and geotransform
/// would be those of. Such a file may have a geotransform as well, which the engine then makes
/// north-up; the file's own is put back.
GISError OpenUnwarped(CRasterSource& source, const std::wstring& path) {
    const GISError error = source.Open(path.c_str(), GIS_READONLY, false);
    std::array<double, 6> own{};
    const bool none = source.GetGeoTransform(own.data(), true);
    if (error == GIS_SUCCESS && !none)
        source.SetGeoTransform(own.data(), false);
    return error;
}

GISError OpenWithSubdatasets(std::unique_ptr<CRasterSource>& source, const std::wstring& path) {
    source = MakeSource();
    const GISError error = source->OpenAsDataset(path.c_str(), GIS_READONLY);
    if (error != GIS_SUCCESS || source->GetGCPCount(true) == 0)
        return error;
    source = MakeSource();
    return OpenUnwarped(*source, path);
}

std::unique_ptr<CRasterSource> OpenAsItIs(const std::string& path) {
    ForgetReasons();
    std::unique_ptr<CRasterSource> source;
    GISError error = OpenWithSubdatasets(source, Wide(path));
    if (error == GIS_SUCCESS && source->GetBandCount() == 0 && source->GetSubRasterCount() == 0)
        error = GIS_NOT_SUPPORTED;
    if (error != GIS_SUCCESS)
        throw Failure(path, ReasonForFailure(path, error));
    return source;
}

std::vector<SubdatasetFacts> Subdatasets(GDALDataset& dataset) {
    std::vector<SubdatasetFacts> found;
    char** list = dataset.GetMetadata("SUBDATASETS");
    for (int number = 1;; ++number) {
        const std::string key = "SUBDATASET_" + std::to_string(number);
        const char* name = CSLFetchNameValue(list, (key + "_NAME").c_str());
        if (name == nullptr)
            return found;
        found.push_back({name, CSLFetchNameValueDef(list, (key + "_DESC").c_str(), "")});
    }
}

std::vector<ClassFacts> Classes(const CClassifyDisplayTable* table) {
    std::vector<ClassFacts> classes;
    for (int i = 0; table != nullptr && i < table->GetItemCount(); ++i) {
        const CClassifyDisplayItem& item = *table->GetItem(i);
        classes.push_back({(item.m_low + item.m_high) / 2.0,
                           {item.m_color.red, item.m_color.green, item.m_color.blue},
                           Narrow(item.m_name)});
    }
    return classes;
}

/// The statistics the band has from its opening, of a sample. Bands that could not be read and
/// bands without a valid pixel hold stand-ins in their place, which are told from true values by
/// sampling again.
std::optional<BandStatistics> SampledStatistics(CRasterBand& band) {
    const BandStatistics held = {band.GetMinimum(), band.GetMaximum(), band.GetMean(),
                                 band.GetStandardDeviation()};
    if (held.mean != 0.0 || held.standardDeviation != 0.0)
        return held;
    BandStatistics again;
    again.maximum = std::numeric_limits<double>::quiet_NaN();
    const bool read = band.ComputeStaticsFromCustom(again.minimum, again.maximum, again.mean,
                                                    again.standardDeviation, nullptr);
    return read && !std::isnan(again.maximum) ? std::optional(held) : std::nullopt;
}

void DescribeSample(BandFacts& facts, CRasterBand& band) {
    facts.statistics = SampledStatistics(band);
    if (!facts.statistics)
        return;
    facts.displayLimits.emplace(band.GetMinimum(), band.GetMaximum());
    facts.displayRange.emplace(band.GetStdDevLowerBound(), band.GetStdDevUpperBound());
}

bool HasFractions(const CRasterBand& band) {
    return GDALDataTypeIsFloating(static_cast<GDALDataType>(band.GetDataType())) != 0;
}

/// Statistics of every pixel of the bands with whole numbers, of all of them in one pass.
void DescribeWholeNumbers(RasterFacts& facts, CRasterSource& source, CDataProgress& progress) {
    std::vector<int> bands;
    for (int b = 0; b < source.GetBandCount(); ++b)
        if (!HasFractions(*source.GetRasterBand(b)))
            bands.push_back(b);
    CRegionStatistics statistics(&source);
    statistics.SetBands(bands);
    ForgetReasons();
    if (statistics.Compute(&progress) != GIS_SUCCESS)
        throw Failure(facts.path, ReasonOfEnding("its pixels cannot be read"));
    for (const CRegionStatistics::Band& band : statistics.GetBands()) {
        auto& described = facts.bands[static_cast<std::size_t>(band.index)].statistics;
        described.reset();
        if (band.count > 0)
            described = {band.minimum, band.maximum, band.mean, band.standardDeviation};
    }
}

/// Statistics of every pixel of a band with fractions, whose infinities count. Throws Failure
/// where a pixel cannot be read.
std::optional<BandStatistics> DescribeFractions(CRasterBand& band, const std::string& path,
                                                int number, CDataProgress& progress) {
    BandStatistics found;
    ForgetReasons();
    if (band.ComputeStatics(&found.minimum, &found.maximum, &found.mean, &found.standardDeviation,
                            false, &progress))
        return found;
    if (Interrupted())
        throw Failure(path, "interrupted");
    const std::string reason = WithoutName(path, LastReason("its pixels cannot be read"));
    if (reason.find("no valid pixels") != std::string::npos)
        return std::nullopt;
    throw Failure(path, "band " + std::to_string(number) + ": " + reason);
}

/// Puts the statistics of every pixel in place of the sample's.
void DescribeEveryPixel(RasterFacts& facts, CRasterSource& source, CDataProgress& progress) {
    DescribeWholeNumbers(facts, source, progress);
    for (int b = 0; b < source.GetBandCount(); ++b)
        if (CRasterBand& band = *source.GetRasterBand(b); HasFractions(band))
            facts.bands[static_cast<std::size_t>(b)].statistics =
                DescribeFractions(band, facts.path, b + 1, progress);
}

BandFacts DescribeBand(CRasterBand& band) {
    BandFacts facts;
    facts.dataType = Narrow(band.GetDataTypeName());
    facts.blockWidth = band.GetBlockXSize();
    facts.blockHeight = band.GetBlockYSize();
    if (band.IsHaveNoData())
        facts.noData = band.GetNoDataValue();
    if (band.IsHaveColorTable())
        facts.colors = band.GetColorTable()->GetColorEntryCount();
    for (int i = 0; i < band.GetOverviewCount(); ++i)
        facts.overviews.emplace_back(band.GetOverview(i)->GetWidth(),
                                     band.GetOverview(i)->GetHeight());
    return facts;
}

/// A virtual raster holds no pixels of its own: where its sources are missing or lead back to
/// itself there is nothing behind it, which a single pixel tells.
void RequireSources(const RasterFacts& facts, CRasterSource& source) {
    if (facts.format != "VRT" || facts.bands.empty())
        return;
    ForgetReasons();
    double sample = 0.0;
    if (!source.GetRasterBand(0)->GetDataToBuffer(0, 0, 1, 1, 1, 1, &sample))
        throw Failure(facts.path, LastReason("its sources cannot be read"));
}

void DescribeReference(RasterFacts& facts, CRasterSource& source) {
    source.InitCoordinateName();
    facts.coordinateName = Narrow(source.GetCoordinateNameNew());
    facts.datum = Narrow(source.GetDatumName());
    facts.units = Narrow(source.GetUnitName(false));
    facts.wkt = source.GetProjectionWKT();
}

void DescribeControlPoints(RasterFacts& facts, GDALDataset& dataset) {
    const GDAL_GCP* const points = dataset.GetGCPs();
    for (int i = 0; i < dataset.GetGCPCount(); ++i)
        facts.controlPoints.push_back(
            {points[i].dfGCPPixel, points[i].dfGCPLine, points[i].dfGCPX, points[i].dfGCPY});
    const char* const wkt = dataset.GetGCPProjection();
    facts.controlPointWkt = wkt != nullptr ? wkt : "";
    if (!facts.controlPointWkt.empty())
        facts.controlPointName =
            CCoordinateAlgorithm::GetCoordinateName(facts.controlPointWkt.c_str());
}

} // namespace

RasterFacts DescribeRaster(const std::string& path, ValueFacts values, CDataProgress& progress) {
    const std::unique_ptr<CRasterSource> source = OpenAsItIs(path);
    GDALDataset& dataset = *source->GetGDALDataset();
    RasterFacts facts;
    facts.path = path;
    facts.format = dataset.GetDriverName();
    facts.formatName = dataset.GetDriver()->GetMetadataItem(GDAL_DMD_LONGNAME);
    facts.width = source->GetWidth();
    facts.height = source->GetHeight();
    source->GetGeoTransform(facts.geoTransform.data(), false);
    facts.extent = source->GetExtent();
    DescribeControlPoints(facts, dataset);
    DescribeReference(facts, *source);
    facts.subdatasets = Subdatasets(dataset);
    facts.classes = Classes(source->GetClassifyDisplayTable());
    if (source->GetBandCount() > 0)
        facts.dataType = Narrow(source->GetRasterDataTypeName());
    for (int i = 0; i < source->GetBandCount(); ++i)
        facts.bands.push_back(DescribeBand(*source->GetRasterBand(i)));
    RequireSources(facts, *source);

    facts.values = values;
    for (int i = 0; values.sampled && i < source->GetBandCount(); ++i)
        DescribeSample(facts.bands[static_cast<std::size_t>(i)], *source->GetRasterBand(i));
    if (values.exact)
        DescribeEveryPixel(facts, *source, progress);
    return facts;
}

} // namespace zelto::host
