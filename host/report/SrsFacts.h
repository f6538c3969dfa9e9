#pragma once

#include "host/report/Json.h"

#include <optional>
#include <string>
#include <vector>

namespace zelto::host {

/// One thing that describes a reference system: "Prime Meridian" Greenwich 0.
struct SrsFact {
    std::string label;
    std::string text; ///< empty where the fact is a number alone
    std::optional<double> number;

    /// Whether the texts are the same, and the numbers but for rounding.
    bool SameValue(const SrsFact& other) const;
    /// "Greenwich (0)", "WGS_1984", "6378137"
    std::string Value() const;
    Json ToJson() const;
};

enum class SrsKind { Geographic, Projected, Other };
/// "geographic", "projected", "other"
const char* KindName(SrsKind kind);

/// What a reference system is made of, in the order of the engine's readable summary, then its
/// linear unit and the projection's parameters.
struct SrsFacts {
    SrsKind kind = SrsKind::Other;
    std::vector<SrsFact> facts;
    std::string authority; ///< "EPSG:4326" where the text names or is one

    /// One of `facts`; null where none has the label.
    const SrsFact* Find(const std::string& label) const;
};

/// Throws Failure for a text that cannot be read.
SrsFacts DescribeSrs(const std::string& srs);

} // namespace zelto::host
