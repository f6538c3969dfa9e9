#include "zelto/coordinate/internal/Polynomial.h"

#include "zelto/baselib/ErrorEquation.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zelto {
namespace {

constexpr int MAX_ORDER = 3;
constexpr int MAX_TERMS = POLYNOMIAL_TERMS<MAX_ORDER>;
using Terms = std::array<double, MAX_TERMS>;

constexpr int TermIndex(int powerU, int powerV) {
    const int degree = powerU + powerV;
    return degree * (degree + 1) / 2 + powerV;
}

/// Maps the range of a variable to −1 … 1. The normal equations of powers of raw coordinates
/// lose all digits soon after the second order; those of the reduced variable lose few.
struct Reduction {
    double centre = 0.0;
    double scale = 1.0;

    Reduction(const double* values, int count) {
        const auto [least, greatest] = std::minmax_element(values, values + count);
        centre = *least + (*greatest - *least) / 2;
        // Without extent the variable stays 0 and the equations singular.
        if (*greatest > *least)
            scale = (*greatest - *least) / 2;
    }
    double operator()(double value) const { return (value - centre) / scale; }
};

Terms MakeTerms(double u, double v) {
    return {1.0, u, v, u * u, u * v, v * v, u * u * u, u * u * v, u * v * v, v * v * v};
}

/// The normal equations of one set of observations.
struct NormalEquations {
    std::array<double, MAX_TERMS * MAX_TERMS> matrix;
    Terms right;

    NormalEquations() {
        CErrorEquation::zero(matrix.data(), static_cast<int>(matrix.size()));
        CErrorEquation::zero(right.data(), MAX_TERMS);
    }
    void Add(const Terms& row, double observation, int terms) {
        CErrorEquation::_TFuncNorml(row.data(), observation, matrix.data(), right.data(), terms);
    }
    bool Solve(Terms& solution, int terms) {
        CErrorEquation::_TBalance(matrix.data(), right.data(), terms);
        return CErrorEquation::_TCaGauss(matrix.data(), right.data(), solution.data(), terms);
    }
};

/// Coefficients by power k of value in ((value − centre) / scale)^power, times `factor`.
std::array<long double, MAX_ORDER + 1> ExpandPower(const Reduction& reduction, int power) {
    std::array<long double, MAX_ORDER + 1> expanded = {1.0L};
    for (int i = 0; i < power; ++i) {
        for (int k = i + 1; k >= 0; --k) {
            const long double lower = k > 0 ? expanded[k - 1] : 0.0L;
            expanded[k] = (lower - expanded[k] * reduction.centre) / reduction.scale;
        }
    }
    return expanded;
}

/// Appends the coefficients for the raw variables of a polynomial in the reduced ones.
void AppendExpanded(std::vector<double>& coefficients, const Terms& reduced, int order,
                    const Reduction& reduceU, const Reduction& reduceV) {
    std::array<long double, MAX_TERMS> raw = {};
    for (int i = 0; i <= order; ++i) {
        const auto powersU = ExpandPower(reduceU, i);
        for (int j = 0; i + j <= order; ++j) {
            const auto powersV = ExpandPower(reduceV, j);
            const long double factor = reduced[TermIndex(i, j)];
            for (int k = 0; k <= i; ++k)
                for (int l = 0; l <= j; ++l)
                    raw[TermIndex(k, l)] += factor * powersU[k] * powersV[l];
        }
    }
    const int terms = TermIndex(0, order) + 1;
    coefficients.insert(coefficients.end(), raw.begin(), raw.begin() + terms);
}

} // namespace

std::vector<double> FitPolynomials(int order, int count, const double* u, const double* v,
                                   const double* x, const double* y) {
    const int terms = TermIndex(0, order) + 1;
    if (count < terms)
        return {};
    const Reduction reduceU(u, count);
    const Reduction reduceV(v, count);
    NormalEquations equationsX;
    NormalEquations equationsY;
    for (int i = 0; i < count; ++i) {
        const Terms row = MakeTerms(reduceU(u[i]), reduceV(v[i]));
        equationsX.Add(row, x[i], terms);
        equationsY.Add(row, y[i], terms);
    }
    Terms solutionX = {};
    Terms solutionY = {};
    if (!equationsX.Solve(solutionX, terms) || !equationsY.Solve(solutionY, terms))
        return {};
    std::vector<double> coefficients;
    AppendExpanded(coefficients, solutionX, order, reduceU, reduceV);
    AppendExpanded(coefficients, solutionY, order, reduceU, reduceV);
    return coefficients;
}

} // namespace zelto
