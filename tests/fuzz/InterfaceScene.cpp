#include "tests/fuzz/InterfaceScene.h"

#include "zelto/raster/RasterBand.h"

#include "tests/fuzz/InterfaceRasters.h"

#include <climits>

namespace zelto::fuzz {

CRasterSource& Scene::Raster(InputBytes& bytes) {
    const int which = bytes.Below(3);
    return which < 2 ? sources[which] : composed;
}

CRasterBand* Scene::Band(InputBytes& bytes) {
    CRasterSource& source = Source(bytes);
    return source.GetRasterBand(bytes.Below(5) - 1);
}

void Scene::ForgetSources() {
    region.reset();
    composed.Close();
}

std::optional<CBoundingBox> ReadBox(InputBytes& bytes, const CGISDataSource& source) {
    CBoundingBox box = source.GetExtent();
    switch (bytes.Below(6)) {
    case 0:
        break;
    case 1: {
        const double x = bytes.Number() * box.GetWidth() / 64.0;
        const double y = bytes.Number() * box.GetHeight() / 64.0;
        box.OffsetBoundingBox(x, y);
        break;
    }
    case 2:
        box.m_right = box.m_left + bytes.Number() * box.GetWidth() / 64.0;
        box.m_bottom = box.m_top - bytes.Number() * box.GetHeight() / 64.0;
        break;
    case 3:
        box = {box.m_right, box.m_bottom, box.m_left, box.m_top};
        break;
    case 4: {
        const std::vector<double> sides = bytes.Numbers(4);
        box = {sides[0], sides[1], sides[2], sides[3]};
        break;
    }
    default:
        return std::nullopt;
    }
    return box;
}

std::size_t PictureSize::Pixels() const {
    if (width < 1 || height < 1)
        return 0;
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

PictureSize ReadSize(InputBytes& bytes) {
    constexpr int SIDES[] = {1, 2, 3, 7, 16, 33, 64, 0, -1, INT_MIN};
    const int kind = bytes.Below(20);
    if (kind == 18)
        return {INT_MAX, SIDES[7 + bytes.Below(3)]};
    if (kind == 19)
        return {SIDES[7 + bytes.Below(3)], INT_MAX};
    return {SIDES[kind % 10], SIDES[bytes.Below(10)]};
}

} // namespace zelto::fuzz
