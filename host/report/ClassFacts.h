#pragma once

#include "host/report/Json.h"
#include "host/report/Table.h"

#include <array>
#include <string>
#include <vector>

namespace zelto::host {

/// A class of a classified raster.
struct ClassFacts {
    double value = 0.0;         ///< of the pixels
    std::array<int, 3> color{}; ///< red, green, blue
    std::string name;
};

/// [{value, color: [red, green, blue], name}]
Json ToJson(const std::vector<ClassFacts>& classes);

/// Value, colour and name of each class.
TableContent ClassTableOf(const std::vector<ClassFacts>& classes);

/// Prints the table for people on standard output.
void PrintClasses(const std::vector<ClassFacts>& classes, int indent = 0);

} // namespace zelto::host
