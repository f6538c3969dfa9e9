#include "zelto/baselib/CommonFun.h"
#include "zelto/display/StretchPreparation.h"
#include "zelto/display/internal/JsonObject.h"
#include "zelto/display/internal/RecipeContent.h"
#include "zelto/display/internal/RecipeMembers.h"

#include <charconv>
#include <cstdio>

namespace zelto {

namespace {

/// The adjustments are single precision: the shortest number that reads back to the same.
double Shortest(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, static_cast<float>(value)).ptr;
    double shortest = 0.0;
    std::from_chars(text, end, shortest);
    return shortest;
}

Json ToJson(const RecipeBand& band) {
    Json json;
    json["band"] = band.number + 1;
    json["stretch"] = CStretchPreparation::GetStretchName(band.stretch);
    if (const auto& found = band.statistics)
        json["statistics"] = {{"minimum", JsonNumber(found->minimum)},
                              {"maximum", JsonNumber(found->maximum)},
                              {"mean", JsonNumber(found->mean)},
                              {"standardDeviation", JsonNumber(found->standardDeviation)}};
    if (band.histogram)
        json["histogram"] = {{"minimum", JsonNumber(band.histogram->minimum)},
                             {"maximum", JsonNumber(band.histogram->maximum)},
                             {"counts", band.histogram->counts}};
    if (const auto& function = band.function) {
        Json& member =
            json["function"] = {{"stretch", CStretchPreparation::GetStretchName(function->type)}};
        const auto names = NamesOfNumbers(function->type);
        for (std::size_t i = 0; i < names.size(); ++i)
            if (names[i] != nullptr)
                member[names[i]] = JsonNumber(function->numbers[i]);
    }
    if (band.table)
        json["table"] = *band.table;
    if (band.threshold)
        json["threshold"] = JsonNumber(*band.threshold);
    return json;
}

Json ToJson(const CColorRamp& ramp) {
    Json json = Json::array();
    for (int i = 0; i < 256; ++i) {
        const auto v = static_cast<unsigned char>(i);
        char text[8];
        std::snprintf(text, sizeof text, "#%02x%02x%02x", ramp.Red(v), ramp.Green(v), ramp.Blue(v));
        json.push_back(text);
    }
    return json;
}

Json ToJson(const CClassifyDisplayItem& item) {
    const CRgbaColor& color = item.m_color;
    return {{"low", JsonNumber(item.m_low)},
            {"high", JsonNumber(item.m_high)},
            {"color", {color.red, color.green, color.blue, color.alpha}},
            {"name", CommonFun::U2M(item.m_name)}};
}

Json ToJson(const CDisplayRecipe::View& view) {
    Json json = {{"left", JsonNumber(view.box.GetLeft())},
                 {"top", JsonNumber(view.box.GetTop())},
                 {"right", JsonNumber(view.box.GetRight())},
                 {"bottom", JsonNumber(view.box.GetBottom())},
                 {"width", view.width},
                 {"height", view.height}};
    if (!view.srs.empty())
        json["srs"] = view.srs;
    return json;
}

} // namespace

std::string ToJson(const RecipeContent& content) {
    Json json = {{"format", RECIPE_FORMAT}, {"version", RECIPE_VERSION}};
    Json& bands = json["bands"] = Json::array();
    for (const RecipeBand& band : content.bands)
        bands.push_back(ToJson(band));
    Json& colors = json["colors"];
    colors["hue"] = Shortest(content.colors.hue);
    colors["intensity"] = Shortest(content.colors.intensity);
    colors["saturation"] = Shortest(content.colors.saturation);
    colors["contrast"] = Shortest(content.colors.contrast);
    colors["transparency"] = Shortest(content.colors.transparency);
    if (content.ramp)
        json["ramp"] = ToJson(*content.ramp);
    if (content.classes) {
        Json& classes = json["classes"] = Json::array();
        for (const CClassifyDisplayItem& item : *content.classes)
            classes.push_back(ToJson(item));
    }
    if (content.view)
        json["view"] = ToJson(*content.view);
    if (content.mask)
        json["mask"] = {{"area", CommonFun::U2M(content.mask->area)},
                        {"outside", content.mask->isBlack ? "black" : "transparent"}};
    return PrintJson(json);
}

} // namespace zelto
