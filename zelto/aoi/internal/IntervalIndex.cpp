#include "zelto/aoi/internal/IntervalIndex.h"

#include <numeric>

namespace zelto {

namespace {

std::vector<double> DistinctEnds(std::span<const IntervalIndex::Interval> intervals) {
    std::vector<double> ends;
    ends.reserve(2 * intervals.size());
    for (const auto& [low, high] : intervals) {
        ends.push_back(low);
        ends.push_back(high);
    }
    std::sort(ends.begin(), ends.end());
    ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
    return ends;
}

} // namespace

/// Visits the nodes that together cover the interval's slabs: the usual walk up from both ends
/// of a binary tree whose leaves are the slabs.
template <typename Visitor>
void IntervalIndex::VisitNodes(const Interval& interval, Visitor visit) const {
    const auto slabOf = [&](double end) {
        return static_cast<std::size_t>(std::lower_bound(m_ends.begin(), m_ends.end(), end) -
                                        m_ends.begin());
    };
    auto first = slabOf(interval.low) + m_ends.size();
    auto last = slabOf(interval.high) + m_ends.size() + 1;
    for (; first < last; first /= 2, last /= 2) {
        if (first % 2 == 1)
            visit(first++);
        if (last % 2 == 1)
            visit(--last);
    }
}

IntervalIndex::IntervalIndex(std::span<const Interval> intervals)
    : m_ends(DistinctEnds(intervals)), m_firstEntry(2 * m_ends.size() + 1) {
    for (const Interval& interval : intervals)
        VisitNodes(interval, [&](std::size_t node) { ++m_firstEntry[node + 1]; });
    std::partial_sum(m_firstEntry.begin(), m_firstEntry.end(), m_firstEntry.begin());
    m_entries.resize(m_firstEntry.back());
    auto next = m_firstEntry;
    for (std::size_t i = 0; i < intervals.size(); ++i)
        VisitNodes(intervals[i], [&](std::size_t node) {
            m_entries[next[node]++] = static_cast<std::uint32_t>(i);
        });
}

} // namespace zelto
