#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace zelto {

/// Closed intervals of a coordinate, indexed so that those around a value are found in
/// logarithmic time. The distinct ends cut the axis into slabs; an interval is entered at the
/// few nodes of a tree over the slabs that cover it, so that one long interval costs no more
/// than a short one.
class IntervalIndex {
  public:
    struct Interval {
        double low = 0.0;  ///< not NaN
        double high = 0.0; ///< not NaN, not below low
    };

    IntervalIndex() = default;
    explicit IntervalIndex(std::span<const Interval> intervals);

    /// Calls `visit(position)` with the position of every interval that holds `value`, each once
    /// and in no particular order. Intervals that end in the slab of `value`, just below it, are
    /// visited as well: the caller decides by its own comparison. Nothing for NaN.
    template <typename Visitor>
    void Visit(double value, Visitor visit) const {
        const auto slab = std::upper_bound(m_ends.begin(), m_ends.end(), value) - m_ends.begin();
        // NaN sorts behind everything and would find the last slab.
        if (slab == 0 || value != value)
            return;
        for (auto node = m_ends.size() + static_cast<std::size_t>(slab) - 1; node > 0; node /= 2)
            for (auto entry = m_firstEntry[node]; entry < m_firstEntry[node + 1]; ++entry)
                visit(m_entries[entry]);
    }

  private:
    template <typename Visitor>
    void VisitNodes(const Interval& interval, Visitor visit) const;

    std::vector<double> m_ends;              ///< sorted, distinct; slab k starts at the k-th
    std::vector<std::uint32_t> m_firstEntry; ///< per node, one more at the end
    std::vector<std::uint32_t> m_entries;    ///< positions of intervals, node by node
};

} // namespace zelto
