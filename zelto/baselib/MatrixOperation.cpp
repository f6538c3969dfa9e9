#include "zelto/baselib/MatrixOperation.h"

#include <Eigen/Dense>

#include <algorithm>
#include <new>

namespace {

using Matrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using ConstMatrixMap = Eigen::Map<const Matrix>;

/// Solves for all columns of `right` at once.
bool SolveColumns(const double* matrix, const Matrix& right, double* solution, int n) {
    const ConstMatrixMap left(matrix, n, n);
    if (!left.allFinite() || !right.allFinite())
        return false;
    Eigen::FullPivLU<Matrix> elimination(left);
    elimination.setThreshold(CMatrixOperation::SINGULAR_PIVOT);
    if (!elimination.isInvertible())
        return false;
    const Matrix result = elimination.solve(right);
    if (!result.allFinite())
        return false;
    std::copy_n(result.data(), result.size(), solution);
    return true;
}

} // namespace

bool CMatrixOperation::Transpose(const double* matrix, double* result, int rows, int columns) {
    if (matrix == nullptr || result == nullptr || rows < 1 || columns < 1)
        return false;
    Eigen::Map<Matrix>(result, columns, rows) = ConstMatrixMap(matrix, rows, columns).transpose();
    return true;
}

bool CMatrixOperation::Multiply(const double* a, const double* b, double* result, int rows,
                                int inner, int columns) {
    if (a == nullptr || b == nullptr || result == nullptr || rows < 1 || inner < 1 || columns < 1)
        return false;
    Eigen::Map<Matrix>(result, rows, columns).noalias() =
        ConstMatrixMap(a, rows, inner) * ConstMatrixMap(b, inner, columns);
    return true;
}

bool CMatrixOperation::Inverse(const double* matrix, double* result, int n) {
    if (matrix == nullptr || result == nullptr || n < 1)
        return false;
    try {
        return SolveColumns(matrix, Matrix::Identity(n, n), result, n);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool CMatrixOperation::Solve(const double* matrix, const double* right, double* solution, int n) {
    if (matrix == nullptr || right == nullptr || solution == nullptr || n < 1)
        return false;
    try {
        return SolveColumns(matrix, ConstMatrixMap(right, n, 1), solution, n);
    } catch (const std::bad_alloc&) {
        return false;
    }
}
