#pragma once

#include <ogrsf_frmts.h>

#include <istream>
#include <string>
#include <vector>

namespace zelto {

/// A named polygon of a coordinate file.
struct NamedPolygon {
    std::wstring name;
    OGRGeometryUniquePtr geometry;
};

/// Reads "name x y x y … end", once per polygon. Tokens are parted by white space; a number is
/// what its text starts with, and an x without its y is dropped.
std::vector<NamedPolygon> ReadNamedPolygons(std::istream& stream);

} // namespace zelto
