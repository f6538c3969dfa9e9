#include "zelto/display/internal/RecipeContent.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/display/ImgEnhance.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/display/WallisStretch.h"
#include "zelto/display/ZoomLinear.h"
#include "zelto/display/ZoomLinear002.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace zelto {

namespace {

bool IsFunctionType(StretchType type) {
    return type == StretchZoomLinear || type == StretchZoomLinear002 || type == StretchWallis;
}

/// The histogram behind a type; null for types without, and where there is none.
CRasterHistogram* HistogramBehind(const CRasterBand& band, StretchType type) {
    if (type == StretchHistEqualize || type == StretchAutoLevels)
        return band.GetHistogramObject();
    return type == StretchCustomHistEqualize ? band.GetCustomHistogramObject() : nullptr;
}

const unsigned char* TableOf(const CRasterBand& band) {
    return band.GetEnhancer() != nullptr ? band.GetEnhancer()->GetEnhancedTable() : nullptr;
}

/// The type that a band is drawn by: one that lacks what it needs is drawn as the linear one.
StretchType DrawnType(const CRasterBand& band) {
    const StretchType type = band.GetStretchType();
    const bool isKnown = type >= StretchNone && type <= StretchCustomHistEqualize;
    const bool lacksFunction = IsFunctionType(type) && band.GetStretchFunction() == nullptr;
    const bool isHistogram = type == StretchHistEqualize || type == StretchAutoLevels ||
                             type == StretchCustomHistEqualize;
    const bool lacksHistogram = isHistogram && HistogramBehind(band, type) == nullptr;
    const bool lacksTable = type == StretchEnhanceTable && TableOf(band) == nullptr;
    return !isKnown || lacksFunction || lacksHistogram || lacksTable ? StretchLinear : type;
}

/// Whether a drawing asks for the band's statistics; taking them reads a sample.
bool GoesByStatistics(const CRasterBand& band, StretchType type) {
    const bool isByte = band.GetDataType() == PDT_Byte;
    if (isByte && (type == StretchNone || type == StretchZoomLinear002))
        return false;
    return HistogramBehind(band, type) == nullptr;
}

/// The upper bound from which CZoomLinear makes the same scale again. The division back may miss
/// it by a little.
double UpperBoundOf(const CZoomLinear& function) {
    const double low = function.GetOffset();
    const double scale = function.GetScale();
    if (!(scale > 0))
        return low;
    double high = low + 255.0 / scale;
    for (int step = 0; step < 8 && 255.0 / (high - low) != scale; ++step) {
        const double away = std::numeric_limits<double>::infinity();
        high = std::nextafter(high, 255.0 / (high - low) > scale ? away : -away);
    }
    return high;
}

RecipeFunction FunctionOf(const CImgStretch& function) {
    if (const auto* zoom = dynamic_cast<const CZoomLinear*>(&function))
        return {StretchZoomLinear, {0.0, 0.0, zoom->GetOffset(), UpperBoundOf(*zoom), 0.0, 0.0}};
    if (const auto* zoom = dynamic_cast<const CZoomLinear002*>(&function))
        return {StretchZoomLinear002, {0.0, 0.0, zoom->GetLow(), zoom->GetHigh(), 0.0, 0.0}};
    const auto& wallis = dynamic_cast<const CWallisStretch&>(function);
    return {StretchWallis,
            {wallis.GetSourceMean(), wallis.GetSourceDeviation(), wallis.GetLowerClamp(),
             wallis.GetUpperClamp(), wallis.GetTargetMean(), wallis.GetTargetDeviation()}};
}

RecipeHistogram HistogramOf(CRasterHistogram& histogram) {
    RecipeHistogram content;
    int buckets = 0;
    const int* counts =
        histogram.GetHistogram(content.minimum, content.maximum, buckets, nullptr, nullptr);
    if (counts != nullptr)
        content.counts.assign(counts, counts + buckets);
    return content;
}

/// @param isStretched whether the picture goes by the stretch; palettes and classes do not
RecipeBand BandOf(const CRasterBand& band, int number, bool isStretched) {
    RecipeBand content;
    content.number = number;
    if (!isStretched)
        return content;
    const StretchType type = content.stretch = DrawnType(band);
    if (GoesByStatistics(band, type))
        content.statistics = {band.GetMinimum(), band.GetMaximum(), band.GetMean(),
                              band.GetStandardDeviation()};
    if (CRasterHistogram* histogram = HistogramBehind(band, type))
        content.histogram = HistogramOf(*histogram);
    if (IsFunctionType(type))
        content.function = FunctionOf(*band.GetStretchFunction());
    if (type == StretchEnhanceTable)
        std::copy_n(TableOf(band), 256, content.table.emplace().begin());
    if (type == StretchAutoLevels)
        content.threshold = band.GetAutoLevelThresold();
    return content;
}

std::vector<CClassifyDisplayItem> ItemsOf(const CClassifyDisplayTable& table) {
    std::vector<CClassifyDisplayItem> items;
    items.reserve(static_cast<std::size_t>(table.GetItemCount()));
    for (int i = 0; i < table.GetItemCount(); ++i)
        items.push_back(*table.GetItem(i));
    return items;
}

void ApplyHistogram(RecipeHistogram histogram, StretchType type, CRasterBand& band) {
    const auto buckets = static_cast<int>(histogram.counts.size());
    const bool set = type == StretchCustomHistEqualize
                         ? band.SetCustomHistogram(histogram.minimum, histogram.maximum, buckets,
                                                   histogram.counts.data())
                         : band.SetHistogram(histogram.minimum, histogram.maximum, buckets,
                                             histogram.counts.data());
    if (!set)
        throw std::bad_alloc();
}

void ApplyBand(const RecipeBand& content, CRasterBand& band) {
    band.RestoreStatistics();
    if (const auto& found = content.statistics)
        if (!band.ReplaceStatistics(found->minimum, found->maximum, found->mean,
                                    found->standardDeviation))
            throw std::bad_alloc();
    if (content.histogram)
        ApplyHistogram(*content.histogram, content.stretch, band);
    if (content.table &&
        !band.SetEnhancedData(content.table->data(), HistogramLineCurve, nullptr, 0))
        throw std::bad_alloc();
    if (content.threshold)
        band.SetAutoLevelThresold(*content.threshold);
    if (const auto& function = content.function) {
        const auto& n = function->numbers;
        band.SetStretchData(function->type, n[0], n[1], n[2], n[3], n[4], n[5]);
    }
    band.SetStretchType(content.stretch);
}

void ApplyColors(const RecipeContent& content, CRasterSource& source) {
    source.m_hue = static_cast<float>(content.colors.hue);
    source.m_intensity = static_cast<float>(content.colors.intensity);
    source.m_saturation = static_cast<float>(content.colors.saturation);
    source.m_contrast = static_cast<float>(content.colors.contrast);
    source.m_transparency = static_cast<float>(content.colors.transparency);
    source.SetDisplayType(DISPLAY_DEFAULT);
    if (content.ramp) {
        CColorRamp ramp = *content.ramp;
        source.SetColorRamp(&ramp);
        source.SetDisplayType(displayRamp);
    }
    if (content.classes) {
        CClassifyDisplayTable table(static_cast<int>(content.classes->size()));
        for (const CClassifyDisplayItem& item : *content.classes)
            table.AddClassifyItem(item);
        source.SetClassifyDisplayTable(&table);
        source.SetDisplayType(DISPLAY_CLASSIFIED);
    }
}

} // namespace

RecipeContent ContentOf(const CRasterSource& source) {
    RecipeContent content;
    const int count = source.GetShowBandCount();
    if (count < 1)
        throw std::runtime_error("it shows no band");
    for (int k = 0; k < count; ++k)
        if (source.GetShownBand(k) == nullptr)
            throw std::runtime_error("it shows a band that it does not have");
    SingleBandKind kind = SingleBandKind::Grey;
    if (count == 1)
        kind = KindOf(source, *source.GetShownBand(0));
    const bool isStretched = kind == SingleBandKind::Grey || kind == SingleBandKind::Ramp;
    for (int k = 0; k < count; ++k)
        content.bands.push_back(BandOf(*source.GetShownBand(k),
                                       source.GetShowBandArray()[static_cast<std::size_t>(k)],
                                       isStretched));
    content.colors = {source.m_hue, source.m_intensity, source.m_saturation, source.m_contrast,
                      source.m_transparency};
    if (kind == SingleBandKind::Ramp)
        content.ramp = *source.GetColorRamp();
    if (kind == SingleBandKind::Classes)
        content.classes = ItemsOf(*source.GetClassifyDisplayTable());
    return content;
}

void ApplyContent(const RecipeContent& content, CRasterSource& source) {
    std::vector<int> numbers;
    for (const RecipeBand& band : content.bands) {
        if (source.GetRasterBand(band.number) == nullptr)
            throw std::runtime_error("it has no band " + std::to_string(band.number + 1) +
                                     ", which the recipe shows");
        numbers.push_back(band.number);
    }
    if (numbers.empty())
        throw std::runtime_error("the recipe shows no band");
    source.SetShowBandNum(static_cast<int>(numbers.size()), numbers.data());
    source.SetStretchType(content.bands.front().stretch);
    for (const RecipeBand& band : content.bands)
        ApplyBand(band, *source.GetRasterBand(band.number));
    ApplyColors(content, source);
}

} // namespace zelto
