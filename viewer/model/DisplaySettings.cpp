#include "viewer/model/DisplaySettings.h"

#include <algorithm>

namespace zelto::view {

namespace {

QVariant OrNothing(const std::optional<double>& value) {
    return value ? QVariant(*value) : QVariant();
}

std::optional<double> OptionalNumber(const QVariant& value) {
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

QVariantList BandsToList(const std::vector<int>& bands) {
    QVariantList list;
    for (const int band : bands)
        list.append(band);
    return list;
}

/// The bands of a list, where the image has them.
std::vector<int> BandsFromList(const QVariantList& list, int bandCount) {
    std::vector<int> bands;
    for (const QVariant& entry : list) {
        const int band = entry.toInt();
        if (band < 0 || band >= bandCount)
            return {};
        bands.push_back(band);
    }
    return bands.size() == 1 || bands.size() == 3 ? bands : std::vector<int>();
}

float Limited(const QVariant& value, float otherwise, float least) {
    bool isNumber = false;
    const float number = value.toFloat(&isNumber);
    return isNumber ? std::clamp(number, least, 1.0F) : otherwise;
}

QVariantList ClassesToList(const ClassEdits& edits) {
    QVariantList list;
    for (const auto& [low, look] : edits)
        list.append(QVariant(QVariantList{low, look.color.name(QColor::HexArgb), look.name}));
    return list;
}

ClassEdits ClassesFromList(const QVariantList& list) {
    ClassEdits edits;
    for (const QVariant& entry : list) {
        const QVariantList parts = entry.toList();
        if (parts.size() == 3)
            if (const QColor color(parts[1].toString()); color.isValid())
                edits[parts[0].toDouble()] = {color, parts[2].toString()};
    }
    return edits;
}

} // namespace

std::vector<ClassColor> Edited(std::vector<ClassColor> classes, const ClassEdits& edits) {
    for (ClassColor& each : classes)
        if (const auto found = edits.find(each.low); found != edits.end()) {
            each.color = found->second.color;
            each.name = found->second.name;
        }
    return classes;
}

ClassEdits EditsBetween(const std::vector<ClassColor>& ofFile,
                        const std::vector<ClassColor>& edited) {
    ClassEdits edits;
    for (std::size_t i = 0; i < ofFile.size() && i < edited.size(); ++i)
        if (edited[i] != ofFile[i])
            edits[edited[i].low] = {edited[i].color, edited[i].name};
    return edits;
}

QVariantMap DisplaySettings::ToMap() const {
    QVariantMap map = {{"bands", BandsToList(bands)},
                       {"stretch", stretch},
                       {"clipLow", clip.low},
                       {"clipHigh", clip.high},
                       {"low", OrNothing(low)},
                       {"high", OrNothing(high)},
                       {"threshold", threshold},
                       {"wallisModel", wallisModel},
                       {"gamma", gamma},
                       {"ofView", ofView},
                       {"hue", hue},
                       {"intensity", intensity},
                       {"saturation", saturation},
                       {"contrast", contrast},
                       {"transparency", transparency},
                       {"ramp", ramp},
                       {"classes", ClassesToList(classes)}};
    for (std::size_t k = 0; k < ranges.size(); ++k)
        if (ranges[k])
            map[QString("range%1").arg(k)] = QVariantList{ranges[k]->low, ranges[k]->high};
    return map;
}

DisplaySettings DisplaySettings::FromMap(const QVariantMap& map, const DisplaySettings& otherwise,
                                         int bandCount) {
    DisplaySettings settings = otherwise;
    if (map.isEmpty())
        return settings;
    if (auto bands = BandsFromList(map["bands"].toList(), bandCount); !bands.empty())
        settings.bands = bands;
    settings.stretch = map.value("stretch", settings.stretch).toString();
    if (const Bounds clip{map["clipLow"].toDouble(), map["clipHigh"].toDouble()};
        clip.low >= 0.0 && clip.low < clip.high && clip.high <= 100.0)
        settings.clip = clip;
    settings.low = OptionalNumber(map["low"]);
    settings.high = OptionalNumber(map["high"]);
    settings.threshold = std::clamp(map.value("threshold", 0.01).toDouble(), 0.0, 0.49);
    settings.wallisModel = std::clamp(map.value("wallisModel", 1).toInt(), 0, 2);
    settings.gamma = std::clamp(map.value("gamma", 1.0).toDouble(), 0.1, 10.0);
    settings.ofView = map["ofView"].toBool();
    settings.hue = Limited(map["hue"], settings.hue, -1.0F);
    settings.intensity = Limited(map["intensity"], settings.intensity, -1.0F);
    settings.saturation = Limited(map["saturation"], settings.saturation, -1.0F);
    settings.contrast = Limited(map["contrast"], settings.contrast, -1.0F);
    settings.transparency = Limited(map["transparency"], settings.transparency, 0.0F);
    settings.ramp = map["ramp"].toString();
    settings.classes = ClassesFromList(map["classes"].toList());
    for (std::size_t k = 0; k < settings.ranges.size(); ++k) {
        const QVariantList pair = map[QString("range%1").arg(k)].toList();
        settings.ranges[k].reset();
        if (pair.size() == 2 && pair[0].toDouble() < pair[1].toDouble())
            settings.ranges[k] = Bounds{pair[0].toDouble(), pair[1].toDouble()};
    }
    return settings;
}

} // namespace zelto::view
