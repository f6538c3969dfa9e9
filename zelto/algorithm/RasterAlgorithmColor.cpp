#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/ColorPlanes.h"
#include "zelto/baselib/internal/Truncate.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace zelto {
namespace {

// Square roots are correctly rounded, so these are the values the formulas name.
const double sqrt2 = std::sqrt(2.0);
const double sqrt3 = std::sqrt(3.0);
const double sqrt6 = std::sqrt(6.0);

double Clamp255(double v) {
    if (v > 255.0)
        return 255.0;
    return v < 0.0 ? 0.0 : v;
}

/// The three display settings as the whole steps they are applied in. The settings are single
/// precision, and so are the products that are truncated.
struct HisShift {
    HisShift(float hueSetting, float intensitySetting, float saturationSetting)
        : hue(static_cast<double>(TruncateToInt64(hueSetting * 100.0F))),
          intensity(static_cast<double>(TruncateToInt64(intensitySetting * 255.0F))),
          saturation(static_cast<double>(TruncateToInt64(saturationSetting * 150.0F))) {}

    /// Replaces a colour by the shifted one, each channel in 0 … 255.
    void Apply(double& r, double& g, double& b) const {
        double i = 0.0;
        double h = 0.0;
        double s = 0.0;
        CRasterAlgorithm::RGBtoIHS(r, g, b, i, h, s);
        // The step is proportional to what is left of the full turn, not to the turn itself.
        const double shiftedHue = h + hue * (2.0 * std::numbers::pi - h) / 180.0;
        CRasterAlgorithm::IHStoRGB(intensity + i, shiftedHue, s + saturation, r, g, b);
    }

    double hue;
    double intensity;
    double saturation;
};

/// Remembers the colours shifted last, one per slot: neighbouring pixels repeat a small set of
/// colours, and a shift costs three transcendental functions.
class ShiftedColors {
  public:
    explicit ShiftedColors(const HisShift& shift) : m_shift(shift) { m_keys.fill(noColor); }

    void Replace(unsigned char& r, unsigned char& g, unsigned char& b) {
        const std::uint32_t key = r | std::uint32_t{g} << 8 | std::uint32_t{b} << 16;
        const std::uint32_t slot = (key * 2654435761U) >> (32 - slotBits);
        if (m_keys[slot] != key) {
            m_keys[slot] = key;
            m_colors[slot] = Shifted(r, g, b);
        }
        const std::uint32_t color = m_colors[slot];
        r = static_cast<unsigned char>(color);
        g = static_cast<unsigned char>(color >> 8);
        b = static_cast<unsigned char>(color >> 16);
    }

  private:
    std::uint32_t Shifted(double r, double g, double b) const {
        m_shift.Apply(r, g, b);
        return TruncateToByte(r) | std::uint32_t{TruncateToByte(g)} << 8 |
               std::uint32_t{TruncateToByte(b)} << 16;
    }

    static constexpr int slotBits = 13;
    static constexpr std::uint32_t noColor = 0xFFFFFFFF; ///< above every 24-bit colour

    HisShift m_shift;
    std::array<std::uint32_t, 1U << slotBits> m_keys;
    std::array<std::uint32_t, 1U << slotBits> m_colors;
};

} // namespace
} // namespace zelto

using namespace zelto;

void CRasterAlgorithm::RGBtoIHS(double r, double g, double b, double& i, double& h, double& s) {
    i = (r + g + b) / sqrt3;
    const double x = (r - g) / sqrt2;
    const double y = (r + g - 2.0 * b) / sqrt6;
    const double base = r > g ? std::numbers::pi : 0.0;
    h = x == 0.0 ? base + std::numbers::pi / 2.0 : std::atan(y / x) + base;
    s = std::sqrt(x * x + y * y);
}

void CRasterAlgorithm::IHStoRGB(double i, double h, double s, double& r, double& g, double& b) {
    const double a = h + std::numbers::pi / 2.0;
    const double c = std::cos(a) * s;
    const double d = -(std::sin(a) * s) / sqrt2;
    const double m = i / sqrt3;
    r = Clamp255(d + (c / sqrt6 + m));
    g = Clamp255(c / sqrt6 + m - d);
    b = Clamp255(m - (2.0 / sqrt6) * c);
}

void CRasterAlgorithm::AdjustHIS(unsigned char* interleaved, int w, int h, float hue,
                                 float intensity, float saturation) {
    if (interleaved == nullptr || w < 1 || h < 1)
        return;
    const HisShift shift(hue, intensity, saturation);
#pragma omp parallel
    {
        ShiftedColors colors(shift);
#pragma omp for schedule(static)
        for (int row = 0; row < h; ++row) {
            unsigned char* pixel = interleaved + RowOffset(row, w) * 4;
            for (int column = 0; column < w; ++column, pixel += 4)
                colors.Replace(pixel[2], pixel[1], pixel[0]);
        }
    }
}

void CRasterAlgorithm::AdjustHIS(unsigned char** planes, int w, int h, float hue, float intensity,
                                 float saturation) {
    if (!HasPlanes(planes, 3) || w < 1 || h < 1)
        return;
    const HisShift shift(hue, intensity, saturation);
#pragma omp parallel
    {
        ShiftedColors colors(shift);
#pragma omp for schedule(static)
        for (int row = 0; row < h; ++row) {
            const std::size_t offset = RowOffset(row, w);
            for (std::size_t at = offset; at < offset + w; ++at)
                colors.Replace(planes[0][at], planes[1][at], planes[2][at]);
        }
    }
}

void CRasterAlgorithm::AdjustHIS(double* r, double* g, double* b, int w, int h, float hue,
                                 float intensity, float saturation) {
    if (r == nullptr || g == nullptr || b == nullptr || w < 1 || h < 1)
        return;
    const HisShift shift(hue, intensity, saturation);
#pragma omp parallel for schedule(static)
    for (int row = 0; row < h; ++row) {
        const std::size_t offset = RowOffset(row, w);
        for (std::size_t at = offset; at < offset + w; ++at) {
            shift.Apply(r[at], g[at], b[at]);
            r[at] = TruncateToByte(r[at]);
            g[at] = TruncateToByte(g[at]);
            b[at] = TruncateToByte(b[at]);
        }
    }
}
