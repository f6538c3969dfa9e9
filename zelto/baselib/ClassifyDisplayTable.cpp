#include "zelto/baselib/ClassifyDisplayTable.h"

#include <algorithm>

namespace {

/// A count is a hint from outside; more than this is reserved when it is reached.
constexpr int MOST_RESERVED = 4096;

} // namespace

CClassifyDisplayTable::CClassifyDisplayTable(int itemCount) {
    m_items.reserve(static_cast<std::size_t>(std::clamp(itemCount, 0, MOST_RESERVED)));
}

void CClassifyDisplayTable::AddClassifyItem(const CClassifyDisplayItem& item) {
    m_items.push_back(item);
    if (item.m_low < item.m_high)
        Claim(item.m_low, item.m_high, m_items.size() - 1);
}

void CClassifyDisplayTable::Claim(double low, double high, std::size_t item) {
    auto next = std::partition_point(m_segments.begin(), m_segments.end(),
                                     [&](const Segment& s) { return s.high <= low; });
    // What lies between the segments of earlier items is left for this one.
    while (low < high) {
        const double end = next == m_segments.end() ? high : std::min(high, next->low);
        if (low < end)
            next = m_segments.insert(next, {low, end, item}) + 1;
        if (next == m_segments.end())
            return;
        low = next->high;
        ++next;
    }
}

const CClassifyDisplayItem* CClassifyDisplayTable::GetItem(int index) const {
    return index < 0 || index >= GetItemCount() ? nullptr
                                                : &m_items[static_cast<std::size_t>(index)];
}

const CClassifyDisplayItem* CClassifyDisplayTable::Find(double value) const {
    // NaN is in no segment: it compares false with both ends.
    const auto segment = std::partition_point(m_segments.begin(), m_segments.end(),
                                              [&](const Segment& s) { return s.high <= value; });
    const bool found =
        segment != m_segments.end() && segment->low <= value && value < segment->high;
    return found ? &m_items[segment->item] : nullptr;
}

bool CClassifyDisplayTable::GetColor(double value, unsigned char& red, unsigned char& green,
                                     unsigned char& blue, unsigned char& alpha) const {
    const CClassifyDisplayItem* item = Find(value);
    const CRgbaColor color = item != nullptr ? item->m_color : CRgbaColor{0, 0, 0, 0};
    red = color.red;
    green = color.green;
    blue = color.blue;
    alpha = color.alpha;
    return item != nullptr;
}

void CClassifyDisplayTable::SetMinMaxValue(double min, double max) {
    m_min = min;
    m_max = max;
}
