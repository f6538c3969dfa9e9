#pragma once

#include "zelto/Export.h"

/// Small dense matrices in row-major arrays of the caller. A result may not share memory with
/// an operand. A null pointer or a count below 1 makes an operation answer false.
class ZELTO_API CMatrixOperation {
  public:
    /// A square system counts as singular when elimination meets a pivot below this fraction of
    /// the largest one: far above rounding, far below what a solvable system in comparable
    /// units shows.
    static constexpr double SINGULAR_PIVOT = 1e-13;

    /// `result` (columns × rows) = transpose of `matrix` (rows × columns).
    static bool Transpose(const double* matrix, double* result, int rows, int columns);

    /// `result` (rows × columns) = `a` (rows × inner) · `b` (inner × columns).
    static bool Multiply(const double* a, const double* b, double* result, int rows, int inner,
                         int columns);

    /// `result` = inverse of the n × n `matrix`, by elimination with full pivoting.
    /// @return false, with `result` unchanged, for a singular matrix, values not finite and a
    ///         matrix that there is no memory for
    static bool Inverse(const double* matrix, double* result, int n);

    /// Solves `matrix` (n × n) · `solution` = `right`, by elimination with full pivoting.
    /// @return false, with `solution` unchanged, in the same cases
    static bool Solve(const double* matrix, const double* right, double* solution, int n);
};
