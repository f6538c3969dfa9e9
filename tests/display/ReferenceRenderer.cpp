#include "tests/display/ReferenceRenderer.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace zelto::test {
namespace {

/// What a conversion to int gives on the machines the displays were calibrated on.
int ToInt(double v) {
    if (!(v > -2147483649.0 && v < 2147483648.0))
        return std::numeric_limits<int>::min();
    return static_cast<int>(v);
}

struct Window {
    bool usable = false;
    double dx = 0.0, dy = 0.0;
    int xOff = 0, yOff = 0, xSize = 0, ySize = 0, bufX = 0, bufY = 0;
};

Window ChooseWindow(const CRasterSource& source, const CBoundingBox& box, int w, int h,
                    bool planes) {
    Window view;
    double g[6] = {0.0, source.GetXResolution(), 0.0, 0.0, 0.0, source.GetYResolution()};
    source.ImageToGround(0, 0, g[0], g[3]);
    const double* inv = source.GetInverseGeoTransform();
    view.dx = std::fabs(box.m_right - box.m_left) / w;
    view.dy = std::fabs(box.m_top - box.m_bottom) / h;
    const double xs[2] = {box.m_left - view.dx, box.m_right + view.dx};
    const double ys[2] = {box.m_top + view.dy, box.m_bottom - view.dy};
    std::vector<int> columns, rows;
    for (double x : xs)
        for (double y : ys) {
            columns.push_back(ToInt(inv[0] + x * inv[1] + y * inv[2]));
            rows.push_back(ToInt(inv[3] + x * inv[4] + y * inv[5]));
        }
    const std::int64_t minCol = *std::min_element(columns.begin(), columns.end());
    const std::int64_t maxCol = *std::max_element(columns.begin(), columns.end());
    const std::int64_t minRow = *std::min_element(rows.begin(), rows.end());
    const std::int64_t maxRow = *std::max_element(rows.begin(), rows.end());
    const std::int64_t width = source.GetWidth(), height = source.GetHeight();
    const std::int64_t xOff = std::max<std::int64_t>(0, minCol);
    const std::int64_t yOff = std::max<std::int64_t>(0, minRow);
    std::int64_t xSize = 0, ySize = 0;
    if (planes) {
        xSize = std::min(width, maxCol) - xOff;
        ySize = std::min(height, maxRow) - yOff;
    } else {
        xSize = std::min(width - 1, maxCol) - xOff + 1;
        ySize = std::min(height - 1, maxRow) - yOff + 1;
    }
    if (xSize <= 0 || ySize <= 0)
        return view;
    view.xOff = static_cast<int>(xOff);
    view.yOff = static_cast<int>(yOff);
    view.xSize = static_cast<int>(xSize);
    view.ySize = static_cast<int>(ySize);
    const bool fullX = view.dx - g[1] <= 1e-5 || view.dx <= g[1];
    const bool fullY = view.dy - std::fabs(g[5]) <= 1e-5 || view.dy <= std::fabs(g[5]);
    if (planes && fullX && fullY) {
        view.bufX = view.xSize;
        view.bufY = view.ySize;
    } else {
        const double spanX = std::fabs((maxCol * g[1] + g[0]) - (minCol * g[1] + g[0]));
        const double spanY = std::fabs((maxRow * g[5] + g[3]) - (minRow * g[5] + g[3]));
        if (!(spanX > 0.0) || !(spanY > 0.0))
            return view;
        const double columnsAcross = static_cast<double>(maxCol - minCol);
        const double rowsDown = static_cast<double>(maxRow - minRow);
        const CBoundingBox extent = source.GetExtent();
        const double unitX = std::fabs(extent.m_right - extent.m_left) / source.GetWidth();
        const double unitY = std::fabs(extent.m_top - extent.m_bottom) / source.GetHeight();
        view.bufX = ToInt(std::floor((static_cast<double>(xSize) / columnsAcross) *
                                         (spanX / (((spanX / columnsAcross) * view.dx) / unitX)) +
                                     0.5));
        view.bufY = ToInt(std::floor((static_cast<double>(ySize) / rowsDown) *
                                         (spanY / (((spanY / rowsDown) * view.dy) / unitY)) +
                                     0.5));
    }
    view.usable = view.bufX > 0 && view.bufY > 0;
    return view;
}

bool ReadWindow(CRasterBand& band, const Window& view) {
    return band.GetData(view.xOff, view.yOff, view.xSize, view.ySize, view.bufX, view.bufY);
}

enum class Kind { Ramp, Classes, Grey, Palette };

Kind SingleBandKind(const CRasterSource& source, const CRasterBand& band) {
    if (static_cast<int>(source.GetDisplayType()) == 1 && source.GetColorRamp() != nullptr)
        return Kind::Ramp;
    if (static_cast<int>(source.GetDisplayType()) == 2 &&
        source.GetClassifyDisplayTable() != nullptr)
        return Kind::Classes;
    return band.IsHaveColorTable() ? Kind::Palette : Kind::Grey;
}

void DrawSinglePixel(CRasterSource& source, CRasterBand& band, double col, double row,
                     unsigned char* pixel) {
    double value = 0.0;
    const Kind kind = SingleBandKind(source, band);
    if (!band.GetNearestValueAt(col, row, &value) ||
        (kind == Kind::Palette && band.GetColorTable() == nullptr)) {
        pixel[3] = 0;
        return;
    }
    const unsigned char v = band.Convert2ShowValue(value);
    const int transparency =
        static_cast<int>(static_cast<std::int64_t>(source.m_transparency * 255.0));
    if (kind == Kind::Ramp) {
        pixel[0] = source.GetColorRamp()->Blue(v);
        pixel[1] = source.GetColorRamp()->Green(v);
        pixel[2] = source.GetColorRamp()->Red(v);
    } else if (kind == Kind::Classes) {
        source.GetClassifyDisplayTable()->GetColor(value, pixel[2], pixel[1], pixel[0], pixel[3]);
        if (pixel[3] - (transparency & 255) < 0)
            pixel[3] = 0;
    } else if (kind == Kind::Grey) {
        pixel[0] = pixel[1] = pixel[2] = v;
    } else {
        GDALColorEntry entry{0, 0, 0, 0};
        band.GetColorTable()->GetColorEntryAsRGB(ToInt(value), &entry);
        pixel[2] = static_cast<unsigned char>(entry.c1);
        pixel[1] = static_cast<unsigned char>(entry.c2);
        pixel[0] = static_cast<unsigned char>(entry.c3);
        pixel[3] = static_cast<unsigned char>(entry.c4 - transparency);
    }
}

void DrawPlanePixel(CRasterSource& source, CRasterBand& band, double value, bool masked,
                    std::vector<std::vector<unsigned char>>& planes, std::size_t at) {
    const unsigned char v = band.Convert2ShowValue(value);
    const Kind kind = SingleBandKind(source, band);
    if (kind == Kind::Grey || (kind == Kind::Ramp && planes.size() == 1)) {
        for (auto& plane : planes)
            plane[at] = v;
        return;
    }
    unsigned char r = 0, g = 0, b = 0, a = 255;
    if (kind == Kind::Ramp) {
        r = source.GetColorRamp()->Red(v);
        g = source.GetColorRamp()->Green(v);
        b = source.GetColorRamp()->Blue(v);
    } else if (kind == Kind::Classes) {
        source.GetClassifyDisplayTable()->GetColor(value, r, g, b, a);
        if (a == 0)
            r = g = b = 0;
    } else if (band.GetColorTable() != nullptr) {
        GDALColorEntry entry{0, 0, 0, 0};
        band.GetColorTable()->GetColorEntryAsRGB(ToInt(value), &entry);
        r = static_cast<unsigned char>(entry.c1);
        g = static_cast<unsigned char>(entry.c2);
        b = static_cast<unsigned char>(entry.c3);
    }
    const unsigned char blueFirst[3] = {b, g, r};
    const unsigned char redFirst[3] = {r, g, b};
    for (std::size_t p = 0; p < planes.size() && p < 3; ++p)
        planes[p][at] = masked ? redFirst[p] : blueFirst[p];
}

} // namespace

ReferenceImage RenderInterleavedPlainly(CRasterSource& source, CBoundingBox box, int w, int h) {
    ReferenceImage image;
    const Window view = ChooseWindow(source, box, w, h, false);
    if (!view.usable)
        return image;
    image.touched = true;
    image.pixels.assign(static_cast<std::size_t>(w) * h * 4, 255);
    const double* inv = source.GetInverseGeoTransform();
    for (int k = 0; k < source.GetShowBandCount(); ++k) {
        CRasterBand* band = source.GetRasterBand(source.GetShowBandArray()[k]);
        if (band == nullptr || !ReadWindow(*band, view))
            return image;
        std::uint64_t count = 0, sum = 0, squares = 0;
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) {
                const double y = box.m_top - r * view.dy;
                const double x = c * view.dx + box.m_left;
                const double col = inv[0] + x * inv[1] + y * inv[2];
                const double row = inv[3] + x * inv[4] + y * inv[5];
                unsigned char* pixel = &image.pixels[4 * (static_cast<std::size_t>(r) * w + c)];
                if (source.GetShowBandCount() == 1) {
                    DrawSinglePixel(source, *band, col, row, pixel);
                    continue;
                }
                if (pixel[3] == 0)
                    continue;
                double value = 0.0;
                if (!band->GetNearestValueAt(col, row, &value)) {
                    pixel[3] = 0;
                    continue;
                }
                const unsigned char v = band->Convert2ShowValue(value);
                pixel[2 - k] = v;
                ++count;
                sum += v;
                squares += std::uint64_t{v} * v;
            }
        if (count > 0) {
            image.counted[k] = true;
            const double n = static_cast<double>(count);
            image.means[k] = static_cast<double>(sum) / n;
            image.deviations[k] = std::sqrt(
                std::max(0.0, static_cast<double>(squares) / n - image.means[k] * image.means[k]));
        }
        band->ReleaseCache();
    }
    image.succeeded = true;
    return image;
}

ReferenceImage RenderPlanesPlainly(CRasterSource& source, CBoundingBox box, int w, int h,
                                   int planeCount, const IsInArea& isInArea) {
    ReferenceImage image;
    const Window view = ChooseWindow(source, box, w, h, true);
    if (!view.usable)
        return image;
    image.touched = true;
    image.planes.assign(planeCount, std::vector<unsigned char>(static_cast<std::size_t>(w) * h, 0));
    const double* inv = source.GetInverseGeoTransform();
    for (int k = 0; k < source.GetShowBandCount(); ++k) {
        CRasterBand* band = source.GetRasterBand(source.GetShowBandArray()[k]);
        if (band == nullptr || !ReadWindow(*band, view))
            return image;
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) {
                const double y = box.m_top - (r + 0.5) * view.dy;
                const double x = (c + 0.5) * view.dx + box.m_left;
                const double col = inv[0] + x * inv[1] + y * inv[2];
                const double row = inv[3] + x * inv[4] + y * inv[5];
                const std::size_t at = static_cast<std::size_t>(r) * w + c;
                double value = 0.0;
                if ((isInArea && !isInArea(col, row)) || !band->GetNearestValueAt(col, row, &value))
                    continue;
                if (source.GetShowBandCount() == 1)
                    DrawPlanePixel(source, *band, value, static_cast<bool>(isInArea), image.planes,
                                   at);
                else if (k < planeCount)
                    image.planes[k][at] = band->Convert2ShowValue(value);
            }
        band->ReleaseCache();
    }
    image.succeeded = true;
    return image;
}

} // namespace zelto::test
