#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "cli/Commands.h"
#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Printable.h"
#include "host/report/Json.h"
#include "host/report/JsonReference.h"
#include "host/report/SrsFacts.h"
#include "host/report/Table.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zelto::cli {

namespace {

struct SrsOptions {
    std::string srs;
    std::string other;
    int zone = 0;
    int width = 0;
    bool json = false;
};

/// "Semimajor Axis" → "semimajorAxis"
std::string JsonKey(const std::string& label) {
    std::string key;
    bool upper = false;
    for (const char c : label) {
        if (c == ' ') {
            upper = true;
            continue;
        }
        const auto letter = static_cast<unsigned char>(c);
        key += static_cast<char>(key.empty() ? std::tolower(letter)
                                 : upper     ? std::toupper(letter)
                                             : letter);
        upper = false;
    }
    return key;
}

void DescribeSystem(const SrsOptions& options) {
    const host::SrsFacts system = host::DescribeSrs(options.srs);
    if (!options.json) {
        host::Table table({"kind", host::KindName(system.kind)});
        if (!system.authority.empty())
            table.AddRow({"authority", system.authority});
        for (const host::SrsFact& fact : system.facts)
            table.AddRow({fact.label, fact.Value()});
        table.Print();
        return;
    }
    host::Json json = {{"kind", host::KindName(system.kind)},
                       {"authority", system.authority},
                       {"epsg", host::JsonEpsg(options.srs)}};
    for (const host::SrsFact& fact : system.facts)
        json[JsonKey(fact.label)] = fact.ToJson();
    host::PrintJson(json);
}

struct Difference {
    std::string label;
    const host::SrsFact* first;
    const host::SrsFact* second;
};

/// What the systems describe differently; a fact that only one has counts.
std::vector<Difference> FindDifferences(const host::SrsFacts& a, const host::SrsFacts& b) {
    std::vector<Difference> differences;
    for (const host::SrsFact& fact : a.facts) {
        const host::SrsFact* other = b.Find(fact.label);
        if (other == nullptr || !fact.SameValue(*other))
            differences.push_back({fact.label, &fact, other});
    }
    for (const host::SrsFact& fact : b.facts) {
        if (a.Find(fact.label) == nullptr)
            differences.push_back({fact.label, nullptr, &fact});
    }
    return differences;
}

void Compare(const SrsOptions& options) {
    const host::SrsFacts a = host::DescribeSrs(options.srs);
    const host::SrsFacts b = host::DescribeSrs(options.other);
    const bool same =
        CCoordinateAlgorithm::IsSameCoordinate(options.srs.c_str(), options.other.c_str());
    const auto differences = FindDifferences(a, b);
    if (options.json) {
        host::Json json = {{"same", same}, {"differences", host::Json::array()}};
        for (const Difference& d : differences)
            json["differences"].push_back(
                {{"what", JsonKey(d.label)},
                 {"first", d.first ? d.first->ToJson() : host::Json()},
                 {"second", d.second ? d.second->ToJson() : host::Json()}});
        host::PrintJson(json);
        return;
    }
    std::cout << (same ? "the same system\n" : "different systems\n");
    if (differences.empty())
        return;
    host::Table table({same ? "described differently" : "difference", "first", "second"});
    for (const Difference& d : differences)
        table.AddRow(
            {d.label, d.first ? d.first->Value() : "-", d.second ? d.second->Value() : "-"});
    table.Print();
}

void GaussKruger(const SrsOptions& options) {
    const int zones = 360 / options.width;
    if (options.zone < 1 || options.zone > zones)
        throw host::UsageError("--zone: zones of " + std::to_string(options.width) +
                               " degrees are numbered from 1 to " + std::to_string(zones));
    if (host::DescribeSrs(options.srs).kind == host::SrsKind::Other)
        throw host::Failure(options.srs, "has no geographic system to build on");
    const std::string wkt =
        CCoordinateAlgorithm::NewChinaProjCS(options.srs.c_str(), options.zone, options.width);
    if (wkt.empty())
        throw host::Failure(options.srs, "the system cannot be written as WKT");
    if (!options.json) {
        std::cout << host::PrintableLines(wkt) << '\n';
        return;
    }
    host::Json json =
        host::JsonReference(CCoordinateAlgorithm::GetCoordinateName(wkt.c_str()), wkt);
    json["centralMeridian"] = host::DescribeSrs(wkt).Find("central_meridian")->ToJson();
    host::PrintJson(json);
}

/// GDAL's own messages are part of the program's, not beside them.
template <typename Function>
void WorkQuietly(Function work, const SrsOptions& options) {
    const host::QuietGdalUse gdal;
    work(options);
}

} // namespace

void AddSrs(CLI::App& program) {
    auto* srs = program.add_subcommand("srs", "describe, compare and build reference systems");
    srs->require_subcommand(1);
    srs->footer("A reference system is given as WKT, an authority code such as EPSG:4326, a PROJ\n"
                "string or the name of a file that holds one of these.");
    auto options = std::make_shared<SrsOptions>();

    auto* info = srs->add_subcommand("info", "what a reference system is made of");
    info->add_option("SRS", options->srs)->required();
    info->add_flag("--json", options->json, "print JSON");
    info->callback([options] { WorkQuietly(DescribeSystem, *options); });

    auto* compare = srs->add_subcommand("compare", "whether two systems are the same, and why not");
    compare->add_option("A", options->srs)->required();
    compare->add_option("B", options->other)->required();
    compare->add_flag("--json", options->json, "print JSON");
    compare->callback([options] { WorkQuietly(Compare, *options); });

    auto* gk = srs->add_subcommand("gk", "a Gauss-Kruger system on a geographic one, as WKT");
    gk->add_option("SRS", options->srs)->required();
    gk->add_option("--zone", options->zone, "number of the zone, from 1")->required();
    gk->add_option("--width", options->width, "width of the zones in degrees")
        ->required()
        ->check(CLI::IsMember({3, 6}));
    gk->add_flag("--json", options->json, "print JSON");
    gk->callback([options] { WorkQuietly(GaussKruger, *options); });
}

} // namespace zelto::cli
