#include "zelto/display/RasterHistogram.h"

#include "zelto/baselib/internal/LastError.h"
#include "zelto/display/internal/HistogramLookup.h"

#include <atomic>
#include <cmath>
#include <mutex>
#include <new>
#include <numeric>

namespace {

constexpr double TOLERANCE = 1e-5;

/// Guards the building of auto-levels maps, which happens once per histogram and threshold.
std::mutex& BuildMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

CRasterHistogram::CRasterHistogram(double min, double max, int buckets, const int* counts,
                                   bool includeOutOfRange, bool approxOK)
    : m_minimum(min), m_maximum(max), m_includeOutOfRange(includeOutOfRange), m_approxOK(approxOK) {
    if (counts == nullptr || buckets < 1)
        return;
    m_counts.reset(new (std::nothrow) int[static_cast<std::size_t>(buckets)]);
    if (!m_counts)
        return;
    std::copy_n(counts, buckets, m_counts.get());
    m_buckets = buckets;
}

CRasterHistogram::~CRasterHistogram() = default;

bool CRasterHistogram::IsCoincidence(double min, double max, int buckets,
                                     const bool* includeOutOfRange, const bool* approxOK) const {
    return std::fabs(m_minimum - min) <= TOLERANCE && std::fabs(m_maximum - max) <= TOLERANCE &&
           m_buckets == buckets &&
           (includeOutOfRange == nullptr || *includeOutOfRange == m_includeOutOfRange) &&
           (approxOK == nullptr || *approxOK == m_approxOK);
}

int* CRasterHistogram::GetHistogram(double& min, double& max, int& buckets, bool* includeOutOfRange,
                                    bool* approxOK) {
    min = m_minimum;
    max = m_maximum;
    buckets = m_buckets;
    if (includeOutOfRange != nullptr)
        *includeOutOfRange = m_includeOutOfRange;
    if (approxOK != nullptr)
        *approxOK = m_approxOK;
    return m_counts.get();
}

__int64 CRasterHistogram::Total() const {
    return std::accumulate(m_counts.get(), m_counts.get() + m_buckets, __int64{0});
}

bool CRasterHistogram::ReplaceMap() {
    // An empty map would leave the lookups without an entry to answer from: no map at all.
    m_map.reset(m_buckets < 1 ? nullptr
                              : new (std::nothrow) double[static_cast<std::size_t>(m_buckets)]);
    if (m_map == nullptr && m_buckets > 0)
        zelto::SetLastError("not enough memory for the histogram");
    return m_map != nullptr;
}

void CRasterHistogram::SetHistogramMap(__int64 /*pixelCount*/) {
    const auto total = static_cast<double>(Total());
    if (!ReplaceMap())
        return;
    __int64 cumulative = 0;
    for (int i = 0; i < m_buckets; ++i) {
        cumulative += m_counts[i];
        m_map[i] = static_cast<double>(m_buckets - 1) * static_cast<double>(cumulative) / total;
    }
}

bool CRasterHistogram::GetHistEqualizationValue(double& value) const {
    return zelto::HistogramLookup(*this).Equalize(value);
}

/// Reads flag and threshold so that a thread that sees them also sees the map built for them.
bool CRasterHistogram::IsAutoLevelsMapBuiltFor(double threshold) {
    return std::atomic_ref(m_autoLevelsMapBuilt).load(std::memory_order_acquire) &&
           std::fabs(std::atomic_ref(m_lastThreshold).load(std::memory_order_acquire) - threshold) <
               TOLERANCE;
}

void CRasterHistogram::SetAutoLevelsMap(double threshold) {
    if (IsAutoLevelsMapBuiltFor(threshold))
        return;
    const std::lock_guard lock(BuildMutex());
    if (IsAutoLevelsMapBuiltFor(threshold))
        return;
    if (!m_autoLevelsMapBuilt)
        ReplaceMap();
    if (m_map)
        FillAutoLevelsMap(LowClip(threshold), HighClip(threshold));
    std::atomic_ref(m_lastThreshold).store(threshold, std::memory_order_release);
    std::atomic_ref(m_autoLevelsMapBuilt).store(true, std::memory_order_release);
}

/// Value below which the fraction `threshold` of the counts lies; 0 when none qualifies.
double CRasterHistogram::LowClip(double threshold) const {
    const auto total = static_cast<double>(Total());
    __int64 accumulated = 0;
    for (int k = 0; k < m_buckets; ++k) {
        accumulated += m_counts[k];
        if (static_cast<double>(accumulated) / total > threshold)
            return (m_maximum - m_minimum) * k / m_buckets + m_minimum;
    }
    return 0.0;
}

/// The same from the upper end.
double CRasterHistogram::HighClip(double threshold) const {
    const auto total = static_cast<double>(Total());
    __int64 accumulated = 0;
    for (int j = 0; j < m_buckets; ++j) {
        const int bucket = m_buckets - j - 1;
        accumulated += m_counts[bucket];
        if (static_cast<double>(accumulated) / total > threshold)
            return bucket * (m_maximum - m_minimum) / m_buckets + m_minimum;
    }
    return 0.0;
}

void CRasterHistogram::FillAutoLevelsMap(double low, double high) {
    const double range = m_maximum - m_minimum;
    for (int i = 0; i < m_buckets; ++i) {
        // Up to the value and back to its share of the range: the detour's rounding decides
        // about whole display values.
        const double value =
            (((i - low) / (high - low)) * range + m_minimum - m_minimum) / range * 255.0;
        m_map[i] = zelto::ClampToByteRange(value);
    }
}

bool CRasterHistogram::GetAutoLevesValue(double& value) const {
    return zelto::HistogramLookup(*this).AutoLevel(value);
}
