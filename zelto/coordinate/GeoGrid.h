#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/Point2D.h"

#include <vector>

class CRasterSource;

/// Approximates the mapping from target ground coordinates (x, y) to source positions (column,
/// row): by a polynomial of order 1, 2 or 3, fitted by least squares to sample points, or, for
/// every other order, by bilinear interpolation in a regular grid of sample positions.
///
/// Terms of the polynomials, in the order of their coefficients, with u and v the coordinates
/// relative to the input centre:
/// order 1: 1, u, v; order 2 adds u², uv, v²; order 3 adds u³, u²v, uv², v³.
class ZELTO_API CGeoGrid {
  public:
    /// Most positions a grid can hold.
    static constexpr int MAX_POSITIONS = 1 << 24;

    /// Allocates nx × ny positions, all zero. A grid with a count below 1, with more than
    /// MAX_POSITIONS or too large for the memory holds none.
    /// @param stepX,stepY distance of the sample points in ground units
    CGeoGrid(int nx, int ny, double stepX, double stepY, unsigned int order);

    /// Number of terms of a polynomial, the least number of points that determine it: 3, 6, 10
    /// for the orders 1, 2, 3.
    static unsigned int EnoughNum(unsigned int order) { return (order + 2) * (order + 1) / 2; }

    /// Fits the polynomial of the grid's order to `count` points; other orders than 1 to 3 need
    /// no fit. Inputs, and likewise outputs, are first centred in place on their means when the
    /// first point lies beyond 100000 in either coordinate, so that projected coordinates in
    /// metres lose no digits.
    /// @param inX,inY target ground coordinates, `count` values each
    /// @param outX,outY source columns and rows, `count` values each; these may be the grid's
    ///        own arrays, which then stay centred
    /// @return false for null arrays, fewer than EnoughNum() points, points that do not
    ///         determine the polynomial or that are not finite. The grid then has no
    ///         polynomial, whatever it had before.
    bool ComputeCoef(int count, double* inX, double* inY, double* outX, double* outY);

    /// Source position of a ground point: by the polynomial for the orders 1 to 3, else by
    /// GetPosByLocal().
    /// @return false, with the outputs unchanged, while a polynomial is needed and none fitted
    bool GetPos(double x, double y, double& col, double& row) const;

    /// GetPos() for `count` points at once, several times faster; the arrays are not null.
    bool GetPos(int count, const double* x, const double* y, double* col, double* row) const;

    /// Bilinear interpolation in the grid, its origin at (0, 0) and its rows counted upwards.
    /// Before the first column or row the outermost cell is continued; a neighbour beyond the
    /// last column or row is the last one itself. Where the outputs were centred by
    /// ComputeCoef(), so is the result. A grid without positions answers (0, 0).
    void GetPosByLocal(double x, double y, double& col, double& row) const;

    /// Replaces `count` target ground points by ground points of the source: their source
    /// position, taken to the ground by the geotransform of `source`. Without a fitted
    /// polynomial, for the orders 1 to 3, the coordinates themselves count as positions and the
    /// points as failed.
    /// @param success receives 1 or 0 for every point; may be null
    /// @return the last point's success; false for a null source or array or a count below 1
    bool Transform(CRasterSource* source, int count, double* x, double* y, int* success);

    int GetColumnCount() const { return m_nx; }
    int GetRowCount() const { return m_ny; }
    unsigned int GetOrder() const { return m_order; }
    /// The positions' columns, row by row, GetColumnCount() × GetRowCount() values for the owner
    /// to fill; null for a grid without positions.
    double* GetColumns() { return m_columns.empty() ? nullptr : m_columns.data(); }
    /// The positions' rows, likewise.
    double* GetRows() { return m_rows.empty() ? nullptr : m_rows.data(); }
    /// EnoughNum() coefficients of the column followed by as many of the row; null without a fit.
    const double* GetCoefficients() const {
        return m_coefficients.empty() ? nullptr : m_coefficients.data();
    }

    /// What is taken off x and y before the polynomials are evaluated; (0, 0) unless centred.
    CPoint2D GetInputCentre() const { return {m_inputCentreX, m_inputCentreY}; }
    /// What is added to the polynomials' column and row.
    CPoint2D GetOutputCentre() const { return {m_outputCentreX, m_outputCentreY}; }

  private:
    bool ComputePoly1Coef(int count, double* inX, double* inY, double* outX, double* outY);
    bool ComputePoly2Coef(int count, double* inX, double* inY, double* outX, double* outY);
    bool ComputePoly3Coef(int count, double* inX, double* inY, double* outX, double* outY);
    template <int Order>
    bool GetPosByPoly(int count, const double* x, const double* y, double* col, double* row) const;

    std::vector<double> m_columns;
    std::vector<double> m_rows;
    int m_nx = 0;
    int m_ny = 0;
    double m_stepX = 0.0;
    double m_stepY = 0.0;
    double m_originX = 0.0;
    double m_originY = 0.0;
    unsigned int m_order = 0;
    std::vector<double> m_coefficients;
    double m_inputCentreX = 0.0;
    double m_inputCentreY = 0.0;
    double m_outputCentreX = 0.0;
    double m_outputCentreY = 0.0;
};
