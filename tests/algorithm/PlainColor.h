#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

/// @file
/// The colour adjustments written down plainly, one pixel at a time, to compare with.

namespace zelto::test {

struct PlainRgb {
    double r, g, b;
};

inline double PlainLimit(double v) {
    if (v > 255.0)
        return 255.0;
    if (v < 0.0)
        return 0.0;
    return v;
}

/// Colour after the shift, before the truncation of the result.
inline PlainRgb PlainHis(double r, double g, double b, float hue, float intensity,
                         float saturation) {
    const double pi = 3.14159265358979323846;
    const double i = (r + g + b) / std::sqrt(3.0);
    const double x = (r - g) / std::sqrt(2.0);
    const double y = (r + g - 2.0 * b) / std::sqrt(6.0);
    double h = 0.0;
    if (r > g)
        h = pi;
    if (x == 0.0)
        h = h + pi / 2.0;
    else
        h = std::atan(y / x) + h;
    double s = std::sqrt(x * x + y * y);
    const float hueProduct = hue * 100.0F;
    const float intensityProduct = intensity * 255.0F;
    const float saturationProduct = saturation * 150.0F;
    h = h + static_cast<double>(static_cast<std::int64_t>(hueProduct)) * (2.0 * pi - h) / 180.0;
    const double shifted = static_cast<double>(static_cast<std::int64_t>(intensityProduct)) + i;
    s = s + static_cast<double>(static_cast<std::int64_t>(saturationProduct));
    const double a = h + pi / 2.0;
    const double c = std::cos(a) * s;
    const double d = -(std::sin(a) * s) / std::sqrt(2.0);
    const double m = shifted / std::sqrt(3.0);
    return {PlainLimit(d + (c / std::sqrt(6.0) + m)), PlainLimit(c / std::sqrt(6.0) + m - d),
            PlainLimit(m - 2.0 / std::sqrt(6.0) * c)};
}

inline unsigned char PlainByte(double v) {
    return static_cast<unsigned char>(static_cast<std::int64_t>(v));
}

inline unsigned char PlainContrast(double v, float contrast) {
    return PlainByte(PlainLimit(v + (v - 128.0) * contrast));
}

inline std::vector<unsigned char> RandomBytes(std::mt19937& random, std::size_t count) {
    std::uniform_int_distribution<int> any(0, 255);
    std::vector<unsigned char> bytes(count);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(any(random));
    return bytes;
}

} // namespace zelto::test
