#include "host/picture/Drawing.h"

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/picture/FileOpacity.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace zelto::host {

namespace {

std::size_t PixelCount(const View& view) {
    return static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height);
}

/// Throws Failure where a drawing failed, or was done without the statistics of its bands, which
/// could not be taken: that picture would be another one.
void FailWithoutPixels(bool drawn, const CRasterSource& source) {
    if (!drawn || !CGISDataSource::GetLastErrorText().empty())
        throw Failure(Narrow(source.GetFilePath()),
                      LastReason("the box misses it, or its pixels cannot be read"));
}

} // namespace

void DrawWhole(CRasterSource& source, const View& view, ChannelOrder order, unsigned char* pixels) {
    CBoundingBox box = view.box;
    ForgetReasons();
    const bool drawn = order == ChannelOrder::RedFirst
                           ? source.GetShowDataRedFirst(&box, view.width, view.height, pixels, true)
                           : source.GetShowData(&box, view.width, view.height, pixels, true);
    FailWithoutPixels(drawn, source);
    // Palette and class colours have their transparency from the drawing already.
    source.m_hue = source.m_intensity = source.m_saturation = source.m_contrast = 0.0F;
    source.ApplyShowDataHISC(view.width, view.height, pixels);
}

void DrawPlanes(CRasterSource& source, CAOISource* area, const View& view, unsigned char* planes,
                unsigned char* inside) {
    const std::size_t size = PixelCount(view);
    std::array<unsigned char*, 3> pointers = {planes, planes + size, planes + 2 * size};
    // The source adjusts the contrast of as many planes as bands are shown; a picture of a
    // single band has three alike.
    const float contrast = std::exchange(source.m_contrast, 0.0F);
    CBoundingBox box = view.box;
    ForgetReasons();
    bool drawn = false;
    if (area == nullptr) {
        drawn =
            source.GetShowData(&box, view.width, view.height, 3, pointers.data(), nullptr, true);
    } else {
        CRasterAOI onGrid(&source, area);
        onGrid.Initialize();
        drawn = source.GetMaskedShowData(&box, view.width, view.height, 3, pointers.data(), &onGrid,
                                         inside);
    }
    source.m_contrast = contrast;
    FailWithoutPixels(drawn, source);
    CRasterAlgorithm::AdjustContrast(pointers.data(), view.width, view.height, contrast, 3);
}

bool DrawMasked(CRasterSource& source, CAOISource& area, const View& view, bool isBlackOutside,
                ChannelOrder order, unsigned char* pixels) {
    const std::size_t size = PixelCount(view);
    std::vector<unsigned char> planes(3 * size);
    std::vector<unsigned char> inside(size);
    DrawPlanes(source, &area, view, planes.data(), inside.data());
    const auto opaque =
        static_cast<unsigned char>(std::lround(255.0 * (1.0 - source.m_transparency)));
    const unsigned char outside = isBlackOutside ? opaque : 0;
    const unsigned char* first = planes.data();
    const unsigned char* third = planes.data() + 2 * size;
    if (order == ChannelOrder::BlueFirst)
        std::swap(first, third);
    const unsigned char* const green = planes.data() + size;
    for (std::size_t i = 0; i < size; ++i, pixels += 4) {
        const bool isShown = inside[i] != 0;
        pixels[0] = isShown ? first[i] : 0;
        pixels[1] = isShown ? green[i] : 0;
        pixels[2] = isShown ? third[i] : 0;
        pixels[3] = isShown ? opaque : outside;
    }
    return std::any_of(inside.begin(), inside.end(), [](unsigned char mark) { return mark != 0; });
}

void ApplyOpacity(const CRasterSource& source, const View& view, const OpenLikewise& open,
                  unsigned char* pixels) {
    const FileOpacity opacity(source);
    if (!opacity.Path().empty())
        ApplyMask(*open(opacity.Path()), Narrow(source.GetFilePath()), view, pixels);
}

void ApplyMask(CRasterSource& mask, const std::string& file, const View& view,
               unsigned char* pixels) {
    mask.SetStretchType(StretchNone);
    std::vector<unsigned char> drawn(PixelCount(view) * 4);
    CBoundingBox box = view.box;
    ForgetReasons();
    if (!mask.GetShowData(&box, view.width, view.height, drawn.data(), true))
        throw Failure(file, LastReason("its mask cannot be read"));
    for (std::size_t i = 0; i < drawn.size(); i += 4) {
        // Beside the mask nothing was drawn into either.
        const int shown = drawn[i + 3] != 0 ? drawn[i] : 0;
        unsigned char& alpha = pixels[i + 3];
        alpha = static_cast<unsigned char>((alpha * shown + 127) / 255);
    }
}

} // namespace zelto::host
