#include "host/report/SrsFacts.h"

#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Reference.h"

#include <ogr_spatialref.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

namespace zelto::host {

namespace {

std::optional<double> WholeNumber(const std::string& text) {
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    if (text.empty() || parsed.ec != std::errc() || parsed.ptr != end)
        return std::nullopt;
    return value;
}

/// A line of the summary, "    Semimajor Axis: 6378137" or "Prime Meridian: Greenwich(0)".
SrsFact ParseLine(const std::string& line, std::size_t colon) {
    const std::size_t start = line.find_first_not_of(' ');
    SrsFact fact{line.substr(start, colon - start), line.substr(colon + 2), std::nullopt};
    fact.number = WholeNumber(fact.text);
    if (fact.number) {
        fact.text.clear();
    } else if (!fact.text.empty() && fact.text.back() == ')') {
        const std::size_t open = fact.text.rfind('(');
        fact.number = WholeNumber(fact.text.substr(open + 1, fact.text.size() - open - 2));
        if (fact.number)
            fact.text.erase(open);
    }
    return fact;
}

void AddSummary(std::vector<SrsFact>& facts, const std::string& srs) {
    std::istringstream lines(CCoordinateAlgorithm::GetCoordinateInfoString(srs.c_str()));
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::size_t colon = line.find(": ");
        if (colon == std::string::npos)
            continue;
        facts.push_back(ParseLine(line, colon));
        if (facts.back().label == "GCSName")
            facts.back().label = "Geographic System";
    }
}

void AddProjection(std::vector<SrsFact>& facts, const OGRSpatialReference& reference) {
    const char* unit = nullptr;
    const double factor = reference.GetLinearUnits(&unit);
    facts.push_back({"Linear Unit", unit == nullptr ? "" : unit, factor});
    const OGR_SRSNode* projected = reference.GetAttrNode("PROJCS");
    for (int i = 0; projected != nullptr && i < projected->GetChildCount(); ++i) {
        const OGR_SRSNode* node = projected->GetChild(i);
        if (EQUAL(node->GetValue(), "PARAMETER") && node->GetChildCount() == 2)
            facts.push_back(
                {node->GetChild(0)->GetValue(), "", WholeNumber(node->GetChild(1)->GetValue())});
    }
}

} // namespace

bool SrsFact::SameValue(const SrsFact& other) const {
    if (text != other.text || number.has_value() != other.number.has_value())
        return false;
    // Dialects round the same number differently.
    return !number || std::abs(*number - *other.number) <= 1e-9 * std::abs(*number);
}

std::string SrsFact::Value() const {
    if (!number)
        return text;
    return text.empty() ? FormatNumber(*number) : text + " (" + FormatNumber(*number) + ")";
}

Json SrsFact::ToJson() const {
    if (!number)
        return text;
    if (text.empty())
        return JsonNumber(*number);
    return {{"name", text}, {"value", JsonNumber(*number)}};
}

const char* KindName(SrsKind kind) {
    switch (kind) {
    case SrsKind::Geographic:
        return "geographic";
    case SrsKind::Projected:
        return "projected";
    default:
        return "other";
    }
}

const SrsFact* SrsFacts::Find(const std::string& label) const {
    const auto found = std::find_if(facts.begin(), facts.end(),
                                    [&](const SrsFact& fact) { return fact.label == label; });
    return found == facts.end() ? nullptr : &*found;
}

SrsFacts DescribeSrs(const std::string& srs) {
    RequireReference(srs);
    SrsFacts result;
    AddSummary(result.facts, srs);
    const auto reference = ParseReference(srs).value_or(OGRSpatialReference());
    if (CCoordinateAlgorithm::IsGeographic(srs.c_str())) {
        result.kind = SrsKind::Geographic;
    } else if (CCoordinateAlgorithm::IsProjected(srs.c_str())) {
        result.kind = SrsKind::Projected;
        AddProjection(result.facts, reference);
    }
    const char* name = reference.GetAuthorityName(nullptr);
    const char* code = reference.GetAuthorityCode(nullptr);
    if (name != nullptr && code != nullptr)
        result.authority = std::string(name) + ":" + code;
    return result;
}

} // namespace zelto::host
