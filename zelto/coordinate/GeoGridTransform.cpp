#include "zelto/coordinate/GeoGrid.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>

namespace {

/// Points worked on at a time: their positions stay in the processor's first cache.
constexpr int BLOCK = 512;

} // namespace

bool CGeoGrid::Transform(CRasterSource* source, int count, double* x, double* y, int* success) {
    if (source == nullptr || count < 1 || x == nullptr || y == nullptr)
        return false;
    double columns[BLOCK];
    double rows[BLOCK];
    bool found = false;
    for (int begin = 0; begin < count; begin += BLOCK) {
        const int size = std::min(BLOCK, count - begin);
        std::copy_n(x + begin, size, columns);
        std::copy_n(y + begin, size, rows);
        found = GetPos(size, x + begin, y + begin, columns, rows);
        for (int i = 0; i < size; ++i)
            source->ImageToGround(columns[i], rows[i], x[begin + i], y[begin + i]);
    }
    if (success != nullptr)
        std::fill_n(success, count, found ? 1 : 0);
    return found;
}
