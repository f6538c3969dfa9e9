#pragma once

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/display/DisplayRecipe.h"
#include "zelto/display/StretchPreparation.h"

#include "python/src/Call.h"

#include <array>
#include <optional>
#include <pybind11/pybind11.h>
#include <string>
#include <vector>

class CAOISource;
class CRasterSource;

namespace zelto::python {

/// How a picture is to look: what render() of the package takes by name.
class Look {
  public:
    /// Throws ValueError and TypeError for settings that make no sense.
    explicit Look(const pybind11::dict& settings);

    /// Whether drawing takes a source of its own, because what it sets cannot be taken back.
    bool NeedsOwnSource() const { return m_classes.has_value() || m_recipe.has_value(); }
    /// Sets it on a source. Throws.
    /// @param area what the stretch goes by where the settings say so; may be null
    void Apply(CRasterSource& source, const CBoundingBox& view, CAOISource* area,
               CallProgress& progress) const;

  private:
    void ChooseBands(CRasterSource& source) const;
    void ChooseColors(CRasterSource& source) const;
    void ApplyGivenTable(CRasterSource& source) const;
    void ApplyGivenHistogram(CRasterSource& source) const;
    void ApplyStretch(CRasterSource& source, const CBoundingBox& view, CAOISource* area,
                      CallProgress& progress) const;

    std::optional<std::vector<int>> m_bands; ///< from 1
    std::string m_stretch;
    std::optional<std::array<double, 2>> m_clip;
    std::vector<CStretchPreparation::Range> m_ranges;
    std::vector<double> m_gamma;
    std::optional<double> m_low;
    std::optional<double> m_high;
    std::optional<double> m_threshold;
    std::optional<int> m_wallisModel;
    std::string m_stretchTo;
    bool m_exact = false;
    std::optional<std::vector<unsigned char>> m_table;
    std::optional<std::vector<int>> m_counts; ///< between the bounds
    float m_hue = 0.0F;
    float m_intensity = 0.0F;
    float m_saturation = 0.0F;
    float m_contrast = 0.0F;
    float m_transparency = 0.0F;
    std::optional<CColorRamp> m_ramp;
    std::optional<CClassifyDisplayTable> m_classes;
    std::optional<CDisplayRecipe> m_recipe; ///< says all of the above
};

/// Puts a source's display settings back at the end of a drawing.
class KeptDisplay {
  public:
    explicit KeptDisplay(CRasterSource& source);
    ~KeptDisplay();
    KeptDisplay(const KeptDisplay&) = delete;
    KeptDisplay& operator=(const KeptDisplay&) = delete;

  private:
    CRasterSource& m_source;
    std::vector<int> m_bands;
    int m_displayType;
};

} // namespace zelto::python
