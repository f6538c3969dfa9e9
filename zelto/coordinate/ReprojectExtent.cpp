#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/coordinate/ImageInfo.h"
#include "zelto/coordinate/Reproject.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr int SIDE = 21;
constexpr int CELLS = SIDE - 1;

/// Points spread evenly over an image, edges included, row by row.
struct Lattice {
    std::array<double, SIDE * SIDE> x;
    std::array<double, SIDE * SIDE> y;
    std::array<int, SIDE* SIDE> known = {};

    explicit Lattice(const tagImageInfo& image) {
        const double* g = image.geoTransform;
        for (int k = 0; k < SIDE * SIDE; ++k) {
            const int line = k / SIDE;
            const double column = static_cast<double>(image.width) * (k % SIDE) / CELLS;
            const double row = static_cast<double>(image.height) * line / CELLS;
            x[k] = g[0] + column * g[1] + row * g[2];
            y[k] = g[3] + column * g[4] + row * g[5];
        }
    }
    bool Transform(const tagImageInfo& from, const tagImageInfo& to) {
        CCoordinateTransformation* transformation =
            CCoordinateTransformation::CreateCoordinateTransformation(from.srs.c_str(),
                                                                      to.srs.c_str(), nullptr);
        const bool done =
            transformation != nullptr &&
            transformation->Transform(SIDE * SIDE, x.data(), y.data(), nullptr, known.data());
        CCoordinateTransformation::DestroyCoordinateTransformation(transformation);
        return done;
    }
    CPoint2D At(int k) const { return {x[k], y[k]}; }
};

CBoundingBox GroundBox(const tagImageInfo& image) {
    const double* g = image.geoTransform;
    CBoundingBox box(g[0], g[3], g[0], g[3]);
    const auto include = [&](double column, double row) {
        box.Recompute({g[0] + column * g[1] + row * g[2], g[3] + column * g[4] + row * g[5]});
    };
    include(image.width, 0);
    include(0, image.height);
    include(image.width, image.height);
    return box;
}

CBoundingBox KnownBox(const Lattice& points) {
    CBoundingBox box;
    bool first = true;
    for (int k = 0; k < SIDE * SIDE; ++k) {
        if (points.known[k] == 0)
            continue;
        if (first)
            box = CBoundingBox(points.At(k), points.At(k));
        first = false;
        box.Recompute(points.At(k));
    }
    return box;
}

/// Mean ground area of one cell between four known points; NaN when there is none.
double MeanCellArea(const Lattice& points) {
    double area = 0.0;
    int count = 0;
    for (int k = 0; k < SIDE * CELLS; ++k) {
        const int corners[] = {k, k + 1, k + SIDE + 1, k + SIDE};
        const bool whole = k % SIDE < CELLS && std::all_of(corners, corners + 4, [&](int corner) {
                               return points.known[corner] != 0;
                           });
        if (!whole)
            continue;
        // Half the cross product of a quadrangle's diagonals is its area.
        area += std::abs((points.At(corners[2]) - points.At(corners[0])) ^
                         (points.At(corners[3]) - points.At(corners[1]))) /
                2;
        ++count;
    }
    return count > 0 ? area / count : std::numeric_limits<double>::quiet_NaN();
}

/// Pixels that cover a length but for a thousandth of one, so that rounding adds none.
double PixelsFor(double length, double pixel) {
    return std::max(1.0, std::ceil(length / pixel - 1e-3));
}

} // namespace

bool CReproject::GetExtent(tagImageInfo& source, tagImageInfo& target) {
    if (source.width < 1 || source.height < 1)
        return false;
    source.extent = GroundBox(source);
    Lattice points(source);
    if (!points.Transform(source, target))
        return false;
    const CBoundingBox box = KnownBox(points);
    const double pixelsPerCell = static_cast<double>(source.width) / CELLS * source.height / CELLS;
    const double pixel = std::sqrt(MeanCellArea(points) / pixelsPerCell);
    if (!(pixel > 0) || !std::isfinite(pixel))
        return false;
    const double width = PixelsFor(box.GetWidth(), pixel);
    const double height = PixelsFor(box.GetHeight(), pixel);
    constexpr double MOST = std::numeric_limits<int>::max();
    if (!(width <= MOST && height <= MOST))
        return false;
    target.width = static_cast<int>(width);
    target.height = static_cast<int>(height);
    const double geoTransform[] = {box.m_left, pixel, 0.0, box.m_top, 0.0, -pixel};
    std::copy_n(geoTransform, 6, target.geoTransform);
    target.extent = GroundBox(target);
    return true;
}
