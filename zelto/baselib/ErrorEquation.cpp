#include "zelto/baselib/ErrorEquation.h"

#include "zelto/baselib/MatrixOperation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

bool IsSystem(const double* matrix, const double* rightSide, int terms) {
    return matrix != nullptr && rightSide != nullptr && terms > 0;
}

} // namespace

void CErrorEquation::zero(double* values, int count) {
    if (values != nullptr && count > 0)
        std::fill_n(values, count, 0.0);
}

void CErrorEquation::_TFuncNorml(const double* row, double observation, double* normalMatrix,
                                 double* rightSide, int terms) {
    if (row == nullptr || !IsSystem(normalMatrix, rightSide, terms))
        return;
    for (int i = 0; i < terms; ++i) {
        double* line = normalMatrix + static_cast<std::size_t>(i) * terms;
        for (int j = 0; j < terms; ++j)
            line[j] += row[i] * row[j];
        rightSide[i] += row[i] * observation;
    }
}

void CErrorEquation::_TBalance(double* normalMatrix, double* rightSide, int terms) {
    if (!IsSystem(normalMatrix, rightSide, terms))
        return;
    for (int i = 0; i < terms; ++i) {
        double* line = normalMatrix + static_cast<std::size_t>(i) * terms;
        double largest = 0.0;
        for (int j = 0; j < terms; ++j)
            largest = std::max(largest, std::abs(line[j]));
        if (largest == 0.0)
            continue;
        for (int j = 0; j < terms; ++j)
            line[j] /= largest;
        rightSide[i] /= largest;
    }
}

bool CErrorEquation::_TCaGauss(const double* normalMatrix, const double* rightSide,
                               double* solution, int terms) {
    return CMatrixOperation::Solve(normalMatrix, rightSide, solution, terms);
}
