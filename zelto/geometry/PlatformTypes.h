#pragma once

#include "zelto/Export.h"

#include <cstdint>

/// @file
/// Integer pixel types and rectangle operations of the desktop platform the interface was
/// shaped on, as plain equivalents: columns grow to the right, rows grow downwards.

/// 64-bit signed integer under the name the interface uses for pixel counts.
using __int64 = std::int64_t; // NOLINT(bugprone-reserved-identifier)

/// A pixel position.
struct CPoint {
    std::int32_t x = 0; ///< column
    std::int32_t y = 0; ///< row
};

/// A pixel rectangle. `right` and `bottom` are the first column and row beyond it wherever a
/// rectangle is asked for its size. It is empty when right ≤ left or bottom ≤ top.
struct CRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};

/// Sets the four sides of `*rect` as given, without ordering them.
/// @return false for a null rectangle.
ZELTO_API bool SetRect(CRect* rect, int left, int top, int right, int bottom);

/// Sets `*result` to the overlap of `*a` and `*b`; to the all-zero rectangle when they do not
/// overlap in at least one pixel or one of them is empty. `result` may be `a` or `b`.
/// @return true when the overlap is not empty; false for a null argument.
ZELTO_API bool IntersectRect(CRect* result, const CRect* a, const CRect* b);

/// Sets `*result` to the smallest rectangle that holds `*a` and `*b`. An empty operand is
/// ignored; with both empty the result is the all-zero rectangle. `result` may be `a` or `b`.
/// @return true when the result is not empty; false for a null argument.
ZELTO_API bool UnionRect(CRect* result, const CRect* a, const CRect* b);
