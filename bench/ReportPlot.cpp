#include "bench/ReportPlot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace zelto::bench {

namespace {

constexpr double WIDTH = 720, HEIGHT = 420;
constexpr double LEFT = 70, TOP = 20, RIGHT = 560, BOTTOM = 360;
constexpr std::array<const char*, 6> COLORS = {"#1b6ca8", "#c0392b", "#2e8b57",
                                               "#8e5ea2", "#d98e04", "#555555"};

/// Whole decades around the values, and where they lie along an axis.
class DecadeAxis {
  public:
    DecadeAxis(double begin, double end) : m_begin(begin), m_end(end) {}

    void Include(double value) {
        m_low = std::min(m_low, std::floor(std::log10(value)));
        m_high = std::max(m_high, std::ceil(std::log10(value)));
    }
    double At(double value) const {
        return m_begin + (m_end - m_begin) * (std::log10(value) - m_low) / (m_high - m_low);
    }
    int First() const { return static_cast<int>(m_low); }
    int Last() const { return static_cast<int>(m_high); }

  private:
    double m_begin, m_end;
    double m_low = std::numeric_limits<double>::infinity();
    double m_high = -std::numeric_limits<double>::infinity();
};

template <typename... Values>
std::string Format(const char* format, Values... values) {
    char text[400];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string Label(double x, double y, const char* anchor, const std::string& text) {
    return Format("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\">%s</text>\n", x, y, anchor,
                  text.c_str());
}

std::string Line(double x1, double y1, double x2, double y2) {
    return Format("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"#ddd\"/>\n", x1,
                  y1, x2, y2);
}

std::string Grid(const DecadeAxis& x, const DecadeAxis& y) {
    std::string svg;
    for (int decade = x.First(); decade <= x.Last(); ++decade) {
        const double at = x.At(std::pow(10.0, decade));
        svg += Line(at, TOP, at, BOTTOM);
        svg += Label(at, BOTTOM + 18, "middle", Format("10^%d", decade));
    }
    for (int decade = y.First(); decade <= y.Last(); ++decade) {
        const double at = y.At(std::pow(10.0, decade));
        svg += Line(LEFT, at, RIGHT, at);
        svg += Label(LEFT - 8, at + 4, "end", Format("%g s", std::pow(10.0, decade)));
    }
    return svg;
}

} // namespace

std::string PlotCurves(const Curves& curves, const std::string& xTitle) {
    DecadeAxis x(LEFT, RIGHT), y(BOTTOM, TOP);
    for (const auto& [name, points] : curves)
        for (const auto& [value, seconds] : points) {
            x.Include(value);
            y.Include(seconds);
        }
    std::string svg = Format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%g\" height=\"%g\" "
                             "font-family=\"sans-serif\" font-size=\"12\">\n"
                             "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
                             WIDTH, HEIGHT);
    svg += Grid(x, y);
    svg += Label((LEFT + RIGHT) / 2, BOTTOM + 42, "middle", xTitle);
    std::size_t number = 0;
    for (const auto& [name, points] : curves) {
        const char* color = COLORS[number % COLORS.size()];
        std::string path;
        for (const auto& [value, seconds] : points) {
            path += Format("%.1f,%.1f ", x.At(value), y.At(seconds));
            svg += Format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3\" fill=\"%s\"/>\n", x.At(value),
                          y.At(seconds), color);
        }
        svg += "<polyline points=\"" + path + "\" fill=\"none\" stroke=\"" + color + "\"/>\n";
        const double legend = TOP + 20 + 22 * static_cast<double>(number++);
        svg += Format("<rect x=\"%g\" y=\"%g\" width=\"12\" height=\"4\" fill=\"%s\"/>\n",
                      RIGHT + 14, legend - 6, color);
        svg += Label(RIGHT + 32, legend, "start", name);
    }
    return svg + "</svg>\n";
}

} // namespace zelto::bench
