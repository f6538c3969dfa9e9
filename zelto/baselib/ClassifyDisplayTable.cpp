#include "zelto/baselib/ClassifyDisplayTable.h"

#include <algorithm>
#include <utility>

namespace {

/// A count is a hint from outside; more than this is reserved when it is reached.
constexpr int MOST_RESERVED = 4096;

/// Of the segments; longer ones are halved.
constexpr std::size_t LONGEST_CHUNK = 1024;

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
    Place next = FirstThatEndsAfter(low);
    // What lies between the segments of earlier items is left for this one.
    while (low < high) {
        const Segment* taken = SegmentAt(next);
        const double end = taken == nullptr ? high : std::min(high, taken->low);
        if (low < end) {
            next = Insert(next, {low, end, item});
            taken = SegmentAt(next);
        }
        if (taken == nullptr)
            return;
        low = taken->high;
        next = Next(next);
    }
}

CClassifyDisplayTable::Place CClassifyDisplayTable::FirstThatEndsAfter(double value) const {
    const auto endsBefore = [&](const Segment& segment) { return segment.high <= value; };
    const auto chunk =
        std::partition_point(m_segments.begin(), m_segments.end(),
                             [&](const Chunk& each) { return endsBefore(each.back()); });
    Place place = {static_cast<std::size_t>(chunk - m_segments.begin()), 0};
    if (chunk != m_segments.end())
        place.at = static_cast<std::size_t>(
            std::partition_point(chunk->begin(), chunk->end(), endsBefore) - chunk->begin());
    return place;
}

const CClassifyDisplayTable::Segment* CClassifyDisplayTable::SegmentAt(Place place) const {
    return place.chunk < m_segments.size() ? &m_segments[place.chunk][place.at] : nullptr;
}

CClassifyDisplayTable::Place CClassifyDisplayTable::Next(Place place) const {
    return place.at + 1 < m_segments[place.chunk].size() ? Place{place.chunk, place.at + 1}
                                                         : Place{place.chunk + 1, 0};
}

/// @return the place behind the new segment
CClassifyDisplayTable::Place CClassifyDisplayTable::Insert(Place place, const Segment& segment) {
    if (m_segments.empty())
        m_segments.emplace_back();
    if (place.chunk == m_segments.size())
        place = {m_segments.size() - 1, m_segments.back().size()};
    Chunk& chunk = m_segments[place.chunk];
    chunk.insert(chunk.begin() + static_cast<std::ptrdiff_t>(place.at), segment);
    if (chunk.size() > LONGEST_CHUNK) {
        const auto middle = chunk.begin() + LONGEST_CHUNK / 2;
        Chunk behind(middle, chunk.end());
        chunk.erase(middle, chunk.end());
        m_segments.insert(m_segments.begin() + static_cast<std::ptrdiff_t>(place.chunk) + 1,
                          std::move(behind));
        if (place.at >= LONGEST_CHUNK / 2)
            place = {place.chunk + 1, place.at - LONGEST_CHUNK / 2};
    }
    return Next(place);
}

const CClassifyDisplayItem* CClassifyDisplayTable::GetItem(int index) const {
    return index < 0 || index >= GetItemCount() ? nullptr
                                                : &m_items[static_cast<std::size_t>(index)];
}

const CClassifyDisplayItem* CClassifyDisplayTable::Find(double value) const {
    // NaN is in no segment: it compares false with every end.
    const Segment* const segment = SegmentAt(FirstThatEndsAfter(value));
    const bool found = segment != nullptr && segment->low <= value;
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
