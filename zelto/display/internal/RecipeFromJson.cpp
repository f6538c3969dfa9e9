#include "zelto/baselib/CommonFun.h"
#include "zelto/display/StretchPreparation.h"
#include "zelto/display/internal/JsonObject.h"
#include "zelto/display/internal/RecipeContent.h"
#include "zelto/display/internal/RecipeMembers.h"

#include <charconv>
#include <climits>
#include <cmath>

namespace zelto {

namespace {

constexpr std::size_t MOST_BUCKETS = 65'536;
constexpr std::size_t MOST_CLASSES = 65'536;
constexpr int LARGEST_SIDE = 65'500;

StretchType StretchFrom(JsonObject& object, bool isFunction) {
    const std::string name = object.Text("stretch");
    for (int type = StretchNone; type <= StretchCustomHistEqualize; ++type) {
        const auto stretch = static_cast<StretchType>(type);
        const bool hasFunction = stretch == StretchZoomLinear || stretch == StretchZoomLinear002 ||
                                 stretch == StretchWallis;
        const std::string known = CStretchPreparation::GetStretchName(stretch);
        if (name == known && (hasFunction || !isFunction))
            return stretch;
    }
    RefuseMember(object.NameOf("stretch"),
                 "'" + name + "' is not the name of a stretch that can be here");
}

BandSummary StatisticsFrom(JsonObject object) {
    const BandSummary found = {object.Number("minimum"), object.Number("maximum"),
                               object.Number("mean"), object.Number("standardDeviation")};
    object.RequireNoOthers();
    return found;
}

RecipeHistogram HistogramFrom(JsonObject object) {
    RecipeHistogram histogram = {object.Number("minimum"), object.Number("maximum"), {}};
    std::size_t place = 0;
    for (const Json& count : object.List("counts", MOST_BUCKETS))
        histogram.counts.push_back(
            IntegerOf(count, 0, INT_MAX, object.NameOf("counts[" + std::to_string(place++) + "]")));
    object.RequireNoOthers();
    return histogram;
}

RecipeFunction FunctionFrom(JsonObject object) {
    RecipeFunction function;
    function.type = StretchFrom(object, true);
    const auto names = NamesOfNumbers(function.type);
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] != nullptr)
            function.numbers[i] = object.Number(names[i]);
    object.RequireNoOthers();
    return function;
}

std::array<unsigned char, 256> TableFrom(JsonObject& object) {
    std::array<unsigned char, 256> table;
    const Json& list = object.List("table", table.size());
    if (list.size() != table.size())
        RefuseMember(object.NameOf("table"), "it has not 256 elements");
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<unsigned char>(
            IntegerOf(list[i], 0, 255, object.NameOf("table[" + std::to_string(i) + "]")));
    return table;
}

/// Throws where a band has not just what its stretch needs: it would be drawn otherwise.
void RequireWhole(const JsonObject& object, const RecipeBand& band) {
    const StretchType type = band.stretch;
    const auto require = [&](const char* member, bool wanted) {
        if (object.Has(member) != wanted)
            RefuseMember(object.NameOf(member),
                         wanted ? "it is missing" : "the stretch has no use for it");
    };
    require("histogram", type == StretchHistEqualize || type == StretchAutoLevels ||
                             type == StretchCustomHistEqualize);
    require("function",
            type == StretchZoomLinear || type == StretchZoomLinear002 || type == StretchWallis);
    require("table", type == StretchEnhanceTable);
    require("threshold", type == StretchAutoLevels);
}

RecipeBand BandFrom(JsonObject object) {
    RecipeBand band;
    band.number = object.Integer("band", 1, INT_MAX) - 1;
    band.stretch = StretchFrom(object, false);
    RequireWhole(object, band);
    if (object.Has("statistics"))
        band.statistics = StatisticsFrom(object.Object("statistics"));
    if (object.Has("histogram"))
        band.histogram = HistogramFrom(object.Object("histogram"));
    if (object.Has("function"))
        band.function = FunctionFrom(object.Object("function"));
    if (object.Has("table"))
        band.table = TableFrom(object);
    if (object.Has("threshold"))
        band.threshold = object.Number("threshold");
    object.RequireNoOthers();
    return band;
}

RecipeColors ColorsFrom(JsonObject object) {
    const auto share = [&](const char* name, double lowest) {
        const double value = object.Number(name);
        if (!(value >= lowest && value <= 1))
            RefuseMember(object.NameOf(name), "it is not within its bounds");
        return value;
    };
    const RecipeColors colors = {share("hue", -1), share("intensity", -1), share("saturation", -1),
                                 share("contrast", -1), share("transparency", 0)};
    object.RequireNoOthers();
    return colors;
}

CRgbaColor RampColorFrom(const Json& value, const std::string& name) {
    const std::string text = value.is_string() ? value.get<std::string>() : "";
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const bool isColor = text.size() == 7 && text[0] == '#' &&
                         std::from_chars(text.data() + 1, end, number, 16).ptr == end;
    if (!isColor)
        RefuseMember(name, "it is no colour as #rrggbb");
    return {static_cast<unsigned char>(number >> 16), static_cast<unsigned char>(number >> 8),
            static_cast<unsigned char>(number), 255};
}

CColorRamp RampFrom(JsonObject& object) {
    CColorRamp ramp;
    const Json& list = object.List("ramp", 256);
    if (list.size() != 256)
        RefuseMember(object.NameOf("ramp"), "it has not 256 elements");
    for (std::size_t i = 0; i < 256; ++i)
        ramp.SetColor(static_cast<unsigned char>(i),
                      RampColorFrom(list[i], object.NameOf("ramp[" + std::to_string(i) + "]")));
    return ramp;
}

CClassifyDisplayItem ClassFrom(JsonObject object) {
    CClassifyDisplayItem item;
    item.m_low = object.Number("low");
    item.m_high = object.Number("high");
    item.m_name = CommonFun::M2U(object.Text("name"));
    const Json& color = object.List("color", 4);
    if (color.size() != 4)
        RefuseMember(object.NameOf("color"), "it has not four elements");
    const auto byte = [&](std::size_t i) {
        return static_cast<unsigned char>(
            IntegerOf(color[i], 0, 255, object.NameOf("color[" + std::to_string(i) + "]")));
    };
    item.m_color = {byte(0), byte(1), byte(2), byte(3)};
    object.RequireNoOthers();
    return item;
}

CDisplayRecipe::View ViewFrom(JsonObject object) {
    CDisplayRecipe::View view;
    view.box = {object.Number("left"), object.Number("top"), object.Number("right"),
                object.Number("bottom")};
    const bool hasArea = std::isfinite(view.box.GetLeft()) && std::isfinite(view.box.GetTop()) &&
                         view.box.GetLeft() < view.box.GetRight() &&
                         view.box.GetBottom() < view.box.GetTop() &&
                         std::isfinite(view.box.GetRight()) && std::isfinite(view.box.GetBottom());
    if (!hasArea)
        RefuseMember(object.NameOf("left"), "the box has no area");
    view.width = object.Integer("width", 1, LARGEST_SIDE);
    view.height = object.Integer("height", 1, LARGEST_SIDE);
    if (object.Has("srs"))
        view.srs = object.Text("srs");
    object.RequireNoOthers();
    return view;
}

CDisplayRecipe::Mask MaskFrom(JsonObject object) {
    CDisplayRecipe::Mask mask;
    mask.area = CommonFun::M2U(object.Text("area"));
    const std::string outside = object.Text("outside");
    if (outside != "transparent" && outside != "black")
        RefuseMember(object.NameOf("outside"), "it is neither transparent nor black");
    mask.isBlack = outside == "black";
    object.RequireNoOthers();
    return mask;
}

void RequireVersion(JsonObject& object) {
    if (object.Text("format") != RECIPE_FORMAT)
        RefuseMember("format", "it is not that of a display recipe");
    if (object.Integer("version", 0, INT_MAX) != RECIPE_VERSION)
        RefuseMember("version", "it is not " + std::to_string(RECIPE_VERSION));
}

} // namespace

RecipeContent FromJson(const std::string& text) {
    const Json json = ParseJson(text);
    JsonObject object(json, "");
    RequireVersion(object);
    RecipeContent content;
    const Json& bands = object.List("bands", 3);
    if (bands.size() != 1 && bands.size() != 3)
        RefuseMember("bands", "one band is shown, or three are");
    for (std::size_t i = 0; i < bands.size(); ++i)
        content.bands.push_back(BandFrom({bands[i], "bands[" + std::to_string(i) + "]"}));
    content.colors = ColorsFrom(object.Object("colors"));
    for (const char* ofOne : {"ramp", "classes"})
        if (object.Has(ofOne) && bands.size() != 1)
            RefuseMember(ofOne, "it is for a single band");
    if (object.Has("ramp"))
        content.ramp = RampFrom(object);
    if (object.Has("classes")) {
        if (content.ramp)
            RefuseMember("classes", "they and a ramp contradict each other");
        std::size_t place = 0;
        content.classes.emplace();
        for (const Json& item : object.List("classes", MOST_CLASSES))
            content.classes->push_back(
                ClassFrom({item, "classes[" + std::to_string(place++) + "]"}));
    }
    if (object.Has("view"))
        content.view = ViewFrom(object.Object("view"));
    if (object.Has("mask"))
        content.mask = MaskFrom(object.Object("mask"));
    object.RequireNoOthers();
    return content;
}

} // namespace zelto
