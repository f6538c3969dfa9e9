#pragma once

#include "zelto/display/ImgStretch.h"

/// Linear function y = x × scale + offset, clamped to 0 … 255 and truncated.
class ZELTO_API CZoomLinear : public CImgStretch {
  public:
    /// The scale is the input span over the output span, the reverse of the usual form, and 0
    /// unless the output span is positive: a narrow output range spreads the values instead of
    /// squeezing them. The offset is outputLow − inputLow × scale.
    /// The parameters without a name are not used; all stretch functions are made with the same
    /// eight.
    CZoomLinear(StretchType type, double inputLow, double inputHigh, double, double,
                double outputLow, double outputHigh, double, double);
    ~CZoomLinear() override;

    unsigned char GetStretchValue8UB(double value) const override;

    double GetScale() const { return m_scale; }
    double GetOffset() const { return m_offset; }

  protected:
    double m_scale = 0.0;
    double m_offset = 0.0;
};
