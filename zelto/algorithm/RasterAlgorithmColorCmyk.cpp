#include "zelto/algorithm/RasterAlgorithm.h"

#include <algorithm>

void CRasterAlgorithm::RGB2Cmyk(double r, double g, double b, double& c, double& m, double& y,
                                double& k) {
    const double red = std::clamp(r / 255.0, 0.0, 1.0);
    const double green = std::clamp(g / 255.0, 0.0, 1.0);
    const double blue = std::clamp(b / 255.0, 0.0, 1.0);
    const double lightest = std::max({red, green, blue});
    k = 1.0 - lightest;
    // Black needs no coloured ink; the shares of the others are undefined there.
    c = lightest > 0.0 ? (lightest - red) / lightest : 0.0;
    m = lightest > 0.0 ? (lightest - green) / lightest : 0.0;
    y = lightest > 0.0 ? (lightest - blue) / lightest : 0.0;
}

void CRasterAlgorithm::Cmyk2RGB(double c, double m, double y, double k, double& r, double& g,
                                double& b) {
    const double light = 1.0 - std::clamp(k, 0.0, 1.0);
    r = 255.0 * (1.0 - std::clamp(c, 0.0, 1.0)) * light;
    g = 255.0 * (1.0 - std::clamp(m, 0.0, 1.0)) * light;
    b = 255.0 * (1.0 - std::clamp(y, 0.0, 1.0)) * light;
}

void CRasterAlgorithm::IHS2Cmyk(double i, double h, double s, double& c, double& m, double& y,
                                double& k) {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
    IHStoRGB(i, h, s, r, g, b);
    RGB2Cmyk(r, g, b, c, m, y, k);
}

void CRasterAlgorithm::Cmyk2IHS(double c, double m, double y, double k, double& i, double& h,
                                double& s) {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
    Cmyk2RGB(c, m, y, k, r, g, b);
    RGBtoIHS(r, g, b, i, h, s);
}
