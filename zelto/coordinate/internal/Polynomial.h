#pragma once

#include <vector>

/// @file
/// Polynomials of two variables up to order 3. The terms stand by degree, within a degree by
/// growing power of the second variable: 1; u, v; u², uv, v²; u³, u²v, uv², v³.

namespace zelto {

template <int Order>
inline constexpr int POLYNOMIAL_TERMS = (Order + 2) * (Order + 1) / 2;

/// Value of the polynomial of order 1 to 3 with the given coefficients, summed in term order.
template <int Order>
inline double EvaluatePolynomial(const double* c, double u, double v) {
    double sum = c[0] + c[1] * u + c[2] * v;
    if constexpr (Order >= 2)
        sum = sum + c[3] * (u * u) + c[4] * (u * v) + c[5] * (v * v);
    if constexpr (Order >= 3)
        sum =
            sum + c[6] * (u * u * u) + c[7] * (u * u * v) + c[8] * (u * v * v) + c[9] * (v * v * v);
    return sum;
}

/// Least-squares polynomials of order 1 to 3 through `count` points (u, v) → x and (u, v) → y.
/// @return the coefficients for x followed by those for y; empty when the points are fewer than
///         the terms, do not determine them or are not finite
std::vector<double> FitPolynomials(int order, int count, const double* u, const double* v,
                                   const double* x, const double* y);

} // namespace zelto
