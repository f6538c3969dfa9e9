#include "zelto/baselib/ColorRamp.h"

namespace {

unsigned char Blend(unsigned char from, unsigned char to, double fraction) {
    return static_cast<unsigned char>(from + (to - from) * fraction + 0.5);
}

CRgbaColor Blend(const CRgbaColor& from, const CRgbaColor& to, double fraction) {
    return {Blend(from.red, to.red, fraction), Blend(from.green, to.green, fraction),
            Blend(from.blue, to.blue, fraction), Blend(from.alpha, to.alpha, fraction)};
}

} // namespace

CColorRamp::CColorRamp() : CColorRamp({{0, 0, 0, 255}, {255, 255, 255, 255}}) {}

CColorRamp::CColorRamp(const std::vector<CRgbaColor>& controlColors) {
    if (controlColors.empty()) {
        *this = CColorRamp();
        return;
    }
    const std::size_t intervals = controlColors.size() - 1;
    for (std::size_t value = 0; value < m_colors.size(); ++value) {
        const double position = static_cast<double>(value * intervals) / 255.0;
        const auto before = static_cast<std::size_t>(position);
        m_colors[value] = before >= intervals
                              ? controlColors.back()
                              : Blend(controlColors[before], controlColors[before + 1],
                                      position - static_cast<double>(before));
    }
}
