#pragma once

#include "zelto/Export.h"
#include "zelto/baselib/RgbaColor.h"

#include <array>
#include <vector>

/// A colour for each of the 256 display values.
class ZELTO_API CColorRamp {
  public:
    /// Grey from black to white.
    CColorRamp();
    /// Colours at equal distances from value 0 to 255, blended linearly and rounded to nearest;
    /// a single one fills the ramp, none gives the grey ramp.
    explicit CColorRamp(const std::vector<CRgbaColor>& controlColors);

    unsigned char Red(unsigned char value) const { return m_colors[value].red; }
    unsigned char Green(unsigned char value) const { return m_colors[value].green; }
    unsigned char Blue(unsigned char value) const { return m_colors[value].blue; }
    void SetColor(unsigned char value, CRgbaColor color) { m_colors[value] = color; }

  private:
    std::array<CRgbaColor, 256> m_colors;
};
