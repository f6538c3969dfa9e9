#pragma once

#include "zelto/Export.h"

/// Least squares by normal equations: observations are added one by one, then the square
/// system is scaled and solved. Matrices are row-major, terms × terms values; right sides and
/// solutions have one value per term. A null pointer or a count below 1 makes an operation do
/// nothing (and a solve fail).
class ZELTO_API CErrorEquation {
  public:
    /// Sets `count` values to 0. A system must be zeroed before its first observation.
    static void zero(double* values, int count);

    // The interface's names.
    // NOLINTBEGIN(bugprone-reserved-identifier)

    /// Adds one observation equation, row · unknowns = observation, to the normal equations.
    /// @param row coefficients of the unknowns, `terms` values
    static void _TFuncNorml(const double* row, double observation, double* normalMatrix,
                            double* rightSide, int terms);

    /// Divides every equation by its largest coefficient, which leaves the solution as it is
    /// and lets the solver compare pivots of different units. Zero rows stay.
    static void _TBalance(double* normalMatrix, double* rightSide, int terms);

    /// Solves the system by Gaussian elimination with full pivoting.
    /// @param normalMatrix,rightSide unchanged
    /// @return false, with `solution` unchanged, when the system is singular (see
    ///         CMatrixOperation::SINGULAR_PIVOT) or has no finite solution
    static bool _TCaGauss(const double* normalMatrix, const double* rightSide, double* solution,
                          int terms);

    // NOLINTEND(bugprone-reserved-identifier)
};
