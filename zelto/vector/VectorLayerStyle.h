#pragma once

#include "zelto/Export.h"
#include "zelto/baselib/RgbaColor.h"

#include <cstdint>
#include <string>

/// How a host draws a vector layer. The engine stores and copies it; what the numbered colours,
/// texts and numbers stand for is the host's.
class ZELTO_API CVectorLayerStyle {
  public:
    CRgbaColor m_color1{0, 0, 0, 255};
    std::wstring m_text1;
    CRgbaColor m_color2{0, 0, 0, 255};
    std::wstring m_text2;
    CRgbaColor m_color3{128, 0, 128, 255};
    std::wstring m_text3;
    std::int32_t m_value1 = 6;
    std::int32_t m_value2 = 1;
    std::int32_t m_value3 = 256;
    std::int32_t m_classifyFieldNum = 0; ///< kept equal to the layer's own
    unsigned char m_displayType = 0;     ///< 0 one style for all, 1 by class
    CRgbaColor m_color4{0, 0, 0, 255};
    std::wstring m_text4;
    std::int32_t m_classesNum = 0; ///< number of classes
};
