#include "zelto/display/ZoomLinear002.h"

#include "zelto/display/internal/StretchFunctions.h"

CZoomLinear002::CZoomLinear002(StretchType type, double /*d1*/, double /*d2*/, double /*d3*/,
                               double /*d4*/, double low, double high, double /*d7*/, double /*d8*/)
    : CImgStretch(type), m_low(low), m_high(high) {}

CZoomLinear002::~CZoomLinear002() = default;

unsigned char CZoomLinear002::GetStretchValue8UB(double value) const {
    return zelto::ZoomLinear002Function(*this)(value);
}
