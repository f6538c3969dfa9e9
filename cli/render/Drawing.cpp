#include "cli/render/Drawing.h"

#include "zelto/raster/RasterSource.h"

#include "cli/render/Sheet.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/base/Text.h"
#include "host/picture/DisplaySource.h"
#include "host/picture/Drawing.h"
#include "host/picture/RenderRamps.h"

#include <memory>
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

} // namespace

void ApplySettings(CRasterSource& source, const RenderOptions& options) {
    host::ShowBandsByColor(source);
    if (!options.adjustFrom.empty()) {
        CRasterSource other;
        host::OpenForDisplay(other, options.adjustFrom, "");
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

host::Picture Draw(CRasterSource& source, CAOISource* area, const View& view,
                   const RenderOptions& options) {
    constexpr auto ORDER = host::ChannelOrder::BlueFirst;
    host::Picture picture(view.width, view.height);
    unsigned char* const pixels = picture.pixels.data();
    if (area == nullptr)
        host::DrawWhole(source, view, ORDER, pixels);
    else if (!host::DrawMasked(source, *area, view, options.outside == "black", ORDER, pixels))
        host::Remark(options.aoi + ": no part of it lies in the picture");
    const auto openMask = [&](const std::string& path) {
        return host::OpenForPicture(path, options.srs, view);
    };
    host::ApplyOpacity(source, view, openMask, pixels);
    return picture;
}

host::Picture DrawSheet(const View& view, const RenderOptions& options) {
    std::vector<SheetCell> cells;
    // What one picture reads of the file serves the others for as long as it is open.
    CRasterSource kept;
    host::OpenForDisplay(kept, options.file, "");
    for (const std::string& name : StretchesOfSheet()) {
        // Each gets a source of its own: some build on what an earlier drawing left.
        const auto source = host::OpenForPicture(options.file, options.srs, view);
        ApplySettings(*source, options);
        if (!SuitsShownBands(*source, name))
            continue;
        try {
            ApplyStretch(*source, StretchOfSheet(options.stretch, name), {view.box}, options.file);
        } catch (const UnsuitedStretch& failure) {
            host::Remark(std::string(failure.what()) + "; the sheet leaves " + name + " out");
            continue;
        }
        cells.push_back({name, Draw(*source, nullptr, view, options)});
    }
    if (cells.empty())
        throw host::Failure(options.file, "no stretch suits its bands");
    return MakeSheet(cells);
}

} // namespace zelto::cli
