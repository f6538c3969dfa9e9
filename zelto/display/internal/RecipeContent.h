#pragma once

#include "zelto/baselib/ClassifyDisplayItem.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/datasource/StretchType.h"
#include "zelto/display/DisplayRecipe.h"
#include "zelto/raster/internal/BandSampling.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

/// A histogram as a band stretches by it.
struct RecipeHistogram {
    double minimum = 0.0;
    double maximum = 0.0;
    std::vector<int> counts;
};

/// What CRasterBand::SetStretchData() is told.
struct RecipeFunction {
    StretchType type = StretchZoomLinear;
    std::array<double, 6> numbers{};
};

/// A band that is shown, with all of its stretch that plays a part.
struct RecipeBand {
    int number = 0; ///< counted from 0
    StretchType stretch = StretchNone;
    std::optional<BandSummary> statistics;
    std::optional<RecipeHistogram> histogram;
    std::optional<RecipeFunction> function;
    std::optional<std::array<unsigned char, 256>> table;
    std::optional<double> threshold; ///< of the auto levels
};

struct RecipeColors {
    double hue = 0.0;
    double intensity = 0.0;
    double saturation = 0.0;
    double contrast = 0.0;
    double transparency = 0.0;
};

struct RecipeContent {
    std::vector<RecipeBand> bands;
    RecipeColors colors;
    std::optional<CColorRamp> ramp;                           ///< of a single band
    std::optional<std::vector<CClassifyDisplayItem>> classes; ///< of a single band
    std::optional<CDisplayRecipe::View> view;
    std::optional<CDisplayRecipe::Mask> mask;
};

/// What a source shows. Throws std::runtime_error with the reason where that is nothing.
RecipeContent ContentOf(const CRasterSource& source);

/// Has a source show the content. Throws std::runtime_error, before it changes the source, where
/// the source lacks a band.
void ApplyContent(const RecipeContent& content, CRasterSource& source);

/// Two spaces an indent, numbers that read back to the same bits.
std::string ToJson(const RecipeContent& content);

/// Throws std::runtime_error naming the member that is wrong.
RecipeContent FromJson(const std::string& text);

} // namespace zelto
