#include "zelto/coordinate/GeoGrid.h"

#include "zelto/coordinate/internal/Polynomial.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <numeric>

namespace {

/// Coordinates beyond this are projected metres rather than degrees or pixels.
constexpr double CENTRING_LIMIT = 100000.0;

double Centre(double* values, int count) {
    const double mean = std::accumulate(values, values + count, 0.0) / count;
    std::for_each(values, values + count, [mean](double& value) { value -= mean; });
    return mean;
}

void CentreLargeCoordinates(double* x, double* y, int count, double& centreX, double& centreY) {
    centreX = 0.0;
    centreY = 0.0;
    if (std::abs(x[0]) > CENTRING_LIMIT || std::abs(y[0]) > CENTRING_LIMIT) {
        centreX = Centre(x, count);
        centreY = Centre(y, count);
    }
}

} // namespace

CGeoGrid::CGeoGrid(int nx, int ny, double stepX, double stepY, unsigned int order)
    : m_stepX(stepX), m_stepY(stepY), m_order(order) {
    const auto size = static_cast<std::int64_t>(nx) * ny;
    if (nx < 1 || ny < 1 || size > MAX_POSITIONS)
        return;
    try {
        m_columns.assign(size, 0.0);
        m_rows.assign(size, 0.0);
        m_nx = nx;
        m_ny = ny;
    } catch (const std::bad_alloc&) {
        m_columns.clear();
    }
}

bool CGeoGrid::ComputeCoef(int count, double* inX, double* inY, double* outX, double* outY) {
    m_coefficients.clear();
    if (count < 1 || inX == nullptr || inY == nullptr || outX == nullptr || outY == nullptr)
        return false;
    CentreLargeCoordinates(inX, inY, count, m_inputCentreX, m_inputCentreY);
    CentreLargeCoordinates(outX, outY, count, m_outputCentreX, m_outputCentreY);
    switch (m_order) {
    case 1:
        return ComputePoly1Coef(count, inX, inY, outX, outY);
    case 2:
        return ComputePoly2Coef(count, inX, inY, outX, outY);
    case 3:
        return ComputePoly3Coef(count, inX, inY, outX, outY);
    default:
        return true;
    }
}

bool CGeoGrid::ComputePoly1Coef(int count, double* inX, double* inY, double* outX, double* outY) {
    m_coefficients = zelto::FitPolynomials(1, count, inX, inY, outX, outY);
    return !m_coefficients.empty();
}

bool CGeoGrid::ComputePoly2Coef(int count, double* inX, double* inY, double* outX, double* outY) {
    m_coefficients = zelto::FitPolynomials(2, count, inX, inY, outX, outY);
    return !m_coefficients.empty();
}

bool CGeoGrid::ComputePoly3Coef(int count, double* inX, double* inY, double* outX, double* outY) {
    m_coefficients = zelto::FitPolynomials(3, count, inX, inY, outX, outY);
    return !m_coefficients.empty();
}
