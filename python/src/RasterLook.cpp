#include "python/src/RasterLook.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/geometry/Point2D.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "host/picture/DisplaySource.h"
#include "host/picture/Recipe.h"
#include "host/picture/RenderRamps.h"
#include "python/src/Errors.h"

#include <algorithm>
#include <cmath>
#include <pybind11/stl.h>
#include <tuple>

namespace py = pybind11;

namespace zelto::python {

namespace {

using Color = std::array<unsigned char, 4>;
using ClassColor = std::tuple<double, double, Color, std::string>;

constexpr auto SHOWN_BY_RAMP = static_cast<DataDisplayType>(1);

CRgbaColor Stored(const Color& color) {
    return {color[0], color[1], color[2], color[3]};
}

template <typename Value>
std::optional<Value> Find(const py::dict& settings, const char* name) {
    if (!settings.contains(name) || settings[name].is_none())
        return std::nullopt;
    return settings[name].cast<Value>();
}

/// One of the adjustments, which run from -1 to 1.
float Adjustment(const py::dict& settings, const char* name, double least) {
    const double value = Find<double>(settings, name).value_or(0.0);
    if (!(value >= least && value <= 1.0))
        throw py::value_error(std::string(name) + " is " + (least < 0 ? "-1" : "0") + " to 1");
    return static_cast<float>(value);
}

CColorRamp RampOf(const py::object& ramp) {
    if (py::isinstance<py::str>(ramp)) {
        try {
            return host::MakeRamp(ramp.cast<std::string>());
        } catch (const host::UsageError&) {
            throw py::value_error("ramp is one of " + host::RampNames() + ", or a list of colours");
        }
    }
    std::vector<CRgbaColor> colors;
    for (const Color& color : ramp.cast<std::vector<Color>>())
        colors.push_back(Stored(color));
    if (colors.empty())
        throw py::value_error("a ramp has at least one colour");
    return CColorRamp(colors);
}

template <typename Use>
void ForEachShownBand(CRasterSource& source, Use use) {
    for (const int index : source.GetShowBandArray())
        if (CRasterBand* band = source.GetRasterBand(index))
            use(*band);
}

void Require(bool accepted, const char* rule) {
    if (!accepted)
        throw py::value_error(rule);
}

} // namespace

Look::Look(const py::dict& settings)
    : m_bands(Find<std::vector<int>>(settings, "bands")),
      m_stretch(Find<std::string>(settings, "stretch").value_or("stddev")),
      m_clip(Find<std::array<double, 2>>(settings, "clip")),
      m_gamma(Find<std::vector<double>>(settings, "gamma").value_or(std::vector<double>())),
      m_low(Find<double>(settings, "low")),
      m_high(Find<double>(settings, "high")),
      m_threshold(Find<double>(settings, "threshold")),
      m_wallisModel(Find<int>(settings, "wallis_model")),
      m_stretchTo(Find<std::string>(settings, "stretch_to").value_or("image")),
      m_exact(Find<bool>(settings, "exact").value_or(false)),
      m_table(Find<std::vector<unsigned char>>(settings, "table")),
      m_counts(Find<std::vector<int>>(settings, "histogram")),
      m_hue(Adjustment(settings, "hue", -1)),
      m_intensity(Adjustment(settings, "intensity", -1)),
      m_saturation(Adjustment(settings, "saturation", -1)),
      m_contrast(Adjustment(settings, "contrast", -1)),
      m_transparency(Adjustment(settings, "transparency", 0)),
      m_recipe(Find<CDisplayRecipe>(settings, "recipe")) {
    for (const auto& range : Find<std::vector<std::array<double, 2>>>(settings, "ranges")
                                 .value_or(std::vector<std::array<double, 2>>()))
        m_ranges.push_back({range[0], range[1]});
    if (m_table)
        Require(m_table->size() == 256, "table has 256 values of 0 to 255");
    if (m_counts) {
        Require(!m_counts->empty() && m_counts->size() <= 65536, "histogram has 1 to 65536 counts");
        Require(m_low && m_high && std::isfinite(*m_low) && std::isfinite(*m_high) &&
                    *m_low < *m_high,
                "a histogram goes from low to high, which are given with it");
    }
    Require(m_stretchTo == "image" || m_stretchTo == "view" || m_stretchTo == "area",
            "stretch_to is image, view or area");
    if (settings.contains("ramp") && !settings["ramp"].is_none())
        m_ramp = RampOf(settings["ramp"]);
    if (const auto classes = Find<std::vector<ClassColor>>(settings, "classes")) {
        m_classes.emplace(static_cast<int>(classes->size()));
        for (const auto& [low, high, color, name] : *classes)
            m_classes->AddClassifyItem({Stored(color), low, high, CommonFun::M2U(name)});
    }
}

void Look::ChooseBands(CRasterSource& source) const {
    std::vector<int> bands = m_bands.value_or(std::vector<int>());
    if (!m_bands) {
        host::ShowBandsByColor(source);
        const std::vector<int> shown = source.GetShowBandArray();
        if (m_ramp || m_classes)
            bands = {shown.empty() ? 1 : shown.front() + 1};
        else
            return;
    }
    Require(bands.size() == 1 || bands.size() == 3,
            "bands: one band, or three for red, green and blue");
    Require(bands.size() == 1 || (!m_ramp && !m_classes),
            "a ramp and classes colour a single band");
    for (int& band : bands) {
        if (band < 1 || band > source.GetBandCount())
            throw py::index_error("bands are numbered from 1 to " +
                                  std::to_string(source.GetBandCount()));
        --band;
    }
    source.SetShowBandNum(static_cast<int>(bands.size()), bands.data());
}

void Look::ChooseColors(CRasterSource& source) const {
    if (m_ramp) {
        CColorRamp ramp = *m_ramp;
        source.SetColorRamp(&ramp);
        source.SetDisplayType(SHOWN_BY_RAMP);
    }
    if (m_classes) {
        CClassifyDisplayTable table = *m_classes;
        source.SetClassifyDisplayTable(&table);
        source.SetDisplayType(DISPLAY_CLASSIFIED);
    }
    source.m_hue = m_hue;
    source.m_intensity = m_intensity;
    source.m_saturation = m_saturation;
    source.m_contrast = m_contrast;
    source.m_transparency = m_transparency;
}

void Look::ApplyGivenTable(CRasterSource& source) const {
    source.SetStretchType(StretchEnhanceTable);
    ForEachShownBand(source, [&](CRasterBand& band) {
        band.SetEnhancedData(m_table->data(), HistogramLineStraight, nullptr, 0);
    });
}

void Look::ApplyGivenHistogram(CRasterSource& source) const {
    source.SetStretchType(StretchCustomHistEqualize);
    std::vector<int> counts = *m_counts;
    ForEachShownBand(source, [&](CRasterBand& band) {
        if (!band.SetCustomHistogram(*m_low, *m_high, static_cast<int>(counts.size()),
                                     counts.data()))
            throw py::value_error("the histogram cannot be used");
    });
}

void Look::ApplyStretch(CRasterSource& source, const CBoundingBox& view, CAOISource* area,
                        CallProgress& progress) const {
    CStretchPreparation stretch(&source);
    if (!stretch.SetStretch(m_stretch)) {
        std::string names;
        for (const std::string& name : CStretchPreparation::GetStretchNames())
            names += (names.empty() ? "" : ", ") + name;
        throw py::value_error("stretch is one of " + names);
    }
    if (m_clip)
        Require(stretch.SetClip((*m_clip)[0], (*m_clip)[1]), "clip: 0 <= low < high <= 100");
    Require(m_ranges.empty() || stretch.SetRanges(m_ranges), "ranges: finite, low < high");
    Require(m_gamma.empty() || stretch.SetGamma(m_gamma), "gamma: finite and above 0");
    if (m_low || m_high)
        Require(stretch.SetBounds(m_low, m_high), "bounds: low < high");
    if (m_threshold)
        Require(stretch.SetThreshold(*m_threshold), "threshold: 0 <= threshold < 0.5");
    if (m_wallisModel)
        Require(stretch.SetWallisModel(*m_wallisModel), "wallis_model: 0, 1 or 2");
    if (m_stretchTo == "view")
        stretch.SetView(view);
    if (m_stretchTo == "area") {
        Require(area != nullptr, "stretch_to='area' takes an area");
        stretch.SetArea(area);
    }
    stretch.SetExact(m_exact);
    host::ForgetReasons();
    if (stretch.Apply(&progress) != GIS_SUCCESS)
        throw host::Failure(host::LastReason("the stretch cannot be prepared"));
}

void Look::Apply(CRasterSource& source, const CBoundingBox& view, CAOISource* area,
                 CallProgress& progress) const {
    if (m_recipe) {
        host::ApplyRecipe(*m_recipe, source);
        return;
    }
    ChooseBands(source);
    ChooseColors(source);
    if (m_table)
        ApplyGivenTable(source);
    else if (m_counts)
        ApplyGivenHistogram(source);
    else
        ApplyStretch(source, view, area, progress);
}

KeptDisplay::KeptDisplay(CRasterSource& source)
    : m_source(source),
      m_bands(source.GetShowBandArray()),
      m_displayType(source.GetDisplayType()) {}

KeptDisplay::~KeptDisplay() {
    m_source.SetShowBandNum(static_cast<int>(m_bands.size()), m_bands.data());
    m_source.SetDisplayType(static_cast<DataDisplayType>(m_displayType));
}

} // namespace zelto::python
