#include "cli/SampleTable.h"

#include "host/base/Failure.h"
#include "host/report/Csv.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace zelto::cli {

namespace {

/// A number of a field; "NaN" and the infinities are none.
std::optional<double> Number(const std::string& text) {
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

/// Labels are whole numbers in a sample file.
std::optional<double> Label(const std::string& text) {
    constexpr double GREATEST = 2147483647.0;
    const auto value = Number(text);
    const bool isLabel = value && *value == std::floor(*value) && std::fabs(*value) <= GREATEST;
    return isLabel ? value : std::nullopt;
}

host::SampleClass& ClassOf(host::SampleClasses& classes, double label, const std::string& name) {
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const host::SampleClass& c) { return c.label == label; });
    if (found != classes.end())
        return *found;
    classes.emplace_back();
    classes.back().label = label;
    classes.back().name = name;
    classes.back().pixels = CImgSamplePixels(label);
    return classes.back();
}

/// The values behind label and class; empty where one is no number.
std::vector<double> Values(const std::vector<std::string>& fields) {
    std::vector<double> values;
    for (std::size_t i = 2; i < fields.size(); ++i) {
        const auto value = Number(fields[i]);
        if (!value)
            return {};
        values.push_back(*value);
    }
    return values;
}

} // namespace

host::SampleClasses ReadSampleTable(const std::string& path, int& bandCount) {
    host::SampleClasses classes;
    bandCount = 0;
    host::ForEachCsvLine(path, [&](const std::string& line, int number) {
        if (number == 1 && host::IsCsvHeading(line))
            return;
        const std::vector<std::string> fields = host::CsvFields(line);
        const auto label = Label(fields.front());
        std::vector<double> values = Values(fields);
        const int count = static_cast<int>(values.size());
        if (!label || count == 0 || (bandCount > 0 && count != bandCount))
            throw host::Failure(
                path, "line " + std::to_string(number) + ": expected label,class and " +
                          (bandCount > 0 ? std::to_string(bandCount) : "the bands'") + " values");
        bandCount = count;
        ClassOf(classes, *label, fields[1]).pixels.Add(std::move(values));
    });
    if (classes.empty())
        throw host::Failure(path, "holds no pixels");
    return classes;
}

} // namespace zelto::cli
