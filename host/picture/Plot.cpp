#include "host/picture/Plot.h"

#include "zelto/baselib/NewFileSet.h"
#include "zelto/datasource/GISDataSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

namespace zelto::host {

namespace {

// Margins around the frame, pixels.
constexpr double LEFT = 86.0;
constexpr double RIGHT = 24.0;
constexpr double TOP = 46.0;
constexpr double BOTTOM = 58.0;

constexpr double TEXT_SIZE = 13.0;
constexpr double TITLE_SIZE = 16.0;
constexpr double TICK_LENGTH = 5.0;
constexpr PlotColor INK = {0.15, 0.15, 0.15};
constexpr PlotColor GRID = {0.88, 0.88, 0.88};

/// Lines one pixel wide are sharp at half pixels.
double Sharp(double position) {
    return std::floor(position) + 0.5;
}

} // namespace

std::vector<double> RoundTicks(double low, double high, int count) {
    std::vector<double> ticks;
    if (!(high > low) || !std::isfinite(high - low) || count < 1)
        return ticks;
    const double rough = (high - low) / count;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = power * 10.0;
    for (const double factor : {1.0, 2.0, 2.5, 5.0}) {
        if (power * factor >= rough) {
            step = power * factor;
            break;
        }
    }
    for (double n = std::ceil(low / step); n * step <= high + step * 1e-9; ++n)
        ticks.push_back(n * step);
    return ticks;
}

std::string TickLabel(double value) {
    const double magnitude = std::fabs(value);
    double divisor = 1.0;
    const char* suffix = "";
    if (magnitude >= 1e9) {
        divisor = 1e9;
        suffix = "G";
    } else if (magnitude >= 1e6) {
        divisor = 1e6;
        suffix = "M";
    } else if (magnitude >= 1e4) {
        divisor = 1e3;
        suffix = "k";
    }
    // Five digits: enough to tell ticks apart, few enough to hide the rounding of their sums.
    const double shown = value / divisor;
    const double scale =
        shown == 0.0 ? 1.0 : std::pow(10.0, 4.0 - std::floor(std::log10(std::fabs(shown))));
    return FormatNumber(std::round(shown * scale) / scale + 0.0) + suffix;
}

Plot::Plot(int width, int height, Range x, Range y)
    : m_width(width),
      m_height(height),
      m_x(x),
      m_y(y),
      m_surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height),
                cairo_surface_destroy),
      m_cairo(cairo_create(m_surface.get()), cairo_destroy) {
    cairo_select_font_face(m_cairo.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(m_cairo.get(), TEXT_SIZE);
    cairo_set_line_width(m_cairo.get(), 1.0);
    SetColor({1.0, 1.0, 1.0});
    cairo_paint(m_cairo.get());
}

Plot::~Plot() = default;

double Plot::X(double value) const {
    return LEFT + (value - m_x.low) / (m_x.high - m_x.low) * (m_width - LEFT - RIGHT);
}

double Plot::Y(double value) const {
    return m_height - BOTTOM - (value - m_y.low) / (m_y.high - m_y.low) * (m_height - TOP - BOTTOM);
}

void Plot::SetColor(PlotColor color, double alpha) {
    cairo_set_source_rgba(m_cairo.get(), color.red, color.green, color.blue, alpha);
}

void Plot::CutToFrame() {
    cairo_rectangle(m_cairo.get(), LEFT, TOP, m_width - LEFT - RIGHT, m_height - TOP - BOTTOM);
    cairo_clip(m_cairo.get());
}

void Plot::Text(double x, double y, const std::string& text, double align) {
    cairo_text_extents_t extents;
    cairo_text_extents(m_cairo.get(), text.c_str(), &extents);
    cairo_move_to(m_cairo.get(), std::round(x - extents.x_advance * align), std::round(y));
    cairo_show_text(m_cairo.get(), text.c_str());
}

void Plot::Title(const std::string& text) {
    SetColor(INK);
    cairo_set_font_size(m_cairo.get(), TITLE_SIZE);
    Text(LEFT, TOP - 16.0, text, 0.0);
    cairo_set_font_size(m_cairo.get(), TEXT_SIZE);
}

void Plot::AxisLabels(const std::string& x, const std::string& y) {
    SetColor(INK);
    Text((LEFT + m_width - RIGHT) / 2.0, m_height - 14.0, x, 0.5);
    cairo_save(m_cairo.get());
    cairo_translate(m_cairo.get(), 20.0, (TOP + m_height - BOTTOM) / 2.0);
    cairo_rotate(m_cairo.get(), -std::acos(-1.0) / 2.0);
    Text(0.0, 0.0, y, 0.5);
    cairo_restore(m_cairo.get());
}

void Plot::Shade(double left, double right, PlotColor color) {
    cairo_save(m_cairo.get());
    CutToFrame();
    SetColor(color, 0.16);
    cairo_rectangle(m_cairo.get(), X(left), TOP, X(right) - X(left), m_height - TOP - BOTTOM);
    cairo_fill(m_cairo.get());
    cairo_restore(m_cairo.get());
}

void Plot::Bars(double left, double barWidth, const std::vector<double>& values, PlotColor color,
                bool outlineOnly) {
    cairo_save(m_cairo.get());
    CutToFrame();
    cairo_move_to(m_cairo.get(), X(left), Y(m_y.low));
    double x = left;
    for (std::size_t i = 0; i < values.size(); ++i) {
        cairo_line_to(m_cairo.get(), X(x), Y(values[i]));
        x = left + barWidth * static_cast<double>(i + 1);
        cairo_line_to(m_cairo.get(), X(x), Y(values[i]));
    }
    cairo_line_to(m_cairo.get(), X(x), Y(m_y.low));
    if (!outlineOnly) {
        SetColor(color, 0.85);
        cairo_fill(m_cairo.get());
    } else {
        SetColor(color);
        cairo_set_line_width(m_cairo.get(), 1.6);
        cairo_stroke(m_cairo.get());
    }
    cairo_restore(m_cairo.get());
}

void Plot::Mark(double x, const std::string& text, PlotColor color) {
    if (!(x >= m_x.low && x <= m_x.high))
        return;
    cairo_save(m_cairo.get());
    SetColor(color);
    const double dashes[] = {5.0, 4.0};
    cairo_set_dash(m_cairo.get(), dashes, 2, 0.0);
    cairo_move_to(m_cairo.get(), Sharp(X(x)), TOP);
    cairo_line_to(m_cairo.get(), Sharp(X(x)), m_height - BOTTOM);
    cairo_stroke(m_cairo.get());
    // Beside the line on the side where there is more room.
    const bool rightHalf = X(x) > (LEFT + m_width - RIGHT) / 2.0;
    Text(X(x) + (rightHalf ? -5.0 : 5.0), TOP + 16.0, text, rightHalf ? 1.0 : 0.0);
    cairo_restore(m_cairo.get());
}

void Plot::Legend(const std::string& text, PlotColor color) {
    const double y = TOP + 34.0 + 20.0 * m_legendEntries++;
    SetColor(color);
    cairo_rectangle(m_cairo.get(), m_width - RIGHT - 24.0, y - 10.0, 12.0, 12.0);
    cairo_fill(m_cairo.get());
    SetColor(INK);
    Text(m_width - RIGHT - 30.0, y, text, 1.0);
}

void Plot::Axes() {
    const double bottom = m_height - BOTTOM;
    for (const double tick : RoundTicks(m_y.low, m_y.high, 5)) {
        SetColor(GRID, 0.6);
        cairo_move_to(m_cairo.get(), LEFT, Sharp(Y(tick)));
        cairo_line_to(m_cairo.get(), m_width - RIGHT, Sharp(Y(tick)));
        cairo_stroke(m_cairo.get());
        SetColor(INK);
        cairo_move_to(m_cairo.get(), LEFT - TICK_LENGTH, Sharp(Y(tick)));
        cairo_line_to(m_cairo.get(), LEFT, Sharp(Y(tick)));
        cairo_stroke(m_cairo.get());
        Text(LEFT - TICK_LENGTH - 4.0, Y(tick) + 4.0, TickLabel(tick), 1.0);
    }
    SetColor(INK);
    for (const double tick : RoundTicks(m_x.low, m_x.high, 8)) {
        cairo_move_to(m_cairo.get(), Sharp(X(tick)), bottom);
        cairo_line_to(m_cairo.get(), Sharp(X(tick)), bottom + TICK_LENGTH);
        cairo_stroke(m_cairo.get());
        Text(X(tick), bottom + TICK_LENGTH + 14.0, TickLabel(tick), 0.5);
    }
    cairo_rectangle(m_cairo.get(), Sharp(LEFT), Sharp(TOP), std::floor(m_width - LEFT - RIGHT),
                    std::floor(bottom - TOP));
    cairo_stroke(m_cairo.get());
}

void Plot::Write(const std::string& path) {
    CNewFileSet file(Wide(path));
    if (!file.IsOpen())
        throw Failure(CGISDataSource::GetLastErrorText());
    const cairo_status_t status =
        cairo_surface_write_to_png(m_surface.get(), Narrow(file.GetTemporaryPath()).c_str());
    if (status != CAIRO_STATUS_SUCCESS)
        throw Failure(path, cairo_status_to_string(status));
    if (!file.Commit())
        throw Failure(CGISDataSource::GetLastErrorText());
}

} // namespace zelto::host
