#include "cli/render/Drawing.h"

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/raster/RasterSource.h"

#include "cli/render/FileOpacity.h"
#include "cli/render/Opacity.h"
#include "cli/render/Sheet.h"
#include "cli/render/System.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/picture/RenderRamps.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace zelto::cli {

namespace {

void ChooseBands(CRasterSource& source, const std::string& text) {
    std::vector<int> bands = host::ParseBands("--bands", text, source.GetBandCount());
    if (bands.size() != 1 && bands.size() != 3)
        throw host::UsageError("--bands: give one band, or three for red, green and blue");
    source.SetShowBandNum(static_cast<int>(bands.size()), bands.data());
}

void ChooseRamp(CRasterSource& source, const std::string& name) {
    int first = source.GetRedBandNum();
    source.SetShowBandNum(1, &first);
    CColorRamp ramp = host::MakeRamp(name);
    source.SetColorRamp(&ramp);
    source.SetDisplayType(static_cast<DataDisplayType>(1));
}

/// Throws Failure where a drawing failed, or was done without the statistics of its bands, which
/// could not be taken: that picture would be another one.
void FailWithoutPixels(bool drawn, const std::string& path) {
    if (!drawn || !CGISDataSource::GetLastErrorText().empty())
        throw host::Failure(path, host::LastReason("its pixels cannot be read"));
}

} // namespace

void ApplySettings(CRasterSource& source, const RenderOptions& options) {
    ShowBandsByColor(source);
    if (!options.adjustFrom.empty()) {
        CRasterSource other;
        OpenForDisplay(other, options.adjustFrom, "");
        source.CopyDisplaySetting(&other);
    }
    if (!options.bands.empty())
        ChooseBands(source, options.bands);
    if (!options.ramp.empty())
        ChooseRamp(source, options.ramp);
    source.m_hue = options.hue;
    source.m_intensity = options.intensity;
    source.m_saturation = options.saturation;
    source.m_contrast = options.contrast;
    source.m_transparency = options.transparency;
}

host::Picture DrawWhole(CRasterSource& source, const View& view, const std::string& path) {
    host::Picture picture(view.width, view.height);
    CBoundingBox box = view.box;
    FailWithoutPixels(
        source.GetShowData(&box, view.width, view.height, picture.pixels.data(), true), path);
    // Palette and class colours have their transparency from the drawing already.
    source.m_hue = source.m_intensity = source.m_saturation = source.m_contrast = 0.0F;
    source.ApplyShowDataHISC(view.width, view.height, picture.pixels.data());
    return picture;
}

host::Picture DrawMasked(CRasterSource& source, CAOISource& aoi, const View& view,
                         const RenderOptions& options) {
    CRasterAOI area(&source, &aoi);
    area.Initialize();

    const std::size_t size = static_cast<std::size_t>(view.width) * view.height;
    std::vector<unsigned char> planes[3];
    unsigned char* pointers[3];
    for (int i = 0; i < 3; ++i) {
        planes[i].resize(size);
        pointers[i] = planes[i].data();
    }
    // The source adjusts the contrast of as many planes as bands are shown; a picture of a single
    // band has three alike.
    const float contrast = std::exchange(source.m_contrast, 0.0F);
    std::vector<unsigned char> inside(size);
    CBoundingBox box = view.box;
    FailWithoutPixels(
        source.GetMaskedShowData(&box, view.width, view.height, 3, pointers, &area, inside.data()),
        options.file);
    CRasterAlgorithm::AdjustContrast(pointers, view.width, view.height, contrast, 3);
    if (std::all_of(inside.begin(), inside.end(), [](unsigned char mark) { return mark == 0; }))
        host::Remark(options.aoi + ": no part of it lies in the picture");

    host::Picture picture(view.width, view.height);
    const auto opaque =
        static_cast<unsigned char>(std::lround(255.0 * (1.0 - source.m_transparency)));
    const unsigned char outside = options.outside == "black" ? opaque : 0;
    unsigned char* pixel = picture.pixels.data();
    for (std::size_t i = 0; i < size; ++i, pixel += 4) {
        for (int channel = 0; channel < 3; ++channel)
            pixel[channel] = inside[i] != 0 ? planes[2 - channel][i] : 0;
        pixel[3] = inside[i] != 0 ? opaque : outside;
    }
    return picture;
}

host::Picture DrawSheet(const View& view, const RenderOptions& options) {
    std::vector<SheetCell> cells;
    // What one picture reads of the file serves the others for as long as it is open.
    CRasterSource kept;
    OpenForDisplay(kept, options.file, "");
    for (const std::string& name : StretchesOfSheet()) {
        // Each gets a source of its own: some build on what an earlier drawing left.
        CRasterSource source;
        OpenForDisplay(source, options.file, options.srs);
        if (!options.srs.empty())
            OpenForDisplay(source, options.file, options.srs, &view);
        ApplySettings(source, options);
        if (!SuitsShownBands(source, name))
            continue;
        try {
            ApplyStretch(source, StretchOfSheet(options.stretch, name), {view.box}, options.file);
        } catch (const UnsuitedStretch& failure) {
            host::Remark(std::string(failure.what()) + "; the sheet leaves " + name + " out");
            continue;
        }
        cells.push_back({name, DrawWhole(source, view, options.file)});
        ApplyOpacity(cells.back().picture, source, view, options.srs);
    }
    if (cells.empty())
        throw host::Failure(options.file, "no stretch suits its bands");
    return MakeSheet(cells);
}

} // namespace zelto::cli
