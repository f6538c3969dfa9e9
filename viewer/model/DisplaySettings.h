#pragma once

#include <QColor>
#include <QMetaType>
#include <QString>
#include <QVariantMap>
#include <array>
#include <map>
#include <optional>
#include <vector>

namespace zelto::view {

/// Least and greatest sample that a stretch spreads over the display values.
struct Bounds {
    double low = 0.0;
    double high = 0.0;
    bool operator==(const Bounds&) const = default;
};

/// A class of a classified image, or an entry of a colour table, as the legend shows it.
struct ClassColor {
    double low = 0.0; ///< values low ≤ v < high belong to it
    double high = 0.0;
    QColor color;
    QString name;
    bool operator==(const ClassColor&) const = default;
};

/// What a class looks like where the user has changed it.
struct ClassLook {
    QColor color;
    QString name;
    bool operator==(const ClassLook&) const = default;
};

/// Changed classes by their least values.
using ClassEdits = std::map<double, ClassLook>;

/// The classes of a file with what the user has changed of them.
std::vector<ClassColor> Edited(std::vector<ClassColor> classes, const ClassEdits& edits);
/// What tells edited classes from those of the file.
ClassEdits EditsBetween(const std::vector<ClassColor>& ofFile,
                        const std::vector<ClassColor>& edited);

/// How a layer is shown. A value, so that requests carry a copy to the thread that draws and the
/// interface may go on changing its own.
struct DisplaySettings {
    std::vector<int> bands;   ///< one, or three for red, green and blue; counted from 0
    QString stretch = "auto"; ///< a name that the engine's preparation of stretches knows
    /// Values shown darkest and brightest, per shown band; none: as the stretch finds them.
    std::array<std::optional<Bounds>, 3> ranges;
    Bounds clip{2.0, 98.0};     ///< percentages that the percent stretch goes between
    std::optional<double> low;  ///< bounds of the zoom stretches and the custom equalisation
    std::optional<double> high; ///< the same
    double threshold = 0.01;    ///< share that the auto levels cut at each end
    int wallisModel = 1;
    double gamma = 1.0;
    bool ofView = false; ///< the stretch goes by what is in view instead of the whole image
    float hue = 0.0F;
    float intensity = 0.0F;
    float saturation = 0.0F;
    float contrast = 0.0F;
    float transparency = 0.0F;
    QString ramp;       ///< of a single band; empty: none
    ClassEdits classes; ///< what the user has changed of the file's

    bool operator==(const DisplaySettings&) const = default;

    QVariantMap ToMap() const;
    /// What the map does not say keeps the value that `otherwise` has.
    static DisplaySettings FromMap(const QVariantMap& map, const DisplaySettings& otherwise,
                                   int bandCount);
};

} // namespace zelto::view

Q_DECLARE_METATYPE(zelto::view::DisplaySettings)
