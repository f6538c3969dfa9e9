#pragma once

#include "zelto/display/ImgStretch.h"

/// Linear function that spreads low … high over 0 … 255, clamped to 1 … 254 and truncated.
/// With high = low the division gives infinities or NaN, and the clamps decide.
class ZELTO_API CZoomLinear002 : public CImgStretch {
  public:
    /// The parameters without a name are not used; all stretch functions are made with the same
    /// eight.
    CZoomLinear002(StretchType type, double, double, double, double, double low, double high,
                   double, double);
    ~CZoomLinear002() override;

    unsigned char GetStretchValue8UB(double value) const override;

    double GetLow() const { return m_low; }
    double GetHigh() const { return m_high; }

  protected:
    double m_low = 0.0;
    double m_high = 0.0;
};
