#include "zelto/coordinate/GeoGrid.h"
#include "zelto/coordinate/internal/Polynomial.h"

#include <algorithm>
#include <cmath>

namespace {

/// Index of the grid line at or before a position, within the grid; the first one for NaN.
int GridLine(double position, int count) {
    if (!(position > 0.0))
        return 0;
    return static_cast<int>(std::min(std::trunc(position), count - 1.0));
}

} // namespace

template <int Order>
bool CGeoGrid::GetPosByPoly(int count, const double* x, const double* y, double* col,
                            double* row) const {
    if (m_coefficients.empty())
        return false;
    constexpr int TERMS = zelto::POLYNOMIAL_TERMS<Order>;
    // Copies that nothing written in the loop can change.
    double a[TERMS];
    double b[TERMS];
    std::copy_n(m_coefficients.data(), TERMS, a);
    std::copy_n(m_coefficients.data() + TERMS, TERMS, b);
    const double inputX = m_inputCentreX;
    const double inputY = m_inputCentreY;
    const double outputX = m_outputCentreX;
    const double outputY = m_outputCentreY;
    for (int i = 0; i < count; ++i) {
        const double u = x[i] - inputX;
        const double v = y[i] - inputY;
        col[i] = zelto::EvaluatePolynomial<Order>(a, u, v) + outputX;
        row[i] = zelto::EvaluatePolynomial<Order>(b, u, v) + outputY;
    }
    return true;
}

void CGeoGrid::GetPosByLocal(double x, double y, double& col, double& row) const {
    col = 0.0;
    row = 0.0;
    if (m_columns.empty())
        return;
    const double fx = (x - m_originX) / m_stepX;
    const double fy = (y - m_originY) / m_stepY;
    const int i = GridLine(fx, m_nx);
    const int j = GridLine(fy, m_ny);
    const double p = fx - i;
    const double q = fy - j;
    const std::size_t line = static_cast<std::size_t>(j) * m_nx;
    const std::size_t nextLine = static_cast<std::size_t>(std::min(j + 1, m_ny - 1)) * m_nx;
    const int next = std::min(i + 1, m_nx - 1);
    const auto blend = [&](const std::vector<double>& a) {
        return (1 - p) * (1 - q) * a[line + i] + p * (1 - q) * a[line + next] +
               (1 - p) * q * a[nextLine + i] + p * q * a[nextLine + next];
    };
    col = blend(m_columns);
    row = blend(m_rows);
}

bool CGeoGrid::GetPos(double x, double y, double& col, double& row) const {
    return GetPos(1, &x, &y, &col, &row);
}

bool CGeoGrid::GetPos(int count, const double* x, const double* y, double* col, double* row) const {
    switch (m_order) {
    case 1:
        return GetPosByPoly<1>(count, x, y, col, row);
    case 2:
        return GetPosByPoly<2>(count, x, y, col, row);
    case 3:
        return GetPosByPoly<3>(count, x, y, col, row);
    default:
        for (int i = 0; i < count; ++i)
            GetPosByLocal(x[i], y[i], col[i], row[i]);
        return true;
    }
}
