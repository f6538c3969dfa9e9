#include "zelto/algorithm/RegionStatistics.h"

#include "zelto/algorithm/internal/PreciseMoments.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionCovariance.h"
#include "zelto/algorithm/internal/RegionScan.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr const wchar_t* TITLE = L"计算统计信息";

} // namespace

CRegionStatistics::CRegionStatistics(CRasterSource* source) : m_source(source) {
    std::vector<int> all;
    for (int b = 0; source != nullptr && b < source->GetBandCount(); ++b)
        all.push_back(b);
    SetBands(all);
}

CRegionStatistics::~CRegionStatistics() = default;

void CRegionStatistics::SetBands(const std::vector<int>& bands) {
    m_bands.clear();
    m_values.clear();
    for (const int band : bands) {
        if (m_source == nullptr || m_source->GetRasterBand(band) == nullptr)
            continue;
        m_bands.emplace_back();
        m_bands.back().index = band;
    }
}

void CRegionStatistics::SetAOI(CAOISource* aoi) {
    m_shapes.clear();
    m_values.clear();
    m_wholeRaster = aoi == nullptr;
    // Without memory for all of its shapes an area holds nothing, rather than a part of itself.
    zelto::NoThrow(false, [&] {
        m_shapes.reserve(static_cast<std::size_t>(aoi != nullptr ? aoi->GetDrawShapeCount() : 0));
        for (int i = 0; aoi != nullptr && i < aoi->GetDrawShapeCount(); ++i)
            m_shapes.push_back(aoi->GetDrawShape(i));
        return true;
    });
}

/// Whether the raster still has all the bands that are asked for.
bool CRegionStatistics::IsUsable() const {
    const auto isGone = [this](const Band& band) {
        return m_source->GetRasterBand(band.index) == nullptr;
    };
    if (!zelto::IsUsable(m_source))
        return false;
    if (std::any_of(m_bands.begin(), m_bands.end(), isGone))
        return zelto::Refuse(*m_source, "the raster has fewer bands than before");
    return true;
}

void CRegionStatistics::SetShape(CDrawShape* shape) {
    m_shapes.clear();
    m_values.clear();
    m_wholeRaster = shape == nullptr;
    if (shape != nullptr)
        m_shapes.push_back(shape);
}

void CRegionStatistics::SetSampleSize(__int64 values) {
    m_sampleSize = std::max<__int64>(values, 0);
    m_values.clear();
}

void CRegionStatistics::SetBox(const CBoundingBox& box) {
    m_box = std::make_unique<CDrawRectangle>();
    m_box->AddVertex(box.TopLeft());
    m_box->AddVertex(box.BottomRight());
    SetShape(m_box.get());
}

void CRegionStatistics::SetRows(int first, int count) {
    m_firstRow = first;
    m_rowCount = count;
    m_values.clear();
}

std::vector<int> CRegionStatistics::BandIndices() const {
    std::vector<int> bands;
    for (const Band& band : m_bands)
        bands.push_back(band.index);
    return bands;
}

zelto::RegionScan CRegionStatistics::MakeScan() const {
    return MakeScan(BandIndices());
}

zelto::RegionScan CRegionStatistics::MakeScan(const std::vector<int>& bands) const {
    std::optional<std::int64_t> most;
    if (m_sampleSize > 0 || m_approx) {
        const std::int64_t all = m_sampleSize > 0 ? m_sampleSize : zelto::READ_BUDGET_SAMPLES;
        const auto bandCount = std::max<std::int64_t>(std::ssize(bands), 1);
        most = std::max<std::int64_t>(all / bandCount, 1);
    }
    std::optional<zelto::RowLimits> rows;
    if (m_rowCount > 0)
        rows = zelto::RowLimits{m_firstRow, m_rowCount};
    if (m_wholeRaster)
        return {*m_source, bands, std::nullopt, most, rows};
    return {*m_source, bands, m_shapes, most, rows};
}

GISError CRegionStatistics::Compute(CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        return IsUsable() && ComputeMoments(MakeScan(), nullptr, progress) ? GIS_SUCCESS
                                                                           : GIS_FAILED;
    });
}

bool CRegionStatistics::ComputeMoments(const zelto::RegionScan& scan,
                                       zelto::RegionCovariance* covariance,
                                       CDataProgress* progress) {
    m_sampled = scan.IsSampled();
    std::vector<zelto::PreciseMoments> moments(m_bands.size());
    m_values.clear();
    std::vector<std::vector<double>> kept(m_sampleSize > 0 ? m_bands.size() : 0);
    const auto add = [&](std::size_t b, std::span<const double> values) {
        moments[b].Add(values);
        if (!kept.empty())
            kept[b].insert(kept[b].end(), values.begin(), values.end());
    };
    const auto addStrip = [&](std::span<const double*> samples, const zelto::RegionSpans& spans) {
        if (covariance != nullptr)
            covariance->Add(samples, spans);
    };
    if (!scan.VisitValues(TITLE, progress, add, addStrip))
        return false;
    m_values = std::move(kept);
    for (std::size_t b = 0; b < m_bands.size(); ++b) {
        const bool any = moments[b].Count() > 0;
        m_bands[b].count = moments[b].Count();
        m_bands[b].minimum = any ? moments[b].Minimum() : NOT_A_NUMBER;
        m_bands[b].maximum = any ? moments[b].Maximum() : NOT_A_NUMBER;
        m_bands[b].mean = moments[b].Mean();
        m_bands[b].standardDeviation = moments[b].StandardDeviation();
    }
    return true;
}
