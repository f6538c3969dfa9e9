#include "zelto/algorithm/internal/RankSearch.h"

#include <algorithm>

namespace zelto {

namespace {

constexpr std::size_t BIN_COUNT = 65'536;

} // namespace

RankSearch::RankSearch(std::int64_t rank, double minimum, double maximum)
    : m_rank(rank), m_low(minimum), m_high(maximum) {}

void RankSearch::BeginPass() {
    m_bins.assign(BIN_COUNT, {});
}

/// Never decreases with the sample, which is all that the search needs of it. Halves keep the
/// difference of the largest numbers finite.
std::size_t RankSearch::BinOf(double sample) const {
    const double part = (sample / 2 - m_low / 2) / (m_high / 2 - m_low / 2);
    const auto bin = static_cast<std::size_t>(part * static_cast<double>(BIN_COUNT - 1));
    return std::min(bin, BIN_COUNT - 1);
}

void RankSearch::Add(std::span<const double> samples) {
    for (const double sample : samples) {
        if (sample < m_low || sample > m_high)
            continue;
        Bin& bin = m_bins[BinOf(sample)];
        ++bin.count;
        bin.low = std::min(bin.low, sample);
        bin.high = std::max(bin.high, sample);
    }
}

bool RankSearch::EndPass() {
    for (const Bin& bin : m_bins) {
        if (m_rank < bin.count) {
            m_low = bin.low;
            m_high = bin.high;
            return true;
        }
        m_rank -= bin.count;
    }
    return false;
}

} // namespace zelto
