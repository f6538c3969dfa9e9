#pragma once

#include <map>
#include <string>

namespace zelto::bench {

/// Points (x, seconds) of some curves, by name.
using Curves = std::map<std::string, std::map<double, double>>;

/// A plot of the curves, both axes logarithmic, as SVG text.
std::string PlotCurves(const Curves& curves, const std::string& xTitle);

} // namespace zelto::bench
