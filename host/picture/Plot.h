#pragma once

#include <memory>
#include <string>
#include <vector>

struct _cairo;
struct _cairo_surface;

namespace zelto::host {

struct PlotColor {
    double red = 0.0; ///< 0 … 1
    double green = 0.0;
    double blue = 0.0;
};

/// Values at which an axis from `low` to `high` is marked: round numbers, about `count` of them.
std::vector<double> RoundTicks(double low, double high, int count);

/// A number as an axis shows it: 1200, 45k, 3.2M.
std::string TickLabel(double value);

/// A plot of two axes on white paper. Ranges and sizes are fixed when it is made; what is drawn
/// is cut to the frame between the axes.
class Plot {
  public:
    struct Range {
        double low = 0.0;
        double high = 1.0;
    };

    /// @param width,height pixels
    Plot(int width, int height, Range x, Range y);
    ~Plot();
    Plot(const Plot&) = delete;
    Plot& operator=(const Plot&) = delete;

    void Title(const std::string& text);
    void AxisLabels(const std::string& x, const std::string& y);
    /// Light vertical band between two x values.
    void Shade(double left, double right, PlotColor color);
    /// Adjoining bars of the heights `values`, the first from `left` on, each `barWidth` wide;
    /// with `outlineOnly` their outline as one line.
    void Bars(double left, double barWidth, const std::vector<double>& values, PlotColor color,
              bool outlineOnly);
    /// Dashed vertical line with a text beside its upper end.
    void Mark(double x, const std::string& text, PlotColor color);
    /// Entry of the legend in the upper right corner; entries stand below each other.
    void Legend(const std::string& text, PlotColor color);
    /// Frame, ticks and their labels; over what was drawn before.
    void Axes();

    /// Writes a PNG file, which replaces one of that name when it is complete. Throws Failure.
    void Write(const std::string& path);

  private:
    double X(double value) const;
    double Y(double value) const;
    void SetColor(PlotColor color, double alpha = 1.0);
    void CutToFrame();
    /// @param align 0: begins at x, 0.5: centred, 1: ends there
    void Text(double x, double y, const std::string& text, double align);

    int m_width;
    int m_height;
    Range m_x;
    Range m_y;
    int m_legendEntries = 0;
    std::unique_ptr<_cairo_surface, void (*)(_cairo_surface*)> m_surface;
    std::unique_ptr<_cairo, void (*)(_cairo*)> m_cairo;
};

} // namespace zelto::host
