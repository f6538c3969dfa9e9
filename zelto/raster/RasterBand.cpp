#include "zelto/raster/RasterBand.h"

#include "zelto/display/ImgEnhance.h"
#include "zelto/display/ImgStretch.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/raster/internal/StatisticsOnDemand.h"

#include <gdal_priv.h>

#include <set>
#include <utility>

namespace {

/// The bands whose overviews are wrapped while one band is constructed on this thread. A virtual
/// raster may name any file as its overview, also one whose own overview leads back to it: each
/// list of overviews is wrapped once, and a band met again gets none.
class OverviewLists {
  public:
    explicit OverviewLists(const GDALRasterBand* band)
        : m_outermost(s_bands.empty()), m_first(s_bands.insert(band).second) {}
    ~OverviewLists() {
        if (m_outermost)
            s_bands.clear();
    }
    OverviewLists(const OverviewLists&) = delete;
    OverviewLists& operator=(const OverviewLists&) = delete;

    bool IsFirst() const { return m_first; }

  private:
    static thread_local std::set<const GDALRasterBand*> s_bands;
    bool m_outermost;
    bool m_first;
};

thread_local std::set<const GDALRasterBand*> OverviewLists::s_bands;

} // namespace

CRasterBand::CRasterBand(bool /*flag*/, GDALRasterBand* band) : m_band(band) {
    if (m_band == nullptr)
        return;
    ReadBasics();
    const zelto::BandSummary found = zelto::ApproximateRange(*m_band);
    StoreMinMax(found.minimum, found.maximum);
    BuildOverviewBands();
}

CRasterBand::CRasterBand(GDALRasterBand* band, bool forDisplay, bool isOverview) : m_band(band) {
    if (m_band == nullptr)
        return;
    ReadBasics();
    if (forDisplay || !isOverview)
        StoreSummary(
            zelto::SampledOrTypeRange(*m_band, m_hasNoData != 0 ? &m_noDataValue : nullptr));
    BuildOverviewBands();
}

CRasterBand::CRasterBand(GDALRasterBand* band, bool light,
                         std::shared_ptr<zelto::StatisticsOnDemand> source)
    : m_band(band), m_pending(std::make_unique<zelto::PendingStatistics>()) {
    using Kind = zelto::StatisticsOnDemand::Kind;
    ReadBasics();
    m_pending->number = source->Add(*band, light ? Kind::Range : Kind::Sampled);
    m_pending->source = std::move(source);
    BuildOverviewBands();
}

CRasterBand::~CRasterBand() {
    for (CRasterBand* overview : m_overviews)
        delete overview;
    delete m_enhancer;
    delete m_histogram;
    delete m_customHistogram;
    delete m_stretchFunction;
    delete[] m_cache;
}

void CRasterBand::ReadBasics() {
    m_width = m_band->GetXSize();
    m_height = m_band->GetYSize();
    m_band->GetBlockSize(&m_blockWidth, &m_blockHeight);
    const GDALDataType type = m_band->GetRasterDataType();
    m_dataType = static_cast<PixelDataType>(type);
    const std::string typeName = GDALGetDataTypeName(type);
    m_dataTypeName.assign(typeName.begin(), typeName.end()); // plain ASCII
    const double noData = m_band->GetNoDataValue(&m_hasNoData);
    m_noDataValue = m_hasNoData != 0 ? noData : 0.0; // drivers answer anything for "none"
    m_colorTable = m_band->GetColorTable();
    m_hasColorTable = m_colorTable != nullptr;
}

void CRasterBand::BuildOverviewBands() {
    const OverviewLists lists(m_band);
    const int count = lists.IsFirst() ? m_band->GetOverviewCount() : 0;
    for (int i = 0; i < count; ++i) {
        if (GDALRasterBand* overview = m_band->GetOverview(i))
            m_overviews.push_back(new CRasterBand(overview, false, true));
    }
}

void CRasterBand::FollowPyramid() {
    const auto levelOf = [&](const CRasterBand& overview) -> GDALRasterBand* {
        for (int i = 0; i < m_band->GetOverviewCount(); ++i) {
            GDALRasterBand* level = m_band->GetOverview(i);
            if (level != nullptr && level->GetXSize() == overview.m_width &&
                level->GetYSize() == overview.m_height)
                return level;
        }
        return nullptr;
    };
    for (CRasterBand* overview : m_overviews) {
        overview->m_band = levelOf(*overview);
        overview->m_colorTable =
            overview->m_band != nullptr ? overview->m_band->GetColorTable() : nullptr;
        overview->m_hasColorTable = overview->m_colorTable != nullptr;
    }
}

/// Every thread but the first waits, and then finds the statistics in place.
void CRasterBand::TakePendingStatistics() const {
    if (m_pending->stored.load(std::memory_order_acquire))
        return;
    const std::lock_guard lock(m_pending->storing);
    if (m_pending->stored.load(std::memory_order_relaxed))
        return;
    StoreSummary(m_pending->source->Of(m_pending->number));
    m_pending->stored.store(true, std::memory_order_release);
}

void CRasterBand::StoreSummary(const zelto::BandSummary& found) const {
    m_minimum = found.minimum;
    m_maximum = found.maximum;
    m_mean = found.mean;
    m_standardDeviation = found.standardDeviation;
    SetStandardDeviationBounds();
}

void CRasterBand::SetStandardDeviationBounds() const {
    m_stdDevUpper = m_mean + 2.0 * m_standardDeviation;
    if (m_stdDevUpper > m_maximum)
        m_stdDevUpper = m_maximum;
    m_stdDevLower = m_mean - 2.0 * m_standardDeviation;
    if (m_stdDevLower < m_minimum)
        m_stdDevLower = m_minimum;
}

CRasterBand* CRasterBand::GetOverview(int index) const {
    if (index < 0 || index >= GetOverviewCount())
        return nullptr;
    return m_overviews[static_cast<std::size_t>(index)];
}

void CRasterBand::StoreMinMax(double minimum, double maximum) {
    TakeStatistics();
    m_minimum = minimum;
    m_maximum = maximum;
    SetStandardDeviationBounds();
}
