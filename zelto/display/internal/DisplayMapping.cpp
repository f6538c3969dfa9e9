#include "zelto/display/internal/DisplayMapping.h"

#include "zelto/display/ImgEnhance.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/raster/RasterBand.h"

namespace zelto {

namespace {

/// Calls `use` with the object's function behind `prepare`. The object tells by the stretch type
/// it was made for which function it is; the type now set on the band may be another one.
template <typename Prepare, typename Use>
auto ThroughObject(const CImgStretch& object, Prepare prepare, Use use) {
    switch (object.GetStretchType()) {
    case StretchZoomLinear002:
        return use(Through<Prepare, ZoomLinear002Function>{
            prepare, ZoomLinear002Function(static_cast<const CZoomLinear002&>(object))});
    case StretchWallis:
        return use(Through<Prepare, WallisFunction>{
            prepare, WallisFunction(static_cast<const CWallisStretch&>(object))});
    default:
        return use(Through<Prepare, ZoomLinearFunction>{
            prepare, ZoomLinearFunction(static_cast<const CZoomLinear&>(object))});
    }
}

} // namespace

/// A single pixel has no range of its own: it is shown as it is.
bool DisplayMapping::IsSinglePixel(const CRasterBand& band) {
    return band.m_width == 1 && band.m_height == 1;
}

/// The stretches that need no stretch-function object; calls `use` with the one chosen.
template <typename Use>
auto DisplayMapping::Choose(CRasterBand& band, Use use) {
    // A single pixel has no range of its own: it is shown as it is. Not every stretch needs the
    // band's range, and asking for it may mean sampling the band.
    const auto range = [&band] { return DisplayRange{band.GetMinimum(), band.GetMaximum()}; };
    const bool asIs = band.m_stretchType == StretchNone || IsSinglePixel(band);
    if (asIs && band.m_dataType == PDT_Byte)
        return use(PassThrough{});
    if (asIs)
        return use(InnerMinMax{range()});

    switch (band.m_stretchType) {
    case StretchStdDev:
        return use(StandardDeviation{band.GetMean(), band.GetStandardDeviation(),
                                     band.GetStdDevLowerBound(), band.GetStdDevUpperBound()});
    case StretchHistEqualize:
        if (band.m_histogram != nullptr)
            return use(Equalized{HistogramLookup(*band.m_histogram)});
        break;
    case StretchCustomHistEqualize:
        if (band.m_customHistogram != nullptr)
            return use(Equalized{HistogramLookup(*band.m_customHistogram)});
        break;
    case StretchAutoLevels:
        if (band.m_histogram != nullptr) {
            band.m_histogram->SetAutoLevelsMap(band.m_autoLevelThreshold);
            return use(AutoLevels{HistogramLookup(*band.m_histogram)});
        }
        break;
    case StretchZoomLinear:
    case StretchZoomLinear002:
    case StretchWallis:
        if (band.m_stretchFunction != nullptr)
            return ChooseFunction(band, use);
        break;
    case StretchEnhanceTable:
        if (band.m_enhancer != nullptr && band.m_enhancer->GetEnhancedTable() != nullptr)
            return use(Enhanced{range(), band.m_enhancer->GetEnhancedTable()});
        break;
    default:
        break;
    }
    return use(MinMax{range()});
}

/// The stretches through the band's stretch-function object.
template <typename Use>
auto DisplayMapping::ChooseFunction(CRasterBand& band, Use use) {
    const CImgStretch& object = *band.m_stretchFunction;
    if (band.m_stretchType == StretchZoomLinear002 && band.m_dataType == PDT_Byte)
        return ThroughObject(object, InnerRaw{}, use);
    const DisplayRange range{band.GetMinimum(), band.GetMaximum()};
    if (band.m_stretchType == StretchWallis)
        return ThroughObject(object, WrappedNormalised{range}, use);
    return ThroughObject(object, InnerNormalised{range}, use);
}

DisplayMapping::DisplayMapping(CRasterBand& band)
    : m_stretch(Choose(band, [](const auto& stretch) { return Stretch(stretch); })) {}

bool DisplayMapping::AwaitsAutoLevels(CRasterBand& band) {
    return band.m_stretchType == StretchAutoLevels && !IsSinglePixel(band) &&
           band.m_histogram != nullptr &&
           !band.m_histogram->IsAutoLevelsMapBuiltFor(band.m_autoLevelThreshold);
}

unsigned char DisplayMapping::Convert(CRasterBand& band, double sample) {
    return Choose(band, [sample](const auto& stretch) { return stretch(sample); });
}

} // namespace zelto
