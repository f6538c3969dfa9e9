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

/// The normal equations of two sets of observations at the same points, which share the matrix.
class NormalEquations {
  public:
    explicit NormalEquations(int terms) : m_terms(terms) {
        CErrorEquation::zero(m_matrix.data(), static_cast<int>(m_matrix.size()));
        CErrorEquation::zero(m_rightX.data(), MAX_TERMS);
        CErrorEquation::zero(m_rightY.data(), MAX_TERMS);
    }
    void Add(const Terms& row, double x, double y) {
        CErrorEquation::_TFuncNorml(row.data(), x, m_matrix.data(), m_rightX.data(), m_terms);
        for (int i = 0; i < m_terms; ++i)
            m_rightY[i] += row[i] * y;
    }
    bool SolveX(Terms& solution) const { return Solve(m_rightX, solution); }
    bool SolveY(Terms& solution) const { return Solve(m_rightY, solution); }

  private:
    bool Solve(Terms right, Terms& solution) const {
        auto matrix = m_matrix;
        CErrorEquation::_TBalance(matrix.data(), right.data(), m_terms);
        return CErrorEquation::_TCaGauss(matrix.data(), right.data(), solution.data(), m_terms);
    }

    int m_terms;
    std::array<double, MAX_TERMS * MAX_TERMS> m_matrix;
    Terms m_rightX;
    Terms m_rightY;
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
    NormalEquations equations(terms);
    for (int i = 0; i < count; ++i)
        equations.Add(MakeTerms(reduceU(u[i]), reduceV(v[i])), x[i], y[i]);
    Terms solutionX = {};
    Terms solutionY = {};
    if (!equations.SolveX(solutionX) || !equations.SolveY(solutionY))
        return {};
    std::vector<double> coefficients;
    AppendExpanded(coefficients, solutionX, order, reduceU, reduceV);
    AppendExpanded(coefficients, solutionY, order, reduceU, reduceV);
    return coefficients;
}

} // namespace zelto
