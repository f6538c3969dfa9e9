#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/coordinate/GeoGrid.h"
#include "zelto/coordinate/Reproject.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <vector>

namespace {

constexpr double NO_GRID_STEP = 1e-10;

/// Points on a side: as many steps as fit, and one. Sides and steps that are no numbers count
/// as too many, which no grid can hold.
int PointsOnSide(double side, double step) {
    const double points = std::trunc(std::abs(side) / std::abs(step)) + 1;
    constexpr int MOST = std::numeric_limits<int>::max();
    return points < MOST ? static_cast<int>(points) : MOST;
}

} // namespace

void CReproject::GetGirdNum(int& nx, int& ny) {
    const double width = m_gridRight - m_gridLeft;
    const double height = m_gridTop - m_gridBottom;
    if (std::abs(m_gridStepX) >= NO_GRID_STEP && std::abs(m_gridStepY) >= NO_GRID_STEP) {
        nx = PointsOnSide(width, m_gridStepX);
        ny = PointsOnSide(height, m_gridStepY);
        if (static_cast<std::int64_t>(nx) * ny >= m_minimumPointCount)
            return;
        // Whatever the order: twelve points are enough for every one that is fitted.
        nx = 4;
        ny = 3;
    } else {
        nx = 10;
        ny = 10;
    }
    m_gridStepX = std::abs(width) / nx;
    m_gridStepY = std::abs(height) / ny;
}

bool CReproject::CreateGrid(CBoundingBox& box, double stepX, double stepY, unsigned int order) {
    m_order = order;
    m_gridLeft = box.m_left;
    m_gridTop = box.m_top;
    m_gridRight = box.m_right;
    m_gridBottom = box.m_bottom;
    m_gridStepX = std::abs(stepX);
    m_gridStepY = std::abs(stepY);
    m_minimumPointCount = CGeoGrid::EnoughNum(order);
    delete m_grid;
    m_grid = nullptr;
    m_gridReady = false;
    int nx = 0;
    int ny = 0;
    GetGirdNum(nx, ny);
    try {
        auto grid = std::make_unique<CGeoGrid>(nx, ny, m_gridStepX, m_gridStepY, order);
        if (grid->GetColumns() == nullptr || !FillGrid(nx, ny, *grid))
            return false;
        m_grid = grid.release();
        m_gridReady = true;
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool CReproject::FillGrid(int nx, int ny, CGeoGrid& grid) {
    const int points = nx * ny;
    std::vector<double> targetX;
    std::vector<double> targetY;
    targetX.reserve(static_cast<std::size_t>(points));
    targetY.reserve(static_cast<std::size_t>(points));
    for (int j = 0; j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
            targetX.push_back(m_gridLeft + i * m_gridStepX);
            targetY.push_back(m_gridTop - j * m_gridStepY);
        }
    }
    std::vector<double> x = targetX;
    std::vector<double> y = targetY;
    std::vector<double> z(x.size(), m_meanElevation);
    // The number of rows squared, no more than there are: in a grid wider than high the last
    // points stay as they are. Hosts choose their steps to suit.
    const auto transformed =
        static_cast<int>(std::min<std::int64_t>(static_cast<std::int64_t>(ny) * ny, points));
    if (m_targetToSource == nullptr ||
        !m_targetToSource->Transform(transformed, x.data(), y.data(), z.data(), nullptr))
        return false;
    ToSourcePositions(x.data(), y.data(), grid.GetColumns(), grid.GetRows(), points);
    return grid.ComputeCoef(points, targetX.data(), targetY.data(), grid.GetColumns(),
                            grid.GetRows());
}

void CReproject::ToSourcePositions(const double* x, const double* y, double* col, double* row,
                                   int count) const {
    const CRasterSource* raster = GetAffineRaster();
    if (raster == nullptr) {
        std::copy_n(x, count, col);
        std::copy_n(y, count, row);
        return;
    }
    for (int i = 0; i < count; ++i)
        raster->GroundToImage(x[i], y[i], col[i], row[i]);
}

bool CReproject::GetSrcPos(double* x, double* y, double* col, double* row, int count) {
    if (count < 1 || x == nullptr || y == nullptr || col == nullptr || row == nullptr)
        return false;
    if (m_gridReady)
        return m_grid->GetPos(count, x, y, col, row);
    if (m_targetToSource == nullptr)
        return false;
    try {
        std::vector<double> z(static_cast<std::size_t>(count), m_meanElevation);
        if (!m_targetToSource->Transform(count, x, y, z.data(), nullptr))
            return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
    if (GetAffineRaster() != nullptr)
        ToSourcePositions(x, y, col, row, count);
    return true;
}
