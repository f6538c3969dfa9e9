#pragma once

#include "zelto/baselib/RgbaColor.h"

#include <string>

/// One class of a classified display: the values low ≤ v < high are shown in its colour.
class CClassifyDisplayItem {
  public:
    CRgbaColor m_color;
    double m_low = 0.0;
    double m_high = 0.0;
    std::wstring m_name;

    CClassifyDisplayItem() = default;
    CClassifyDisplayItem(const CRgbaColor& color, double low, double high, const std::wstring& name)
        : m_color(color), m_low(low), m_high(high), m_name(name) {}

    /// NaN lies in no class.
    bool Contains(double value) const { return m_low <= value && value < m_high; }
};
