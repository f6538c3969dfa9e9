#pragma once

#include "zelto/Export.h"
#include "zelto/baselib/RgbaColor.h"

#include <cstdint>
#include <string>

/// How a host labels a vector layer. The engine stores and copies it; what the numbers and the
/// text stand for is the host's.
class ZELTO_API CVectorLabel {
  public:
    std::int64_t m_value1 = 0;
    CRgbaColor m_color;
    std::wstring m_text;
    std::int32_t m_fontSize = 10;
    std::wstring m_fontName = L"Arial";
    std::int32_t m_value2 = 0;
    std::int32_t m_value3 = 0;
};
