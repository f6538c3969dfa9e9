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
}

const CClassifyDisplayItem* CClassifyDisplayTable::GetItem(int index) const {
    return index < 0 || index >= GetItemCount() ? nullptr
                                                : &m_items[static_cast<std::size_t>(index)];
}

const CClassifyDisplayItem* CClassifyDisplayTable::Find(double value) const {
    const auto item = std::find_if(m_items.begin(), m_items.end(), [&](const auto& candidate) {
        return candidate.Contains(value);
    });
    return item == m_items.end() ? nullptr : &*item;
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
