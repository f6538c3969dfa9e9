#include "zelto/display/ZoomLinear.h"

#include "zelto/display/internal/StretchFunctions.h"

CZoomLinear::CZoomLinear(StretchType type, double inputLow, double inputHigh, double /*d3*/,
                         double /*d4*/, double outputLow, double outputHigh, double /*d7*/,
                         double /*d8*/)
    : CImgStretch(type) {
    const double range = outputHigh - outputLow;
    if (range > 0)
        m_scale = (inputHigh - inputLow) / range;
    m_offset = outputLow - inputLow * m_scale;
}

CZoomLinear::~CZoomLinear() = default;

unsigned char CZoomLinear::GetStretchValue8UB(double value) const {
    return zelto::ZoomLinearFunction(*this)(value);
}
